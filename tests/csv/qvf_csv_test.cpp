// Project CSV files: the byte syntax (splitting, escapes, line ends, the line limit, code page 932
// both ways, failure codes); schedules, time tables, programs, playlists and contents as the
// reader takes them; numbering of identifiers, file and folder names.  The files the writer makes
// on the way back: tests/blackbox/roundtrip_test.cpp.  (Reads shared by the checker and the reader
// are a saving no run can see.)
#include "csv/qv_csv_file.h"
#include "csv/qvf_csv_index.h"
#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf, qvtest::Cp932, qvtest::ReadFile, qvtest::U16, qvtest::U8, qvtest::WriteFile;

// The rows of `bytes` as UTF-8, fields ended by '|', rows by ';'.
std::string Rows(std::string_view bytes) {
  QvCsvFile file;
  file.ReadBytes(bytes);
  std::string text;
  for (std::size_t i = 0; i < file.RowCount(); ++i, text += ";")
    for (const std::u16string& field : file.GetRow(i)) text += U8(field) + "|";
  return text;
}

TEST(CsvFileSyntax, SplitsEscapesLineEndsAndTheLineLimit) {
  const std::string at_limit(1023, 'x');
  std::string kana;  // 512 double-byte characters: 1024 bytes of code page 932
  for (int i = 0; i < 512; ++i) kana += Cp932("ア");
  const std::pair<std::string, std::string> cases[] = {
      {"a,b,\n,\n\nsingle", "a|b||;||;|;single|;"},
      {"a\r\nb\nc\r\n", "a|;b|;c|;"},
      {"", ""},
      {"a\\,b,c\\\\,d", "a,b|c\\|d|;"},
      {"a\\", "a\\|;"},  // a backslash at the end stays
      {"\\\\\\", "\\\\|;"},
      {"x\\\\\\,y", "x\\,y|;"},
      {std::string("ab\0c,d\nnext", 11), "ab|;next|;"},  // a NUL ends the line
      {"a\r\nb\r\n\x1a", "a|;b|;"},                      // an end-of-file mark ends the text
      {"a\x1a,b\nc", "a|;"},
      {Cp932("表示,ソフト\\,名"), "表示|ソフト,名|;"},  // 表, ソ end in 0x5C: no escape
      // A line of 1024 bytes (of code page 932) or more ends the read silently.
      {at_limit + "\r\nz\n", at_limit + "|;z|;"},
      {"first\n" + std::string(1024, 'y') + "\nthird\n", "first|;"},
      {kana, ""},
  };
  for (const auto& [bytes, rows] : cases) EXPECT_EQ(Rows(bytes), rows) << bytes;
  EXPECT_EQ(Rows(kana.substr(2)).size(), 511u * 3 + 2);

  QvCsvFile file;
  file.ReadBytes("a,b");
  EXPECT_TRUE(file.GetRow(4).empty() && file.GetFirstField(99).empty());
  // A bad escape anywhere fails the whole read and keeps no rows.
  QvCsvFile fresh;
  EXPECT_EQ(CodeOf([&] { fresh.ReadBytes("ok\nbad\\x\n"); }), -102);
  EXPECT_EQ(fresh.RowCount(), 0u);
}

