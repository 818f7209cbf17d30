// The checker, on files in a scratch folder, its report read back: the message catalogue in both
// languages; layouts, contents, telops, schedules, time tables, programs, unreadable files.
#include "base/qv_conv_exception.h"
#include "checker/qv_ch_message.h"
#include "checker/qv_ch_table.h"
#include "checker/qv_checker.h"
#include "tests/support/test_support.h"

namespace qvtest {
namespace {

namespace checker = quorvane::qvconv::checker;
using checker::ChContentsInfo, checker::ChProgram, checker::ChSchedule, checker::ChTimeTable;
using checker::QvChMessage;

class CheckerHarness {
 public:
  CheckerHarness() {
    checker.createReport(), checker.setSource(U16(dir.path()));
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
  } catch (const quorvane::qvconv::converter::QvConvException& e) {
    return e.code() + 10000;
  }

  // "id:kind@pane" of every finding in report order, and " =<code>" for a code that is not 0;
  // `text` gets the first finding's text.
  std::string Kinds(std::int32_t code = 0, std::string* text = nullptr) const {
    std::string kinds;
    for (const checker::QvChecker::CheckedFile& data : checker.check_data) {
      for (const checker::QvChecker::Finding& r : data.results) {
        kinds += " " + U8(r.id) + (r.is_error ? ":E" : ":W") +
                 (r.pane < 0 ? "" : "@" + std::to_string(r.pane));
        if (text && text->empty()) *text = U8(r.message);
      }
    }
    return (kinds.empty() ? kinds : kinds.substr(1)) + (code ? " =" + std::to_string(code) : "");
  }

