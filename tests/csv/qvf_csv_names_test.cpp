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

TEST(CsvIndex, AddFormNumbersNewKeysPlainFormEntersEmpty) {
  QvFCsvIndex index;
  EXPECT_EQ(index.addTimetableId(u"b.csv"), u"TM1");
  EXPECT_EQ(index.addTimetableId(u"a.csv"), u"TM2");
  EXPECT_EQ(index.addTimetableId(u"b.csv"), u"TM1");
  EXPECT_EQ(index.addProgramId(u"P"), u"PG1");  // each map counts for itself
  EXPECT_EQ(index.addContentId(u"..\\contents\\x.mp4"), u"CT1");

  EXPECT_EQ(index.programId(u"unknown"), u"");
  EXPECT_EQ(index.program_ids.size(), 2u);
  EXPECT_EQ(index.addProgramId(u"Q"), u"PG3");
  EXPECT_EQ(index.programId(u"Q"), u"PG3");

  for (int i = 4; i <= 12; ++i) index.addProgramId(u"k" + std::u16string(1, char16_t(u'a' + i)));
  EXPECT_EQ(index.programId(u"km"), u"PG12");  // no leading zeros, no limit
}

TEST(CsvIndex, KeysAreOrderedBySixteenBitCodeUnits) {
  QvFCsvIndex index;
  for (std::u16string key : {u"b", u"\uFF21", u"a", u"\U0001F600", u"A", u""}) index.addTimetableId(key);
  std::vector<std::u16string> keys = index.timetableFiles();
  // A surrogate pair (0xD83D...) sorts before U+FF21, unlike by code point.
  std::vector<std::u16string> expected = {u"", u"A", u"a", u"b", u"\U0001F600", u"\uFF21"};
  EXPECT_EQ(keys, expected);
}

TEST(CsvIndex, ProgramEntriesAndTheirOwnPlaylistNumbers) {
  QvFCsvIndex index;
  EXPECT_EQ(index.findProgramEntry(u"PG1"), nullptr);
  QvFCsvProgramEntry& first = index.programEntry(u"PG1");
  EXPECT_EQ(first.addPlaylistId(u"playlist_1.csv"), u"PL1");
  EXPECT_EQ(first.addPlaylistId(u"playlist_2.csv"), u"PL2");
  QvFCsvProgramEntry& second = index.programEntry(u"PG2");
  EXPECT_EQ(second.addPlaylistId(u"playlist_2.csv"), u"PL1");
  EXPECT_EQ(&index.programEntry(u"PG1"), &first);
  EXPECT_EQ(index.findProgramEntry(u"PG2"), &second);
  EXPECT_EQ(second.playlistId(u"other.csv"), u"");
  EXPECT_EQ(second.addPlaylistId(u"third.csv"), u"PL3");
}

TEST(CsvWriterNames, NumbersAtFirstUseWithTheStamp) {
  QvFWriteCsv writer(u"20240102_030405");
  EXPECT_EQ(writer.scheduleFileName(), u"Schedule_20240102_030405_001.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM7"), u"TimeTable_20240102_030405_001.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM7"), u"TimeTable_20240102_030405_001.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM2"), u"TimeTable_20240102_030405_002.csv");
  EXPECT_EQ(writer.timetableFileName(u"x"), u"TimeTable_20240102_030405_003.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM1"), u"TimeTable_20240102_030405_004.csv");
  EXPECT_EQ(writer.programFolderName(u"PG9"), u"Program_20240102_030405_001");
  for (int i = 2; i <= 1000; ++i) writer.programFolderName(u"PG-" + f::FormatInt(i));
  EXPECT_EQ(writer.programFolderName(u"PG-1000"), u"Program_20240102_030405_1000");

  EXPECT_EQ(QvFWriteCsv::playlistFileName(3), u"playlist_3.csv");
  EXPECT_EQ(QvFWriteCsv::contentsFileName(5, 12), u"information\\contents_5_012.csv");
  EXPECT_EQ(QvFWriteCsv::contentReference(u"CT1.mp4"), u"..\\contents\\CT1.mp4");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 0), u"CT2.jpg");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 1), u"CT2.png");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 2), u"CT2.gif");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 3), u"CT2.bmp");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"CT2", 4), u"CT2.jpg");
}

TEST(CsvWriterNames, StampIsTheLocalTimeOfConstruction) {
  QvFWriteCsv writer;
  const std::u16string& stamp = writer.stamp();
  ASSERT_EQ(stamp.size(), 15u);
  for (std::size_t i = 0; i < stamp.size(); ++i) {
    if (i == 8) {
      EXPECT_EQ(stamp[i], u'_');
    } else {
      EXPECT_TRUE(stamp[i] >= u'0' && stamp[i] <= u'9');
    }
  }
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