TEST(CsvFileWrite, ExactBytesRoundTripAndFailures) {
  QvCsvFile out;
  const QvCsvFile::Row tricky = {u"a\\", u"\\,", u",", u"", u"x\\\\y", U16("予定表ソ"), u"\\"};
  out.AddRow({U16("表,示"), u"", u"a\\b"});
  out.AddRow({});
  out.AddRow(tricky);
  EXPECT_EQ(out.WriteBytes(),
            Cp932("表\\,示,,a\\\\b\r\n\r\na\\\\,\\\\\\,,\\,,,x\\\\\\\\y,予定表ソ,\\\\\r\n"));
  qvtest::ScratchDir dir;
  out.WriteFile(U16(dir.Sub("テスト.csv")));
  QvCsvFile in;
  in.ReadFile(U16(dir.Sub("テスト.csv")));
  ASSERT_EQ(in.RowCount(), 3u);
  EXPECT_EQ(in.GetRow(1), QvCsvFile::Row{u""});  // a row without fields comes back with one
  EXPECT_EQ(in.GetRow(2), tricky);

  EXPECT_EQ(CodeOf([&] { in.ReadFile(U16(dir.Sub("missing.csv"))); }), -101);
  EXPECT_EQ(CodeOf([&] { in.ReadFile(U16(dir.path())); }), -101);
  EXPECT_EQ(CodeOf([&] { out.WriteFile(U16(dir.Sub("no/such/folder.csv"))); }), -3);
}

// The add form numbers new keys, the plain form enters an empty one.
TEST(CsvNames, IndexKeysPlaylistsAndWrittenNames) {
  QvFCsvIndex index;
  EXPECT_EQ(index.addTimetableId(u"b.csv") + index.addTimetableId(u"a.csv") +
                index.addTimetableId(u"b.csv"),
            u"TM1TM2TM1");
  EXPECT_EQ(index.addProgramId(u"P"), u"PG1");  // each map counts for itself
  EXPECT_EQ(index.programId(u"unknown"), u"");
  EXPECT_EQ(index.addProgramId(u"Q"), u"PG3");  // the plain form made the map larger
  // Keys in 16-bit code units: a surrogate pair sorts before U+FF21.
  for (std::u16string key : {u"\uFF21", u"\U0001F600", u"A", u""}) index.addTimetableId(key);
  EXPECT_EQ(index.timetableFiles(),
            (std::vector<std::u16string>{u"", u"A", u"a.csv", u"b.csv", u"\U0001F600", u"\uFF21"}));
  // Each program entry numbers its own playlists.
  EXPECT_EQ(index.findProgramEntry(u"PG1"), nullptr);
  QvFCsvProgramEntry& first = index.programEntry(u"PG1");
  first.addPlaylistId(u"playlist_1.csv");
  EXPECT_EQ(first.addPlaylistId(u"playlist_2.csv"), u"PL2");
  EXPECT_EQ(index.programEntry(u"PG2").addPlaylistId(u"playlist_2.csv"), u"PL1");
  EXPECT_EQ(index.findProgramEntry(u"PG1"), &first);

  // The writer numbers file and folder names at their first use, not by the identifier.
  QvFWriteCsv writer(u"20240102_030405");
  for (const char16_t* id : {u"TM7", u"TM7", u"TM2", u"x"}) writer.timetableFileName(id);
  EXPECT_EQ(writer.timetableFileName(u"TM1"), u"TimeTable_20240102_030405_004.csv");
  EXPECT_EQ(writer.timetableFileName(u"TM7"), u"TimeTable_20240102_030405_001.csv");
  for (int i = 1; i <= 1000; ++i) writer.programFolderName(u"PG-" + f::FormatInt(i));
  EXPECT_EQ(writer.programFolderName(u"PG-1000"), u"Program_20240102_030405_1000");
  EXPECT_EQ(QvFWriteCsv::imageFileName(u"C", 3) + QvFWriteCsv::imageFileName(u"C", 4),
            u"C.bmpC.jpg");
}

