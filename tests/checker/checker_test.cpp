// The checker: the message catalogue and the check table; a checker with a begun report, files
// written into a scratch folder and the Results read back, over layouts, contents, telops,
// schedules, time tables and programs, and unreadable files.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "base/qv_conv_exception.h"
#include "checker/qv_ch_message.h"
#include "checker/qv_ch_table.h"
#include "checker/qv_checker.h"
#include "tests/support/fake_env.h"
#include "tests/support/test_support.h"
#include "xml/qvf_xml_document.h"

namespace qvtest {
namespace {

namespace checker = quorvane::qvconv::checker;
namespace xml = quorvane::qvformat::format::io::xml;
using checker::ChContentsInfo;
using checker::ChProgram;
using checker::ChSchedule;
using checker::ChTimeTable;
using checker::QvChMessage;
using checker::QvChTable;
using quorvane::qvconv::converter::QvConvException;

struct ReportResult {
  std::string id, kind, pane, file, text;
};

class CheckerHarness {
 public:
  CheckerHarness() {
    checker.createReport(), checker.setSource(U16(dir.path())),
        checker.display_region = {0, 0, 1920, 1080};
  }

  // Writes a project CSV file (code page 932, CR LF) below the scratch folder.
  std::string Csv(const std::string& relative, const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) bytes += Cp932(line) + "\r\n";
    return WriteFile(dir.Sub(relative), bytes), dir.Sub(relative);
  }

  // Runs checkFile: the code of a QvConvException pointer, of one thrown by value plus 10000, or 0.
  std::int32_t Check(checker::QvChFileKind kind, const std::string& path) try {
    return CodeOf([&] { checker.checkFile(kind, U16(path)); });
  } catch (const QvConvException& e) {
    return e.code() + 10000;
  }

  // Every Result of the report in document order; Kinds() gives "id:kind@pane" of each.
  std::vector<ReportResult> Results() const {
    std::vector<ReportResult> results;
    for (const checker::QvChecker::CheckedFile& data : checker.check_data) {
      for (const checker::QvChecker::Finding& r : data.results) {
        results.push_back({U8(r.id), r.is_error ? "E" : "W",
                           r.pane < 0 ? "" : std::to_string(r.pane), U8(r.file), U8(r.message)});
      }
    }
    return results;
  }
  std::string Kinds() const {
    std::string text;
    for (const ReportResult& r : Results())
      text += " " + r.id + ":" + r.kind + (r.pane.empty() ? "" : "@" + r.pane);
    return text.empty() ? text : text.substr(1);
  }

  ScratchDir dir;
  checker::QvChecker checker;
};

TEST(CheckerCatalogue, EveryKeyInBothLanguagesChosenByTheLocale) {
  const QvChMessage english("en_US.UTF-8");
  const QvChMessage japanese("ja_JP.UTF-8");
  EXPECT_EQ(japanese.messages.size(), english.messages.size());
  for (const auto& [key, text] : english.messages) {
    EXPECT_EQ(japanese.messages.count(key), 1u) << U8(key);
    EXPECT_NE(japanese.lookUp(key), text) << U8(key);
  }
  EXPECT_EQ(U8(japanese.lookUp(u"msg.SC0301")), "過去のスケジュールがあります。再生されません。");
  EXPECT_EQ(english.lookUp(u"msg.CI0121"), english.lookUp(u"msg.CI0100"));  // a shared text
  EXPECT_THROW(english.lookUp(u"msg.CI1300"), std::out_of_range);
  // The language follows the locale.
  for (const char* name :
       {"en_US.UTF-8", "en_GB", "en", "C", "C.UTF-8", "POSIX", "English_US.1252"})
    EXPECT_TRUE(QvChMessage::IsEnglishLocale(name)) << name;
  for (const char* name : {"ja_JP.UTF-8", "de_DE.UTF-8", "fr", "english_fake", "eng_XX"})
    EXPECT_FALSE(QvChMessage::IsEnglishLocale(name)) << name;
  {
    FixedLocale locale("en_AU.UTF-8");
    EXPECT_EQ(U8(QvChMessage::getMessage(u"msg.NUMBER")), "Numeric data is invalid.");
  }
  EXPECT_EQ(QvChMessage::getMessage(u"msg.NOPE"), u"");
}

TEST(CheckerTable, SelectsRowsAndRefusesUnknownOnes) {
  QvChTable table;
  table.buildTable();
  table.buildTable();  // a table is filled once
  ASSERT_EQ(table.rows.size(), 27u);
  EXPECT_TRUE(table.selectRow(u"PG0501"));
  EXPECT_TRUE(table.current.is_error);
  // A failed selection leaves the current row alone.
  EXPECT_FALSE(table.selectRow(u"CI1401"));
  EXPECT_FALSE(table.selectRow(u"pg0501"));
  EXPECT_EQ(U8(table.current.id), "PG0501");
  EXPECT_EQ(CodeOf([] { QvChTable missing(u"XX0000"); }), -998);
}

// A contents file: the content, then its 19 properties with `type`, colour and the frame move cells
// as given.
std::vector<std::string> Contents(const std::string& content, const std::string& type,
                                  const std::string& colour = "0x000000",
                                  const std::string& move = "-1") {
  return {content,
          type + ",00:00:10,,false," + colour + ",0,,0,0,0,100,0,0,0," + move + ",-1,-1,-1,11"};
}

TEST(CheckerReport, PaneOverrideAndKeysWithoutText) {
  CheckerHarness h;
  FixedLocale locale("en_US.UTF-8");
  const std::string contents =
      h.Csv("P/information/contents_1_001.csv", Contents("..\\\\contents\\\\a.wmv", "1"));
  h.checker.pane_override = 4;
  EXPECT_EQ(h.Check(ChContentsInfo, contents), 0);
  h.checker.pane_override = -1;
  h.checker.addResult(u"EP0000", true, -1, u"", u"msg.EP0000");
  h.checker.addResult(u"XX0001", false, 3, u"", u"");
  EXPECT_TRUE(h.checker.has_result && h.checker.has_error);
  const std::vector<ReportResult> r = h.Results();
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].pane + r[0].file, "4a.wmv");  // the override goes before the row's pane
  EXPECT_EQ(r[1].pane + r[1].file, "");
  EXPECT_EQ(r[2].kind + r[2].pane, "W3");
  EXPECT_EQ(r[2].text, "An unknown error exists in the data.");
}

