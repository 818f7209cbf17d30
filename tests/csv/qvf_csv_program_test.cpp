// Program files: the frame line, the roles of the pane numbers, the nine
// written pane lines, and a written program read back.
#include <gtest/gtest.h>

#include <string>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/csv/csv_test_util.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;

class CsvProgram : public ::testing::Test {
 protected:
  // Writes program.csv of folder `folder` and gives its path.
  std::u16string Program(const std::string& folder, const std::string& utf8) {
    qvtest::WriteFile(dir_.Sub(folder + "/program.csv"), Cp932(utf8));
    return U16(dir_.Sub(folder + "/program.csv"));
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

TEST_F(CsvProgram, ReadTakesFrameAndPanesByNumber) {
  reader_.index().addProgramId(u"other");
  reader_.index().addProgramId(u"番組");
  auto p = reader_.readProgram(Program("番組",
      "朝の番組\n"
      "0xD4F0FF,10,20,1920,1080,01:02:03,true\n"
      "0,playlist_0.csv,0,0,0,0,0x80112233\n"
      "9,x.csv\n"
      "7,playlist_7.csv,1,1,1,1,bad,true,0,true\n"
      "3,b.csv,1,2,3,4,#ff0000,1,0,true\n"
      "1,a.csv,5,6,7,8,0x00ff00,x,0,FALSE\n"
      "2,c.csv,0,0,0,0,0x0000ff,false,0,false\n"
      "5,t.csv,0,0,0,0,nocolour,true,0,\n"
      "4,b.csv,0,0,9,9,0x010101,0,0,yes\n"));
  EXPECT_EQ(p->id.text, u"PG2");
  EXPECT_EQ(p->name, U16("朝の番組"));
  const f::QvFProgramInfo& info = p->program_info;
  EXPECT_EQ(f::FormatTime(info.program_time), u"01:02:03");
  EXPECT_EQ(info.region.x, 10);
  EXPECT_EQ(info.region.height, 1080);
  EXPECT_EQ(info.layout_lock, std::optional<bool>(true));
  EXPECT_EQ(f::FormatColorHex(info.background_color), u"0x80112233");
  EXPECT_FALSE(info.playlist_file.type.has_value());

  // Lines 9, 7 and the exact "false" add nothing; "FALSE" and "" do not skip.
  const auto& panes = p->pane_info.panes;
  ASSERT_EQ(panes.size(), 4u);
  EXPECT_EQ(panes[0].playlist_file.ref_playlist.text, u"PL1");
  EXPECT_EQ(panes[0].playlist_file.ref_playlist.kind, f::kIdPlaylist);
  EXPECT_EQ(panes[0].region.width, 3);
  EXPECT_EQ(panes[0].playlist_file.mute, std::optional<bool>(true));
  EXPECT_EQ(panes[1].playlist_file.ref_playlist.text, u"PL2");
  EXPECT_EQ(panes[1].region.x, 5);
  EXPECT_EQ(panes[1].playlist_file.mute, std::optional<bool>(false));  // "x" keeps the default
  EXPECT_EQ(panes[2].playlist_file.ref_playlist.text, u"PL3");
  EXPECT_EQ(panes[3].playlist_file.ref_playlist.text, u"PL1");  // same file, same identifier
  EXPECT_FALSE(panes[3].playlist_file.type.has_value());

  const QvFCsvProgramEntry* entry = reader_.index().findProgramEntry(u"PG2");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->background_text, u"0x80112233");
  EXPECT_EQ(entry->playlist_ids.size(), 3u);  // the skipped c.csv is not there
  EXPECT_EQ(entry->playlist_colors.at(u"a.csv"), u"0x00ff00");
  EXPECT_EQ(entry->playlist_colors.at(u"b.csv"), u"0x010101");  // the later line wins
  EXPECT_EQ(entry->playlist_colors.count(u"t.csv"), 0u);        // telops keep no colour
}

TEST_F(CsvProgram, FolderNameAndLockDefaults) {
  // Unknown folder: empty identifier, entry under the empty key.
  auto p = reader_.readProgram(Program("unknown", "\n0x0,0,0,0,0,\n"));
  EXPECT_TRUE(p->id.text.empty());
  EXPECT_NE(reader_.index().findProgramEntry(u""), nullptr);
  EXPECT_EQ(reader_.index().program_ids.count(u"unknown"), 1u);
  EXPECT_EQ(p->program_info.layout_lock, std::optional<bool>(false));  // six columns
  EXPECT_TRUE(p->name.empty());

  // A backslash cuts the path as a slash does.  ("unknown" took a number.)
  reader_.index().addProgramId(u"Win");
  qvtest::WriteFile(dir_.Sub("Win\\program.csv"), "n\n0x0,0,0,0,0,,1\n");
  p = reader_.readProgram(U16(dir_.Sub("Win\\program.csv")));
  EXPECT_EQ(p->id.text, u"PG2");
  EXPECT_EQ(p->program_info.layout_lock, std::optional<bool>(true));
}

TEST_F(CsvProgram, ShortLinesAndBadColourAreBadFiles) {
  const char* bad[] = {
      "",                                           // no frame line
      "n\n0x0,1,2,3,4\n",                           // frame of five columns
      "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0\n",         // background without colour
      "n\n0x0,0,0,0,0,\n3,p.csv,0,0,0,0,#0,true,0\n",  // pane without column 9
      "n\n0x0,0,0,0,0,\n5\n",                       // telop pane of one column
      "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0,ffffff\n",  // colour without "#" or "0x"
  };
  for (const char* text : bad) {
    EXPECT_EQ(CodeOf([&] { reader_.readProgram(Program("p", text)); }), -102) << text;
  }
  // Lines of unknown numbers are not read at all, however short.
  EXPECT_EQ(CodeOf([&] { reader_.readProgram(Program("p", "n\n0x0,0,0,0,0,\n7\n8,\nzz\n")); }), 0);
  EXPECT_EQ(CodeOf([&] { reader_.readProgram(U16(dir_.Sub("missing/program.csv"))); }), -101);
}

TEST_F(CsvProgram, WriterLaysNinePaneLines) {
  f::QvFProgram empty;
  empty.name = u"a,b";
  f::ParseTime(u"00:30:00", empty.program_info.program_time);
  empty.program_info.region.width = 1920;
  writer_.outputProgram(U16(dir_.Sub("e.csv")), empty);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("e.csv")),
            "a\\,b\r\n"
            "0xD4F0FF,0,0,1920,0,00:30:00,0\r\n"
            "0,playlist_0.csv,0,0,1920,0,0x000000,false,0,true\r\n"
            "1,playlist_1.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "2,playlist_2.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "3,playlist_3.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "4,playlist_4.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "5,playlist_5.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "6,playlist_6.csv,0,0,0,0,0x000000,false,0,false\r\n"
            "7,playlist_7.csv,0,0,0,0,0x000000,false,0,true\r\n"
            "8,playlist_8.csv,0,0,0,0,0x000000,false,0,false\r\n");
}