class CsvScheduleTimeTable : public ::testing::Test {
 protected:
  // Writes `utf8` as a code page 932 file and gives its path.
  std::u16string Project(const std::string& name, const std::string& utf8) {
    WriteFile(dir_.Sub(name), Cp932(utf8));
    return U16(dir_.Sub(name));
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

// Two columns give no default, nor does "1"; a file keeps its identifier; an empty name is a name;
// an empty date is today's.  Short files and lines.
TEST_F(CsvScheduleTimeTable, ScheduleReadAndShortFiles) {
  f::QvFSchedule s = reader_.readSchedule(
      Project("s.csv", "週間予定\n1\n2024/3/9,表.csv,TRUE\n,b.csv\n2025/12/31,表.csv,1\n,,\n"));
  std::string entries = U8(s.schedule_list.name + u" " + f::FormatFlag(s.schedule_list.add));
  for (const f::QvFScheduleEntry& e : s.schedule_list.schedules)
    entries +=
        ";" + U8(f::FormatDate(e.date) + u" " + e.ref_timetable.text) + (e.default_ ? " true" : "");
  const std::string today = U8(f::FormatDate(f::QvFLocalNow()));
  EXPECT_EQ(entries,
            "週間予定 true;2024/03/09 TM1 true;" + today + " TM2;2025/12/31 TM1;" + today + " TM3");

  f::QvFSchedule empty = reader_.readSchedule(Project("e.csv", "\nyes\n"));
  EXPECT_TRUE(!empty.schedule_list.add && empty.schedule_list.schedules.empty());
  EXPECT_TRUE(
      reader_.readTimeTable(Project("t.csv", "name\n0xD4F0FF\n"))->table_list.tables.empty());
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Project("o.csv", "n\ntrue\n2024/01/01\n")); }), -102);
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(U16(dir_.Sub("missing.csv"))); }), -101);
  for (std::string line : {"", "08:00:00,09:00:00", "08:00:00,09:00:00,0", "08:00:00,,1,,3"})
    EXPECT_EQ(CodeOf([&] { reader_.readTimeTable(Project("t.csv", "n\nc\n" + line + "\n")); }),
              -102)
        << line;
  empty.schedule_list.add = true;
  writer_.outputSchedule(U16(dir_.Sub("none.csv")), empty);
  EXPECT_EQ(ReadFile(dir_.Sub("none.csv")), "\r\ntrue\r\n");
  EXPECT_EQ(CodeOf([&] { writer_.outputSchedule(U16(dir_.Sub("no/such.csv")), empty); }), -3);
}

// Start, then the program or the command's type and input, of each row; command lines add
// nothing to the program folders.
TEST_F(CsvScheduleTimeTable, TimeTableReadRowKinds) {
  auto t = reader_.readTimeTable(
      Project("t.csv",
              "朝\n0xD4F0FF\n08:00:00,09:30:00,0,番組A,0,\n9:5:1,,0,番組B\n10:00:00,,1,,3,HDMI1\n"
              "11:00:00,x,1,y,,\n12:00:00,,2\n13:00:00,14:00:00,0,番組A,0,\n"));
  std::string rows =
      U8(t->table_list.name + u" " + f::FormatTime(t->table_list.tables.at(0).program->end_time));
  for (const f::QvFTable& row : t->table_list.tables) {
    rows += ";";
    if (row.program)
      rows += U8(f::FormatTime(row.program->start_time) + u" " + row.program->ref_program.text);
    if (row.command)
      rows += U8(f::FormatTime(row.command->start_time) + u" " + f::FormatInt(row.command->type) +
                 u" " + row.command->target_input);
  }
  EXPECT_EQ(rows,
            "朝 09:30:00;08:00:00 PG1;09:05:01 PG2;10:00:00 3 HDMI1;11:00:00 0 ;;13:00:00 PG1");
  EXPECT_EQ(reader_.index().programFolders(),
            (std::vector<std::u16string>{U16("番組A"), U16("番組B")}));
}

std::string N(int v) { return " " + std::to_string(v); }
std::string Hex(const f::QvFColor& color) { return " " + U8(f::FormatColorHex(color)); }