TEST(CheckerWalk, UnreadableFilesFailAsCsv) {
  CheckerHarness h;
  EXPECT_EQ(h.Check(ChSchedule, h.dir.Sub("none.csv")), -101);
  const std::string locked = h.Csv("locked.csv", {"name"});
  {
    UnreadableFiles unreadable;
    EXPECT_EQ(h.Check(ChSchedule, locked), -101);
  }
  EXPECT_EQ(h.Check(ChSchedule, h.Csv("bad.csv", {"a\\b"})), -102);
  EXPECT_EQ(h.Check(ChSchedule, h.Csv("empty.csv", {})), 0);
  EXPECT_FALSE(h.checker.has_result);
}

// The clock of the schedule and time table checks: 2030/06/15 12:00:00.
constexpr char kToday[] = "2030/06/15";
std::tm Noon() {
  std::tm t{};
  t.tm_year = 130, t.tm_mon = 5, t.tm_mday = 15, t.tm_hour = 12;
  return t;
}

// Checks a schedule of the given entries: today's time table, then the findings.
std::string Today(CheckerHarness& h, std::vector<std::string> entries) {
  entries.insert(entries.begin(), {"n", "f"});
  const std::int32_t code = h.Check(ChSchedule, h.Csv("Schedule_1.csv", entries));
  return U8(h.checker.today_timetable) + " " + h.Kinds() +
         (code ? " =" + std::to_string(code) : "");
}

// Today's time table is the last of today's entries, an empty date is today's, an unreadable one
// bad data. The date cell is scanned "%4d/%2d/%2d": a third digit of the day is left over, and the
// ideographic space before a number is white space.
TEST(CheckerSchedule, TodaysTableAndDateCells) {
  FixedClock clock(Noon());
  const std::string t = kToday;
  CheckerHarness h, g, s;
  EXPECT_EQ(Today(h, {t + ",TM_a.csv", t + ",TM_today.csv,true", "2024/5", "abc,TM_x.csv"}),
            "TM_today.csv SC0301:E SC0301:E");
  EXPECT_EQ(h.Results()[0].text, U8(QvChMessage::getMessage(u"msg.DATE")));
  EXPECT_EQ(Today(g, {t, ",TM_empty.csv"}), "TM_empty.csv SC0301:E");  // today without a table
  const std::string spaced =
      "\u3000" + t.substr(0, 5) + "\u3000" + t.substr(5, 3) + "\u3000" + t.substr(8);
  EXPECT_EQ(Today(s, {spaced + ",TM_a.csv", t + "9,TM_b.csv"}), "TM_b.csv ");
}

