#include <gtest/gtest.h>

#include "tests/checker/checker_harness.h"

namespace qvtest {
namespace {

using checker::ChContentsInfo;
using checker::ChProgram;
using checker::ChSchedule;
using checker::ChTimeTable;

// A contents file: row 0 the content, row 1 its 19 properties with `type`,
// colour and the four frame move cells as given, then attached files.
std::vector<std::string> Contents(const std::string& content, const std::string& type,
                                  const std::string& colour = "0x000000",
                                  const std::string& move = "-1") {
  return {content, type + ",00:00:10,,false," + colour + ",0,,0,0,0,100,0,0,0," + move +
                       ",-1,-1,-1,11"};
}

TEST(CheckerReport, IsBuiltElementByElementAndSavedWhole) {
  CheckerHarness h;
  LocaleScope locale("en_US.UTF-8");
  const std::string schedule = h.Csv("Schedule_1.csv", {"name", "false"});
  const std::string contents =
      h.Csv("P/information/contents_1_001.csv", Contents("..\\\\contents\\\\a.wmv", "1"));
  EXPECT_EQ(h.Check(ChSchedule, schedule), 0);
  h.checker.pane_override = 4;
  EXPECT_EQ(h.Check(ChContentsInfo, contents), 0);
  h.checker.pane_override = -1;
  h.checker.addResult(u"EP0000", true, -1, u"", u"msg.EP0000");
  h.checker.addResult(u"XX0001", false, 3, u"", u"");
  EXPECT_TRUE(h.checker.has_result);
  EXPECT_TRUE(h.checker.has_error);

  const std::string saved = h.dir.Sub("report.xml");
  h.checker.writeReport(U16(saved));
  QvFXmlDocument doc;
  doc.parse(U16(saved));
  xercesc::DOMElement* root = doc.root();
  EXPECT_EQ(U8(quorvane::qvformat::format::io::xml::TagName(root)), "QvConvCheck");
  EXPECT_EQ(h.Attr(root, u"version"), "1.0");
  EXPECT_EQ(h.Attr(root, u"language"), "ja");  // whatever the message language
  const std::vector<ReportResult> r = h.Results();
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].pane + r[0].file, "4a.wmv");  // the override goes before the row's pane
  EXPECT_EQ(r[1].pane + r[1].file, "");
  EXPECT_EQ(r[2].kind + r[2].pane, "W3");
  EXPECT_EQ(r[2].text, "An unknown error exists in the data.");  // a key without text
}

TEST(CheckerWalk, UnreadableFilesFailAsCsv) {
  CheckerHarness h;
  EXPECT_EQ(h.Check(ChSchedule, h.dir.Sub("none.csv")), -101);
  EXPECT_EQ(h.Check(ChSchedule, h.Csv("bad.csv", {"a\\b"})), -102);
  EXPECT_EQ(h.Check(ChSchedule, h.Csv("empty.csv", {})), 0);
  EXPECT_FALSE(h.checker.has_result);
}

TEST(CheckerSchedule, JudgesDatesAgainstToday) {
  CheckerHarness h;
  const std::string file = h.Csv(
      "Schedule_1.csv", {"name", "false", DateFromToday(-1) + ",TM_old.csv,false",
                         DateFromToday(1) + ",TM_next.csv,false", DateFromToday(0) + ",TM_a.csv",
                         DateFromToday(0) + ",TM_today.csv,true", "2024/5", "abc,TM_x.csv"});
  EXPECT_EQ(h.Check(ChSchedule, file), 0);
  EXPECT_EQ(U8(h.checker.today_timetable), "TM_today.csv");  // the last of today's entries
  const std::vector<ReportResult> r = h.Results();
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].id + r[0].kind, "SC0301W");
  // A date the form cannot read is bad data.
  EXPECT_EQ(r[1].id + r[1].kind, "SC0301E");
  EXPECT_EQ(r[1].text, U8(checker::QvChMessage::getMessage(u"msg.DATE")));
  EXPECT_EQ(r[2].id + r[2].kind, "SC0301E");
}

TEST(CheckerSchedule, TodayWithoutTimeTableAndEmptyDate) {
  CheckerHarness h;
  const std::string file = h.Csv("Schedule_1.csv", {"n", "f", DateFromToday(0), ",TM_empty.csv"});
  EXPECT_EQ(h.Check(ChSchedule, file), 0);
  EXPECT_EQ(h.Kinds(), "SC0301:E");
  // An empty date is today's, as the reader takes it.
  EXPECT_EQ(U8(h.checker.today_timetable), "TM_empty.csv");
}

TEST(CheckerTimeTable, TestsOnlyTodaysTableAgainstTheClock) {
  CheckerHarness h;
  h.checker.today_timetable = u"sub\\TM_today.csv";
  const std::vector<std::string> rows = {"name", "x", "00:00:00,23:59:59,0,P,,",
                                         ",00:00:01,0,P", "23:59:59,23:59:59,0,P"};
  const std::string other = h.Csv("TM_other.csv", rows);
  const std::string today = h.Csv("sub/TM_today.csv", rows);
  EXPECT_EQ(h.Check(ChTimeTable, other), 0);
  EXPECT_EQ(h.Kinds(), "");
  EXPECT_EQ(h.Check(ChTimeTable, today), 0);
  EXPECT_EQ(h.Kinds(), "TM0301:W TM0401:W");

  CheckerHarness none;
  EXPECT_EQ(none.Check(ChTimeTable, none.Csv("TM_today.csv", rows)), 0);
  EXPECT_FALSE(none.checker.has_result);
}

TEST(CheckerContents, NumberAndPresenceRules) {
  CheckerHarness h;
  std::vector<std::string> lines = Contents("..\\\\contents\\\\a.mp4", "3", "0x000000", "0");
  lines.push_back("attached1.txt");
  lines.push_back("");
  lines.push_back("attached2.txt");
  EXPECT_EQ(h.Check(ChContentsInfo, h.Csv("c1.csv", lines)), 0);
  EXPECT_EQ(h.Kinds(), "CI0204:E CI1700:E CI2200:E CI2200:E");
  EXPECT_EQ(h.Results()[0].file, "a.mp4");

  CheckerHarness g;
  // "-1" and an empty cell pass; a row of 14 cells is not tested from column 14.
  EXPECT_EQ(g.Check(ChContentsInfo, g.Csv("c2.csv", Contents("a.mp4", "7", "0x0", ""))), 0);
  EXPECT_EQ(g.Check(ChContentsInfo, g.Csv("c3.csv", {"a.jpg", "2,,,,0x0,,,,,,,,,9"})), 0);
  EXPECT_EQ(g.Kinds(), "CI0211:E CI0203:E");
  EXPECT_EQ(g.Results()[0].file, "");  // no backslash in the content path
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