// Every field of an item that a contents file carries, but its identifier.
std::string Describe(const f::QvFContent& c) {
  const std::string s = std::to_string(c.kind) + " " + U8(f::FormatTime(c.play_time.time)) +
                        N(c.play_time.content_end) + N(c.play_time.timeout);
  if (const auto* m = f::AsMovie(&c))
    return s + N(m->type) + N(m->aspect) + N(m->volume) + Hex(m->background_color);
  if (const auto* t = f::AsTelop(&c)) return s + N(t->type) + N(t->aspect);
  if (const auto* b = f::AsNone(&c))
    return s + (b->has_background_color ? Hex(b->background_color) : " clear");
  const f::QvFImage& i = *f::AsImage(&c);
  const auto& e = i.image_effect;
  return s + N(i.type) + N(i.aspect) + Hex(i.background_color) +
         (e ? " fx" + N(e->type.value_or(-1)) + N(e->direction) + " " +
                  U8(f::FormatFlag(e->via_backgroundcolor)) + N(e->t)
            : "");
}

// Line 2 of a contents file: colour, aspect 3, volume 70, effect time 5, end "42".
std::string Line2(const std::string& kind, const std::string& fx = "0") {
  return kind + ",00:01:02,,false,#010203,3,,0,0,0,70," + fx + ",5,0,-1,-1,-1,-1,42\n";
}

class CsvProgram : public CsvScheduleTimeTable {
 protected:
  void SetUp() override { reader_.index().addProgramId(u"P"); }
  // Writes a file below folder P (code page 932); its path as the pipeline joins it: "<dir>\P\x".
  std::u16string Write(const std::string& name, const std::string& utf8) {
    std::string physical = name;
    std::replace(physical.begin(), physical.end(), '\\', '/');
    WriteFile(dir_.Sub("P/" + physical), Cp932(utf8));
    return U16(dir_.path() + "\\P\\" + name);
  }
  // The item of one contents file, described; "" when there is none.
  std::string Item(const std::string& utf8) {
    f::QvFPlaylist playlist;
    reader_.readContents(Write("c.csv", utf8), playlist, reader_.index().programEntry(u"PG1"));
    return playlist.contents.empty() ? "" : Describe(*playlist.contents.at(0));
  }
};

// The folder name stands behind the last backslash but one.  Lines 9, 7 and the exact "false" give
// no pane, "FALSE" and "" do not skip; one file is one playlist.
TEST_F(CsvProgram, ReadTakesFrameAndPanesByNumber) {
  reader_.index().addProgramId(u"番組");
  auto p = reader_.readProgram(Write(
      "番組\\program.csv",
      "朝の番組\n0xD4F0FF,10,20,1920,1080,01:02:03,true\n0,playlist_0.csv,0,0,0,0,0x80112233\n"
      "9,x.csv\n7,playlist_7.csv,1,1,1,1,bad,true,0,true\n3,b.csv,1,2,3,4,#ff0000,1,0,true\n"
      "1,a.csv,5,6,7,8,0x00ff00,x,0,FALSE\n2,c.csv,0,0,0,0,0x0000ff,false,0,false\n"
      "5,t.csv,0,0,0,0,nocolour,true,0,\n4,b.csv,0,0,9,9,0x010101,0,0,yes\n"));
  std::string all =
      U8(p->id.text + u" " + p->name + u" " + f::FormatColorHex(p->program_info.background_color));
  for (const f::QvFPane& pane : p->pane_info.panes)
    all += ";" + U8(pane.playlist_file.ref_playlist.text) + " " +
           U8(f::FormatFlag(pane.playlist_file.mute)) + N(pane.region.x) + N(pane.region.width);
  EXPECT_EQ(all, "PG2 朝の番組 0x80112233;PL1 true 1 3;PL2 false 5 7;PL3 true 0 0;PL1 false 0 9");
}