// Only today's time table is held against the clock: a time before now is a warning, one after
// it is not, and another day's table is not looked at.
TEST(CheckerTimeTable, TodaysTimesAgainstTheClock) {
  FixedClock clock(Noon());
  CheckerHarness h;
  EXPECT_EQ(Today(h, {std::string(kToday) + ",TM_t.csv", "2030/06/16,TM_o.csv"}), "TM_t.csv ");
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_t.csv", {"t", "x", "11:59:59,12:00:01,,,,"})), 0);
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_o.csv", {"t", "x", "00:00:00,00:00:00,,,,"})), 0);
  EXPECT_EQ(h.Kinds(), "TM0301:W");
}

// The findings on a program of the frame `frame` (x,y,w,h) and pane lines, and the code if not 0;
// `text` gets the first finding's text.
std::string Layout(const std::string& frame, const std::vector<std::string>& panes = {},
                   std::string* text = nullptr) {
  CheckerHarness h;
  std::vector<std::string> lines = {"prog", "0xD4F0FF," + frame + ",00:01:00,0"};
  lines.insert(lines.end(), panes.begin(), panes.end());
  const std::int32_t code = h.Check(ChProgram, h.Csv("P/program.csv", lines));
  if (text) *text = h.Results().at(0).text;
  return h.Kinds() + (code ? " =" + std::to_string(code) : "");
}

std::string Pane(int n, const std::string& region, const std::string& used) {
  return std::to_string(n) + ",playlist_" + std::to_string(n) + ".csv," + region + ",0x0,false,0," +
         used;
}

TEST(CheckerLayout, ProgramFrameAgainstTheRegionAndPaneRoles) {
  EXPECT_EQ(Layout("0,10,1920,1080"), "PG0702:E");
  EXPECT_EQ(Layout("5a,0,1920,1080"), "PG0701:E PG0301:E");
  EXPECT_EQ(Layout("10,0,5000,5000"), "PG0701:E");  // no size finding after a position finding
  CheckerHarness h;                                 // no height cell: no finding
  EXPECT_EQ(h.Check(ChProgram, h.Csv("p.csv", {"n", "0x0,0,0,5000"})), 0);
  EXPECT_FALSE(h.checker.has_result);
  // A position finding of row 1 silences the frame's size test.
  EXPECT_EQ(Layout("0,5,1920,1080", {Pane(1, "0,0,3000,3000", "true")}), "PG0702:E");

  // Pane roles.
  const std::string full = "0,0,1920,1080";
  EXPECT_EQ(Layout(full, {Pane(1, full, "true"), Pane(2, "0,0,10,10", "1")}), "PG0903:E@1");
  EXPECT_EQ(Layout(full, {Pane(1, "0,0,10,10", "false"), Pane(3, "0,0,10,10", "")}), "");
  EXPECT_EQ(Layout(full, {Pane(1, "0,1081,3000,100", "TRUE")}), "PG1201:W PG1301:W");
  EXPECT_EQ(Layout(full, {Pane(1, "-1,0,10,10", "true")}), "PG1101:E");
  EXPECT_EQ(Layout(full, {Pane(5, "0,0,1,1", "true"), Pane(6, "0,0,1,1", "true")}), "PG0907:E@1");
  EXPECT_EQ(Layout(full, {Pane(6, "0,0,1,1", "true"), Pane(5, "0,0,1,1", "true")}), "PG0906:E@1");
  EXPECT_EQ(Layout(full, {Pane(8, "0,0,1,1", "true"), Pane(8, "0,0,1,1", "0"),
                          Pane(8, "0,0,1,1", "false")}),
            "PG0909:E@0");
  EXPECT_EQ(Layout(full, {Pane(9, "0,0,1,1", "true"), Pane(12, "", ""), "0"}), "");
  // The last template line governs further rows, with their panes.
  const std::string nine = Pane(9, "0,0,0,0", "true");
  std::string text;
  EXPECT_EQ(Layout(full, {nine, nine, nine, nine, "x1,p.csv"}, &text), "PG0900:E@4");  // row 6
  EXPECT_EQ(text, U8(QvChMessage::getMessage(u"msg.NUMBER")));
  // A short pane line ends the walk with -500 thrown by value.
  EXPECT_EQ(Layout(full, {"1,playlist_1.csv,0,0"}), " =9500");
  EXPECT_EQ(Layout(full, {"7"}), " =9500");
}