  ScratchDir dir;
  checker::QvChecker checker;
};

TEST(CheckerCatalogue, EveryKeyInBothLanguagesChosenByTheLocale) {
  const QvChMessage english("en_US.UTF-8"), japanese("ja_JP.UTF-8");
  EXPECT_EQ(japanese.messages.size(), english.messages.size());
  for (const auto& [key, text] : english.messages) {
    EXPECT_EQ(japanese.messages.count(key), 1u) << U8(key);
    EXPECT_NE(japanese.lookUp(key), text) << U8(key);
  }
  EXPECT_EQ(U8(japanese.lookUp(u"msg.SC0301")), "過去のスケジュールがあります。再生されません。");
  for (const char* name :
       {"en_US.UTF-8", "en_GB", "en", "C", "C.UTF-8", "POSIX", "English_US.1252"})
    EXPECT_TRUE(QvChMessage::IsEnglishLocale(name)) << name;
  for (const char* name : {"ja_JP.UTF-8", "de_DE.UTF-8", "fr", "english_fake", "eng_XX"})
    EXPECT_FALSE(QvChMessage::IsEnglishLocale(name)) << name;
  {
    EnvOverride locale("LC_ALL", "en_AU.UTF-8");
    EXPECT_EQ(U8(QvChMessage::getMessage(u"msg.NUMBER")), "Numeric data is invalid.");
  }
  // A rule the check table lacks ends the run.
  EXPECT_EQ(CodeOf([] { checker::QvChTable missing(u"XX0000"); }), -998);
}

// A contents file: the content, then its 19 properties with `type`, colour and the frame move cells
// as given.
std::vector<std::string> Contents(const std::string& content, const std::string& type,
                                  const std::string& colour = "0x000000",
                                  const std::string& move = "-1") {
  return {content,
          type + ",00:00:10,,false," + colour + ",0,,0,0,0,100,0,0,0," + move + ",-1,-1,-1,11"};
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

// The day of the schedule and time table checks, whose clock stands at noon.
constexpr char kToday[] = "2030/06/15";

// Checks a schedule of the given entries: today's time table, then the findings.
std::string Today(CheckerHarness& h, std::vector<std::string> entries,
                  std::string* text = nullptr) {
  entries.insert(entries.begin(), {"n", "f"});
  const std::int32_t code = h.Check(ChSchedule, h.Csv("Schedule_1.csv", entries));
  return U8(h.checker.today_timetable) + " " + h.Kinds(code, text);
}

// Today's time table is the last of today's entries, an empty date is today's, an unreadable one
// bad data.  The date cell is scanned "%4d/%2d/%2d": a third digit of the day is left over, and
// the ideographic space before a number is white space.
TEST(CheckerSchedule, TodaysTableAndDateCells) {
  FixedClock clock(Tm(2030, 6, 15, 12));
  const std::string t = kToday;
  CheckerHarness h, g, s;
  std::string text;
  EXPECT_EQ(Today(h, {t + ",TM_a.csv", t + ",TM_today.csv,true", "2024/5", "abc,TM_x.csv"}, &text),
            "TM_today.csv SC0301:E SC0301:E");
  EXPECT_EQ(text, U8(QvChMessage::getMessage(u"msg.DATE")));
  EXPECT_EQ(Today(g, {t, ",TM_empty.csv"}), "TM_empty.csv SC0301:E");  // today without a table
  const std::string spaced =
      "\u3000" + t.substr(0, 5) + "\u3000" + t.substr(5, 3) + "\u3000" + t.substr(8);
  EXPECT_EQ(Today(s, {spaced + ",TM_a.csv", t + "9,TM_b.csv"}), "TM_b.csv ");
}

// Only today's time table is held against the clock: a time before now is a warning, one after
// it is not, and another day's table is not looked at.
TEST(CheckerTimeTable, TodaysTimesAgainstTheClock) {
  FixedClock clock(Tm(2030, 6, 15, 12));
  CheckerHarness h;
  EXPECT_EQ(Today(h, {std::string(kToday) + ",TM_t.csv", "2030/06/16,TM_o.csv"}), "TM_t.csv ");
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_t.csv", {"t", "x", "11:59:59,12:00:01,,,,"})), 0);
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_o.csv", {"t", "x", "00:00:00,00:00:00,,,,"})), 0);
  EXPECT_EQ(h.Kinds(), "TM0301:W");
}

std::string Pane(int n, const std::string& region, const std::string& used) {
  return std::to_string(n) + ",playlist_" + std::to_string(n) + ".csv," + region + ",0x0,false,0," +
         used;
}

// The program frame against the display region, pane roles and regions; the last template line
// governs further rows, with their panes; a short pane line ends the walk with -500 by value.
TEST(CheckerLayout, ProgramFrameAgainstTheRegionAndPaneRoles) {
  const std::string full = "0,0,1920,1080", one = "0,0,1,1", nine = Pane(9, "0,0,0,0", "true");
  const struct {
    std::string frame;
    std::vector<std::string> panes;
    std::string findings;
  } cases[] = {
      {"0,10,1920,1080", {}, "PG0702:E"},
      {"5a,0,1920,1080", {}, "PG0701:E PG0301:E"},
      {"10,0,5000,5000", {}, "PG0701:E"},  // no size finding after a position finding
      {"0,5,1920,1080", {Pane(1, "0,0,3000,3000", "true")}, "PG0702:E"},  // silences row 1's size
      {full, {Pane(1, full, "true"), Pane(2, "0,0,10,10", "1")}, "PG0903:E@1"},
      {full, {Pane(1, "0,0,10,10", "false"), Pane(3, "0,0,10,10", "")}, ""},
      {full, {Pane(1, "0,1081,3000,100", "TRUE")}, "PG1201:W PG1301:W"},
      {full, {Pane(1, "-1,0,10,10", "true")}, "PG1101:E"},
      {full, {Pane(5, one, "true"), Pane(6, one, "true")}, "PG0907:E@1"},
      {full, {Pane(6, one, "true"), Pane(5, one, "true")}, "PG0906:E@1"},
      {full, {Pane(8, one, "true"), Pane(8, one, "0"), Pane(8, one, "false")}, "PG0909:E@0"},
      {full, {Pane(9, one, "true"), Pane(12, "", ""), "0"}, ""},
      {full, {nine, nine, nine, nine, "x1,p.csv"}, "PG0900:E@4"},  // row 6
      {full, {"1,playlist_1.csv,0,0"}, " =9500"},
      {full, {"7"}, " =9500"},
  };
  for (const auto& c : cases) {
    CheckerHarness h;
    std::vector<std::string> lines = {"prog", "0xD4F0FF," + c.frame + ",00:01:00,0"};
    lines.insert(lines.end(), c.panes.begin(), c.panes.end());
    std::string text;
    EXPECT_EQ(h.Kinds(h.Check(ChProgram, h.Csv("P/program.csv", lines)), &text), c.findings)
        << testing::PrintToString(lines);
    EXPECT_TRUE(c.findings != "PG0900:E@4" || text == U8(QvChMessage::getMessage(u"msg.NUMBER")));
  }
  CheckerHarness h;  // no height cell: no finding
  EXPECT_EQ(h.Check(ChProgram, h.Csv("p.csv", {"n", "0x0,0,0,5000"})), 0);
  EXPECT_FALSE(h.checker.has_result);
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

// Refusals by extension, with their texts: tests/blackbox/check_report_test.cpp.
TEST(CheckerContent, ColoursAndEffects) {
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

// The findings on a contents file naming a telop of the given bytes (a telop file: a first line,
// the parameters, the text), and the code if not 0.
std::string CheckTelop(const std::string& bytes, const std::string& name = "t.tlp") {
  CheckerHarness h;
  WriteFile(h.dir.Sub("proj/contents/t.tlp"), bytes);
  h.Csv("proj/P/information/contents_5_001.csv", {"..\\\\contents\\\\" + name, "4,,,,0x0"});
  return h.Kinds(
      h.Check(ChContentsInfo, h.dir.Sub("proj") + "\\P\\information\\contents_5_001.csv"));
}
std::string Telop(int font_size, const std::string& line) {
  return "telop\r\n0,0," + std::to_string(font_size) + ",0,0,0,0,0,0\r\n" + line + "\r\n";
}

TEST(CheckerContent, TelopLimitsAndBrokenTelops) {
  // Characters, not bytes: 69 kanji pass, 70 do not.
  std::string kanji70;
  for (int i = 0; i < 70; ++i) kanji70 += "字";
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70.substr(0, 69 * 3)))), "");
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70))), "CI2301:E");
  // A UTF-16 line of more than 1024 characters takes no part.
  EXPECT_EQ(CheckTelop(Utf16Le(Telop(100, std::string(1025, 'a')))), "");
  // Long code page 932 lines read as pieces of 1023 bytes: 1023 half-width katakana (3 bytes as
  // UTF-8) keep the 341 characters that fit in 1024 bytes.
  EXPECT_EQ(CheckTelop(Telop(20, std::string(3000, '\xB1'))), "");
  EXPECT_EQ(CheckTelop(Telop(21, std::string(3000, '\xB1'))), "CI2301:E");
  // Broken or missing telops end the check with -500 thrown by value.
  EXPECT_EQ(CheckTelop("only one line"), " =9500");
  EXPECT_EQ(CheckTelop("t\n1,2,100,4\nx\n"), " =9500");
  EXPECT_EQ(CheckTelop("", "missing.tlp"), " =9500");
}

}  // namespace
}  // namespace qvtest