// Six columns give no layout lock; lines of other numbers pass; short lines are -102.
TEST_F(CsvProgram, ShortLinesAre102) {
  EXPECT_EQ(reader_.readProgram(Write("program.csv", "\n0x0,0,0,0,0,\n7\n8,\nzz\n"))
                ->program_info.layout_lock,
            std::optional<bool>(false));
  for (const char* text : {"", "n\n0x0,1,2,3,4\n", "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0\n",
                           "n\n0x0,0,0,0,0,\n5\n", "n\n0x0,0,0,0,0,\n3,p.csv,0,0,0,0,#0,true,0\n",
                           "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0,ffffff\n"})
    EXPECT_EQ(CodeOf([&] { reader_.readProgram(Write("program.csv", text)); }), -102) << text;
  for (std::string text :
       {"noextension\n" + Line2("1"), ".png\n" + Line2("1") /* < ".jpeg" */,
        std::string("a.mp4\n1,00:00:01\n"), std::string("a.tlp\n4,00:00:01,,,\n"),
        std::string("a.mp4\n1,,,,ff0000,0\n"), std::string("\n7\n"), std::string("\n1\n")})
    EXPECT_EQ(CodeOf([&] { Item(text); }), -102) << text;
}

// Kinds by extension, in any case; the packed effect code of images.
TEST_F(CsvProgram, ContentKindsAndPackedEffects) {
  const std::pair<std::string, std::string> cases[] = {
      {"..\\\\contents\\\\\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"..\\\\contents\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"t.TLP\n" + Line2("4"), "6 00:01:02 3 1 0 3"},
      {"p.JPEG\n" + Line2("1"), "1 00:01:02 0 0 0 3 0x010203"},  // no end code for images
      {"a.mp4\n1,00:00:00,,,0x0,1,,,,,-3,,,,,,,,12\n", "0 00:00:00 0 1 0 1 -3 0x000000"},
      {"x.avi\n" + Line2("1"), ""},
      {"x.mp4\n" + Line2("0"), ""},
      {"x.mp4\n", ""},  // a one-line file has no item
  };
  for (const auto& [text, item] : cases) EXPECT_EQ(Item(text), item) << text;
  // Runs of backslashes are one: both movies are one content, read twice.
  EXPECT_EQ(reader_.index().content_files.at(1).path + reader_.index().content_files.at(2).id,
            u"..\\contents\\A.MP4CT2");

  // Effects 0 and 19 are none; what follows the item's fields, for each packed code.
  std::string effects;
  for (const char* code :
       {"0", "19", "1073741824", "1", "2", "18", "258", "65537", "1073746690", "1073807361"})
    effects +=
        qvtest::EraseAll(Item("i.jpg\n" + Line2("1", code)), {"1 00:01:02 0 0 0 3 0x010203"}) + ";";
  EXPECT_EQ(effects,
            ";;; fx 18 0 false 5; fx 1 0 false 5; fx 17 0 false 5; fx 1 1 false 5; fx 18 0 true 5;"
            " fx 1 19 false 5; fx 18 19 true 5;");
}

// A placeholder stands only for empty playlists before the first items; a kind 7 item takes the
// program's colour.
TEST_F(CsvProgram, PlaceholderOnlyBeforeTheFirstItems) {
  const std::string pane = ",0,0,0,0,#445566,false,0,true\n";
  reader_.readProgram(Write("program.csv",
                            "n\n0x0,0,0,0,0,\n0,playlist_0.csv,0,0,0,0,0x112233\n"
                            "1,playlist_1.csv" +
                                pane + "2,playlist_2.csv" + pane + "3,playlist_3.csv" + pane));
  Write("playlist_1.csv", ""), Write("playlist_2.csv", "information\\\\\\\\c1.csv\n");
  Write("playlist_3.csv", "");
  std::string all;
  for (const char* name : {"playlist_1.csv", "playlist_2.csv", "playlist_3.csv"})
    for (const auto& item : reader_.readPlaylist(U16(dir_.path() + "\\P\\" + name)).contents)
      all += Describe(*item) + ";";
  EXPECT_EQ(all + Item("\n7,00:00:09\n"), "2 00:00:00 0 0 0x445566;2 00:00:09 0 0 0x112233");
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