TEST(CheckerLayout, BackgroundAndSoundPlaylistsMustBeEmpty) {
  CheckerHarness h;
  h.Csv("P/playlist_0.csv", {}), h.Csv("P/playlist_7.csv", {"information\\\\contents_7_001.csv"});
  const std::string program = h.Csv(
      "P/program.csv", {"prog", "0xD4F0FF,0,0,1920,1080,00:01:00,0", "0,playlist_0.csv,0,0,0,0,0x0",
                        "7,playlist_7.csv", "0,playlist_7.csv", "7,missing.csv", "0"});
  EXPECT_EQ(h.Check(ChProgram, program), 0);
  EXPECT_EQ(h.Kinds(), "PG0908:E@1 PG0901:E@2");
}

// A refusal by extension silences the type rules of row 1.
TEST(CheckerContent, ExtensionsColoursAndEffects) {
  FixedLocale locale("C");
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"C:\\\\https://x\\\\a.exe", "1", ""},
      {"a.TLP", "1", ""},  // passes without the telop tests
      {"a.$str$", "1", "CI0100:E Not support the content of the extension (.$str$)."},
      {"noextension.", "3", "CI0100:E CI0204:E Content of unsupported format is specified."},
  };
  for (const auto& [content, type, expected] : cases) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChContentsInfo, h.Csv("c.csv", {content, type + ",,,,0x0"})), 0);
    EXPECT_EQ(h.Kinds() + (h.Results().empty() ? "" : " " + h.Results()[0].text), expected)
        << content;
  }
  // No colour, effect 15 however packed, an unknown direction, no effect cell.
  CheckerHarness h;
  int n = 0;
  for (const char* cells : {",,0,,0,0,0,100,15", ",0x0,0,,0,0,0,100,271", ",0x0,0,,0,0,0,100,14",
                            ",0x0,0,,0,0,0,100,-246", ",0x0,0,,0,0,0,100,", ""})
    h.Check(ChContentsInfo, h.Csv(std::to_string(++n) + ".csv",
                                  {"a.jpg", std::string("1,00:00:05,,false") + cells}));
  // "-1" and an empty cell pass; a row of 14 cells is not tested from column 14.
  h.Check(ChContentsInfo, h.Csv("c2.csv", Contents("a.mp4", "7", "0x0", "")));
  h.Check(ChContentsInfo, h.Csv("c3.csv", {"a.jpg", "2,,,,0x0,,,,,,,,,9"}));
  EXPECT_EQ(h.Kinds(), "CHECK_COLOR:E CI1401:E CI1401:E CI1380:E CI0211:E CI0203:E");
}

// A telop file: line 1, the parameter line, the text lines.
std::string Telop(int font_size, const std::string& line) {
  return "telop\r\n0,0," + std::to_string(font_size) + ",0,0,0,0,0,0\r\n" + line + "\r\n";
}

std::string Utf16Le(const std::string& utf8) {
  std::string out = "\xFF\xFE";
  for (const char16_t c : U16(utf8))
    out += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
  return out;
}

// The findings on a contents file naming a telop of the given bytes, and the code if not 0.
std::string CheckTelop(const std::string& bytes, const std::string& name = "t.tlp") {
  CheckerHarness h;
  WriteFile(h.dir.Sub("proj/contents/t.tlp"), bytes);
  h.Csv("proj/P/information/contents_5_001.csv", {"..\\\\contents\\\\" + name, "4,,,,0x0"});
  const std::int32_t code =
      h.Check(ChContentsInfo, h.dir.Sub("proj") + "\\P\\information\\contents_5_001.csv");
  return h.Kinds() + (code ? " =" + std::to_string(code) : "");
}

TEST(CheckerContent, TelopLimitsAndBrokenTelops) {
  // Characters, not bytes: 69 kanji pass, 70 do not.
  std::string kanji70;
  for (int i = 0; i < 70; ++i) kanji70 += "字";
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70.substr(0, 69 * 3)))), "");
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70))), "CI2301:E");
  // A UTF-16 line of more than 1024 characters takes no part.
  EXPECT_EQ(CheckTelop(Utf16Le(Telop(100, std::string(1025, 'a')))), "");
  // Long code page 932 lines read as pieces of 1023 bytes: 1023 half-width
  // katakana (3 bytes as UTF-8) keep the 341 characters that fit in 1024 bytes.
  EXPECT_EQ(CheckTelop(Telop(20, std::string(3000, '\xB1'))), "");
  EXPECT_EQ(CheckTelop(Telop(21, std::string(3000, '\xB1'))), "CI2301:E");
  // Broken or missing telops end the check with -500 thrown by value.
  EXPECT_EQ(CheckTelop("only one line"), " =9500");
  EXPECT_EQ(CheckTelop("t\n1,2,100,4\nx\n"), " =9500");
  EXPECT_EQ(CheckTelop("", "missing.tlp"), " =9500");
}

}  // namespace
}  // namespace qvtest
