// Numbering of identifiers by the reader's index and of file and folder
// names by the writer.
#include <gtest/gtest.h>

#include <string>

#include "csv/qvf_csv_index.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using Keys = std::vector<std::u16string>;

// The add form numbers new keys, the plain form enters an empty one.
TEST(CsvIndex, NumbersKeysAndEachProgramsPlaylists) {
  QvFCsvIndex index;
  EXPECT_EQ(index.addTimetableId(u"b.csv"), u"TM1");
  EXPECT_EQ(index.addTimetableId(u"a.csv"), u"TM2");
  EXPECT_EQ(index.addTimetableId(u"b.csv"), u"TM1");
  EXPECT_EQ(index.addProgramId(u"P"), u"PG1");  // each map counts for itself
  EXPECT_EQ(index.programId(u"unknown"), u"");
  EXPECT_EQ(index.addProgramId(u"Q"), u"PG3");  // the plain form made the map larger

  // Keys in 16-bit code units: a surrogate pair sorts before U+FF21.
  for (std::u16string key : {u"\uFF21", u"\U0001F600", u"A", u""}) index.addTimetableId(key);
  EXPECT_EQ(index.timetableFiles(),
            (Keys{u"", u"A", u"a.csv", u"b.csv", u"\U0001F600", u"\uFF21"}));

  // Each program entry numbers its own playlists.
  EXPECT_EQ(index.findProgramEntry(u"PG1"), nullptr);
  QvFCsvProgramEntry& first = index.programEntry(u"PG1");
  first.addPlaylistId(u"playlist_1.csv");
  EXPECT_EQ(first.addPlaylistId(u"playlist_2.csv"), u"PL2");
  EXPECT_EQ(index.programEntry(u"PG2").addPlaylistId(u"playlist_2.csv"), u"PL1");
  EXPECT_EQ(&index.programEntry(u"PG1"), &first);
  EXPECT_EQ(index.findProgramEntry(u"PG1"), &first);
}

TEST(CsvWriterNames, NumbersAtFirstUseWithTheStamp) {
  QvFWriteCsv writer(u"20240102_030405");
  EXPECT_EQ(writer.scheduleFileName(), u"Schedule_20240102_030405_001.csv");
  // Numbers follow the first use, not the identifier.
  for (const char16_t* id : {u"TM7", u"TM7", u"TM2", u"x"}) writer.timetableFileName(id);
  EXPECT_EQ(writer.timetableFileName(u"TM1"), u"TimeTable_20240102_030405_004.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM7"), u"TimeTable_20240102_030405_001.csv");
  EXPECT_EQ(writer.programFolderName(u"PG9"), u"Program_20240102_030405_001");
  for (int i = 2; i <= 1000; ++i) writer.programFolderName(u"PG-" + f::FormatInt(i));
  EXPECT_EQ(writer.programFolderName(u"PG-1000"), u"Program_20240102_030405_1000");

  EXPECT_EQ(QvFWriteCsv::contentsFileName(5, 12), u"information\\contents_5_012.csv");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 3), u"CT2.bmp");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 4), u"CT2.jpg");

  // The stamp of a writer without one: "%04d%02d%02d_%02d%02d%02d" of now.
  const std::u16string stamp = QvFWriteCsv().stamp();
  EXPECT_EQ(stamp.size() * 100 + stamp.find(u'_'), 1508u);
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