TEST_F(CsvProgram, WrittenProgramReadsBack) {
  f::QvFProgram p;
  p.name = U16("表示\\番組");
  f::ParseTime(u"12:34:56", p.program_info.program_time);
  p.program_info.layout_lock = true;
  p.program_info.region.x = -5;
  p.program_info.region.height = 2160;
  f::ParseColor(u"#7f0a0b0c", p.program_info.background_color);
  for (int i = 0; i < 7; ++i) {
    f::QvFPane pane;
    pane.region.x = i * 100;
    pane.region.width = 50 + i;
    pane.playlist_file.mute = i % 2 == 1;
    p.pane_info.panes.push_back(pane);
  }
  reader_.index().addProgramId(u"Program_1");
  qvtest::MakeDirs(dir_.Sub("Program_1"));
  writer_.outputProgram(U16(dir_.Sub("Program_1/program.csv")), p);
  auto back = reader_.readProgram(U16(dir_.Sub("Program_1/program.csv")));

  EXPECT_EQ(back->name, p.name);
  EXPECT_EQ(f::FormatTime(back->program_info.program_time), u"12:34:56");
  EXPECT_EQ(back->program_info.layout_lock, std::optional<bool>(true));
  EXPECT_EQ(back->program_info.region.x, -5);
  EXPECT_EQ(back->program_info.region.height, 2160);
  EXPECT_EQ(f::FormatColorHex(back->program_info.background_color), u"0x7f0a0b0c");
  // Six panes have a place in the file; the seventh is dropped.
  ASSERT_EQ(back->pane_info.panes.size(), 6u);
  for (int i = 0; i < 6; ++i) {
    const f::QvFPane& pane = back->pane_info.panes[i];
    EXPECT_EQ(pane.region.x, i * 100);
    EXPECT_EQ(pane.region.width, 50 + i);
    EXPECT_EQ(pane.playlist_file.mute, std::optional<bool>(i % 2 == 1));
    EXPECT_EQ(pane.playlist_file.ref_playlist.text, u"PL" + f::FormatInt(i + 1));
  }
  const QvFCsvProgramEntry* entry = reader_.index().findProgramEntry(u"PG1");
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->playlist_colors.at(u"playlist_1.csv"), u"0x7f0a0b0c");
  EXPECT_EQ(entry->playlist_colors.count(u"playlist_5.csv"), 0u);
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
