#include <gtest/gtest.h>

#include "tests/checker/checker_harness.h"
#include "tests/support/fake_env.h"

namespace qvtest {
namespace {

using checker::ChContentsInfo;
using checker::ChProgram;
using checker::ChSchedule;
using checker::ChTimeTable;

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

// Today's time table is the last of today's entries, an empty date is today's, an unreadable
// one bad data.
TEST(CheckerSchedule, TodaysTableAndUnreadableDates) {
  FixedClock clock(Noon());
  const std::string today = kToday;
  CheckerHarness h;
  const std::string file =
      h.Csv("Schedule_1.csv", {"name", "false", today + ",TM_a.csv", today + ",TM_today.csv,true",
                               "2024/5", "abc,TM_x.csv"});
  EXPECT_EQ(h.Check(ChSchedule, file), 0);
  EXPECT_EQ(U8(h.checker.today_timetable), "TM_today.csv");
  EXPECT_EQ(h.Kinds(), "SC0301:E SC0301:E");
  EXPECT_EQ(h.Results()[0].text, U8(checker::QvChMessage::getMessage(u"msg.DATE")));

  CheckerHarness g;
  const std::string bare = g.Csv("Schedule_1.csv", {"n", "f", today, ",TM_empty.csv"});
  EXPECT_EQ(g.Check(ChSchedule, bare), 0);
  EXPECT_EQ(g.Kinds(), "SC0301:E");  // today without a time table
  EXPECT_EQ(U8(g.checker.today_timetable), "TM_empty.csv");
}

// The date cell is scanned "%4d/%2d/%2d": a third digit of the day is left over, and the
// ideographic space before a number is white space.
TEST(CheckerSchedule, DateCellKeepsItsFieldWidthsAndWindowsWhiteSpace) {
  FixedClock clock(Noon());
  CheckerHarness h;
  const std::string today = kToday;
  const std::string spaced =
      "\u3000" + today.substr(0, 5) + "\u3000" + today.substr(5, 3) + "\u3000" + today.substr(8);
  EXPECT_EQ(h.Check(ChSchedule, h.Csv("Schedule_1.csv",
                                      {"n", "f", spaced + ",TM_a.csv", today + "9,TM_b.csv"})),
            0);
  EXPECT_EQ(U8(h.checker.today_timetable), "TM_b.csv");
  EXPECT_EQ(h.Kinds(), "");
}

// Only today's time table is held against the clock: a time before now is a warning, one after
// it is not, and another day's table is not looked at.
TEST(CheckerTimeTable, TodaysTimesAgainstTheClock) {
  FixedClock clock(Noon());
  CheckerHarness h;
  EXPECT_EQ(
      h.Check(ChSchedule, h.Csv("Schedule_1.csv", {"n", "f", std::string(kToday) + ",TM_t.csv",
                                                   "2030/06/16,TM_o.csv"})),
      0);
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_t.csv", {"t", "x", "11:59:59,12:00:01,,,,"})), 0);
  EXPECT_EQ(h.Check(ChTimeTable, h.Csv("TM_o.csv", {"t", "x", "00:00:00,00:00:00,,,,"})), 0);
  EXPECT_EQ(h.Kinds(), "TM0301:W");
}

TEST(CheckerContents, NumberRulesStopAtTheRowsEnd) {
  CheckerHarness g;
  // "-1" and an empty cell pass; a row of 14 cells is not tested from column 14.
  EXPECT_EQ(g.Check(ChContentsInfo, g.Csv("c2.csv", Contents("a.mp4", "7", "0x0", ""))), 0);
  EXPECT_EQ(g.Check(ChContentsInfo, g.Csv("c3.csv", {"a.jpg", "2,,,,0x0,,,,,,,,,9"})), 0);
  EXPECT_EQ(g.Kinds(), "CI0211:E CI0203:E");
}

TEST(CheckerProgram, LastTemplateLineGovernsFurtherRowsWithTheirPanes) {
  CheckerHarness h;
  std::vector<std::string> lines = {"prog", "0xD4F0FF,0,0,1920,1080,00:01:00,0"};
  for (int i = 0; i < 4; ++i) lines.push_back("9,playlist_9.csv,0,0,0,0,0x0,false,0,true");
  lines.push_back("x1,p.csv");
  EXPECT_EQ(h.Check(ChProgram, h.Csv("P/program.csv", lines)), 0);
  EXPECT_EQ(h.Kinds(), "PG0900:E@4");  // row 6
  EXPECT_EQ(h.Results()[0].text, U8(checker::QvChMessage::getMessage(u"msg.NUMBER")));
}

}  // namespace
}  // namespace qvtest
