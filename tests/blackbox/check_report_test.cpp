// Whole runs of `qvConvApp <project> -check<report>`: when a report is
// written, what it holds, and the exit codes 0, 1 and 2 by the findings.
#include "tests/blackbox/project_builder.h"

#include <ctime>

namespace qvtest {
namespace {

// All Results of a report, in document order, with the kind of their CheckData.
struct Finding {
  std::string data_kind;
  std::string id;
  std::string kind;
  std::string pane;  // "" when there is no pane attribute
  std::string file;
  std::string text;
  size_t attr_count = 0;
};

std::vector<Finding> Findings(const XmlNode& report) {
  std::vector<Finding> out;
  const XmlNode* result = report.First("CheckResult");
  if (!result) return out;
  for (const XmlNode* data : result->All("CheckData")) {
    for (const XmlNode* r : data->All("Result")) {
      out.push_back({data->Attr("kind"), r->Attr("id"), r->Attr("kind"), r->Attr("pane"),
                     r->Attr("file"), r->text, r->attrs.size()});
    }
  }
  return out;
}

std::string Describe(const std::vector<Finding>& findings) {
  std::string s;
  for (const auto& f : findings) {
    s += f.data_kind + " " + f.id + " " + f.kind + " pane=" + f.pane + " file=" + f.file + " [" +
         f.text + "]\n";
  }
  return s;
}

class CheckReport : public BlackBoxTest {};

TEST_F(CheckReport, CleanProjectHasNoReport) {
  BuildTimeTableProject(p_);
  RunResult r = Check();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output, "");
  EXPECT_FALSE(Exists(report_)) << "no finding, no report, even though -check named one";
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(CheckReport, WarningReportStructure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-2), "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/01/02", "時間表b.csv")});
  RunResult r = Check();
  EXPECT_EQ(r.status, 1) << r.output;
  EXPECT_TRUE(WorkFolders(temp_).empty()) << "warnings only: the work folder is removed";
  ASSERT_TRUE(Exists(report_));

  XmlNode root = Report();
  EXPECT_EQ(root.name, "QvConvCheck");
  EXPECT_EQ(root.Attr("version"), "1.0");
  EXPECT_EQ(root.Attr("language"), "ja") << "constant, whatever the message language";
  ASSERT_EQ(root.children.size(), 2u);
  const XmlNode& info = root.children[0];
  EXPECT_EQ(info.name, "CheckInfo");
  ASSERT_EQ(info.children.size(), 2u);
  EXPECT_EQ(info.children[0].name, "Checker");
  EXPECT_EQ(info.children[0].Attr("version"), "1.0");
  const XmlNode& files = info.children[1];
  EXPECT_EQ(files.name, "CheckFileInfo");
  EXPECT_EQ(files.Attr("src"), project_);
  auto checked = files.All("CheckFile");
  ASSERT_EQ(checked.size(), 3u);
  EXPECT_EQ(checked[0]->Attr("src"), project_ + "/Schedule.csv");
  EXPECT_EQ(checked[1]->Attr("src"), project_ + "/TimeTable_a.csv");
  EXPECT_EQ(checked[2]->Attr("src"), project_ + "/時間表b.csv");

  const XmlNode& results = root.children[1];
  EXPECT_EQ(results.name, "CheckResult");
  auto data = results.All("CheckData");
  ASSERT_EQ(data.size(), 3u) << "a CheckData for every checked file, with or without Results";
  EXPECT_EQ(data[0]->Attr("kind"), "schedule");
  EXPECT_EQ(data[0]->Attr("src"), project_ + "/Schedule.csv");
  EXPECT_EQ(data[1]->Attr("kind"), "timetable");
  EXPECT_EQ(data[2]->Attr("kind"), "timetable");
  EXPECT_TRUE(data[1]->children.empty());
  EXPECT_TRUE(data[2]->children.empty());

  auto found = Findings(root);
  ASSERT_EQ(found.size(), 1u) << Describe(found);
  EXPECT_EQ(found[0].id, "SC0301");
  EXPECT_EQ(found[0].kind, "W");
  EXPECT_EQ(found[0].attr_count, 2u) << "no pane and no file attribute";
  EXPECT_EQ(found[0].text, "There is a schedule in the past. Does not play.");
}

TEST_F(CheckReport, JapaneseMessagesForOtherLocales) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});
  locale_ = "ja_JP.UTF-8";
  ASSERT_EQ(Check().status, 1);
  XmlNode root = Report();
  EXPECT_EQ(root.Attr("language"), "ja");
  auto found = Findings(root);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].text, "過去のスケジュールがあります。再生されません。");
}

TEST_F(CheckReport, ErrorAndWarningBothReported) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});
  p_.File("Interrupt_1.csv", "anything");
  p_.File("Interrupt_2.csv", "");
  RunResult r = Check();
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(WorkFolders(temp_).size(), 1u) << "an error leaves the work folder";
  auto found = Findings(Report());
  ASSERT_EQ(found.size(), 2u) << "one interrupt finding however many files: " << Describe(found);
  EXPECT_EQ(found[0].id, "SC0301");
  EXPECT_EQ(found[1].data_kind, "interrupt");
  EXPECT_EQ(found[1].id, "EP0000");
  EXPECT_EQ(found[1].kind, "E");
  EXPECT_EQ(found[1].attr_count, 2u);
  EXPECT_EQ(found[1].text, "Not support the special program table.");
}

TEST_F(CheckReport, InterruptIsCheckedAfterTheTimeTables) {
  BuildTimeTableProject(p_);
  p_.File("Interrupt.csv", "");
  ASSERT_EQ(Check().status, 2);
  XmlNode root = Report();
  auto files = root.At("CheckInfo").At("CheckFileInfo").All("CheckFile");
  ASSERT_EQ(files.size(), 4u);
  EXPECT_EQ(files[3]->Attr("src"), project_ + "/Interrupt.csv");
  auto data = root.At("CheckResult").All("CheckData");
  ASSERT_EQ(data.size(), 4u);
  EXPECT_EQ(data[3]->Attr("kind"), "interrupt");
}

bool NearMidnight() {
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  int of_day = tm.tm_hour * 3600 + tm.tm_min * 60 + tm.tm_sec;
  return of_day < 120 || of_day > 86400 - 120;
}

TEST_F(CheckReport, OnlyTodaysTimeTableIsCheckedAgainstTheClock) {
  if (NearMidnight()) GTEST_SKIP() << "the date changes during the run";
  p_.Schedule({ScheduleEntry(DateFromToday(0), "Today.csv"),
               ScheduleEntry(DateFromToday(1), "Tomorrow.csv")});
  Rows rows = {{"00:00:01", "23:59:59", "1", "", "1", ""},   // started, not ended
               {"00:00:01", "00:00:02", "1", "", "1", ""},   // over
               {"23:59:59", "23:59:59", "1", "", "1", ""}};  // still to come
  p_.TimeTable("Today.csv", "Today", rows);
  p_.TimeTable("Tomorrow.csv", "Tomorrow", rows);
  EXPECT_EQ(Check().status, 1);
  auto found = Findings(Report());
  ASSERT_EQ(found.size(), 3u) << Describe(found);
  for (const auto& f : found) {
    EXPECT_EQ(f.data_kind, "timetable");
    EXPECT_EQ(f.kind, "W");
    EXPECT_EQ(f.text, "There is a timetable of the past. Does not play.");
  }
  EXPECT_EQ(found[0].id, "TM0301");
  EXPECT_EQ(found[1].id, "TM0301");
  EXPECT_EQ(found[2].id, "TM0401");
  XmlNode report = Report();
  auto data = report.At("CheckResult").All("CheckData");
  ASSERT_EQ(data.size(), 3u);
  EXPECT_EQ(data[1]->Attr("src"), project_ + "/Today.csv");
  EXPECT_EQ(data[1]->children.size(), 3u);
  EXPECT_TRUE(data[2]->children.empty()) << "tomorrow's time table is not checked";
}

TEST_F(CheckReport, WarningsInPackageRunStillDeliver) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});
  RunResult r = Package();
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Exists(zip_));
  EXPECT_FALSE(Exists(report_));
}

// Program and content findings, on one program whose frame and telop
// playlists are given. A check-only run looks for a telop seven folder levels
// above the contents file, so the project lies three levels below the scratch
// folder and its telops are put both in the project and in <scratch>/contents.
class CheckProgram : public BlackBoxTest {
 protected:
  std::string deep_ = scratch_.Sub("d1/d2/d3/project");
  ProjectBuilder deep_p_{deep_};

  void Build(const ProgramSpec& spec, const std::vector<Item>& frame,
             const std::vector<Item>& telop, const std::string& telop_bytes = "") {
    deep_p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
    deep_p_.TimeTable("TimeTable_1.csv", "T",
                      {ProgramLine("08:00:00", "09:00:00", "Program_1")});
    deep_p_.Program("Program_1", spec);
    deep_p_.Playlist("Program_1", 1, frame);
    if (!telop.empty()) deep_p_.Playlist("Program_1", 5, telop);
    for (const char* name : {"a.mp4", "b.png", "c.jpg"}) deep_p_.Content(name, name);
    std::string telop_text =
        telop_bytes.empty() ? Cp932(TelopText(40, 0, {"telop"})) : telop_bytes;
    deep_p_.Content("t.tlp", telop_text);
    WriteFile(scratch_.Sub("contents/t.tlp"), telop_text);
  }

  static ProgramSpec FrameAndTelop() {
    ProgramSpec spec;
    spec.panes = {Pane{1, 0, 0, 1920, 980, "true"}, Pane{5, 0, 980, 1920, 100, "true"}};
    return spec;
  }

  std::vector<Finding> CheckDeep(int expected_status) {
    RunResult r = Check(deep_);
    EXPECT_EQ(r.status, expected_status) << r.output;
    if (!Exists(report_)) return {};
    return Findings(Report());
  }
};

TEST_F(CheckProgram, CleanProgramHasNoFindings) {
  Build(FrameAndTelop(), {MovieItem("a.mp4"), ImageItem("b.png", "258", "500"), BlankItem()},
        {TelopItem("t.tlp")});
  CheckDeep(0);
  EXPECT_FALSE(Exists(report_));
  // The same project converts with exit code 0, finding its telop in its own
  // contents folder.
  EXPECT_EQ(Package(deep_).status, 0);
}

TEST_F(CheckProgram, CheckOnlyRunLooksForTelopsSevenLevelsUp) {
  Build(FrameAndTelop(), {MovieItem("a.mp4")}, {TelopItem("t.tlp")});
  RemoveAll(scratch_.Sub("contents/t.tlp"));
  // The check of the telop cannot open it: the run ends at once with code 0,
  // without a report, although the project's own contents folder has it.
  RunResult r = Check(deep_);
  EXPECT_EQ(r.status, 0);
  EXPECT_FALSE(Exists(report_));
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(CheckProgram, ProgramFindingsCarryTheirPaneLine) {
  ProgramSpec spec;
  spec.panes = {Pane{1, 0, 0, 960, 1080, "true"}, Pane{2, 960, 0, 960, 1080, "true"},
                Pane{8, 0, 0, 100, 100, "true"}};
  Build(spec, {MovieItem("a.mp4")}, {});
  deep_p_.Playlist("Program_1", 2, {ImageItem("b.png")});
  auto found = CheckDeep(2);
  ASSERT_EQ(found.size(), 2u) << Describe(found);
  EXPECT_EQ(found[0].data_kind, "program");
  EXPECT_EQ(found[0].id, "PG0903");
  EXPECT_EQ(found[0].kind, "E");
  EXPECT_EQ(found[0].pane, "2");
  EXPECT_EQ(found[0].file, "");
  EXPECT_EQ(found[0].text, "Not support multiple frames layout. Please modify layout.");
  EXPECT_EQ(found[1].id, "PG0909");
  EXPECT_EQ(found[1].pane, "8");
  EXPECT_EQ(found[1].text, "PIP is not supported. Please modify layout.");
}

TEST_F(CheckProgram, MovedProgramGivesOneFinding) {
  ProgramSpec spec = FrameAndTelop();
  spec.x = 10;
  spec.y = 10;
  Build(spec, {MovieItem("a.mp4")}, {TelopItem("t.tlp")});
  auto found = CheckDeep(2);
  ASSERT_EQ(found.size(), 1u) << Describe(found);
  EXPECT_EQ(found[0].id, "PG0701");
  EXPECT_EQ(found[0].pane, "") << "line 2 of a program file has no pane";
  EXPECT_EQ(found[0].text,
            "Changing Screen Top-Left Position is not supported. Please modify layout.");
}

TEST_F(CheckProgram, OversizedFrameIsAWarning) {
  ProgramSpec spec = FrameAndTelop();
  spec.panes[0].width = 5000;
  spec.panes[0].x = 3900;
  Build(spec, {MovieItem("a.mp4")}, {TelopItem("t.tlp")});
  auto found = CheckDeep(1);
  ASSERT_EQ(found.size(), 2u) << Describe(found);
  EXPECT_EQ(found[0].id, "PG1101");
  EXPECT_EQ(found[0].kind, "W");
  EXPECT_EQ(found[0].pane, "") << "the frame tables have no pane of their own";
  EXPECT_EQ(found[1].id, "PG1301");
  EXPECT_EQ(found[1].kind, "W");
}

TEST_F(CheckProgram, ContentFindingsCarryPaneAndFile) {
  Item transparent = ImageItem("b.png");
  transparent.line.color = "";
  Item circle = ImageItem("c.jpg", "15");
  Item moved = MovieItem("a.mp4");
  moved.line.frame_move = "0";
  Item attached = MovieItem("a.mp4");
  attached.extra = {{"..\\contents\\extra.txt"}};
  Item telop = TelopItem("t.tlp");
  telop.line.color = "";
  Build(FrameAndTelop(), {transparent, circle, moved, attached}, {telop});
  auto found = CheckDeep(2);
  ASSERT_EQ(found.size(), 8u) << Describe(found);
  for (const auto& f : found) {
    EXPECT_EQ(f.data_kind, "contentsinfo");
    EXPECT_EQ(f.kind, "E");
  }
  EXPECT_EQ(found[0].id, "CHECK_COLOR") << "the one Result named by its operation";
  EXPECT_EQ(found[0].pane, "1");
  EXPECT_EQ(found[0].file, "b.png");
  EXPECT_EQ(found[1].id, "CI1401");
  EXPECT_EQ(found[1].file, "c.jpg");
  EXPECT_EQ(found[1].text,
            "Not support display effect on the \"circle\". Please modify the setting at content "
            "property screen.");
  EXPECT_EQ(found[2].id, "CI1700");
  EXPECT_EQ(found[3].id, "CI1800");
  EXPECT_EQ(found[4].id, "CI1900");
  EXPECT_EQ(found[5].id, "CI2000");
  EXPECT_EQ(found[6].id, "CI2200");
  EXPECT_EQ(found[6].file, "a.mp4");
  EXPECT_EQ(found[7].id, "CHECK_COLOR");
  EXPECT_EQ(found[7].pane, "5") << "a contents file carries the pane of its playlist";
  EXPECT_EQ(found[7].file, "t.tlp");
}

TEST_F(CheckProgram, RefusedExtensionsAndKinds) {
  Item wmv = MovieItem("clip.wmv");
  wmv.line.kind = "2";  // silenced by the extension finding
  Item exe = MovieItem("tool.exe");
  Item url = MovieItem("x");
  url.path_cell = "http://example.com/a.wmv";
  url.line.kind = "3";
  Item blank7 = BlankItem("7");
  Build(FrameAndTelop(), {wmv, exe, url, blank7}, {TelopItem("t.tlp")});
  auto found = CheckDeep(2);
  ASSERT_EQ(found.size(), 4u) << Describe(found);
  EXPECT_EQ(found[0].id, "CI0100");
  EXPECT_EQ(found[0].text, "Not support the content of the extension (.wmv).");
  EXPECT_EQ(found[1].id, "CI0100");
  EXPECT_EQ(found[1].text, "Specifying the executable file is not supported.");
  EXPECT_EQ(found[2].id, "CI0204");
  EXPECT_EQ(found[2].file, "") << "a path without a backslash names no file";
  EXPECT_EQ(found[3].id, "CI0211");
  EXPECT_EQ(found[3].file, "");
}

TEST_F(CheckProgram, TelopLimits) {
  struct Case {
    int font;
    int mode;
    int line_length;
    int lines;
    const char* id;  // "" for no finding
  } cases[] = {
      {200, 0, 10, 1, ""},       {201, 0, 10, 1, "CI2300"}, {100, 0, 69, 1, ""},
      {100, 0, 70, 1, "CI2301"}, {100, 2, 69, 1, ""},       {100, 3, 10, 52, ""},
      {100, 3, 10, 53, "CI2302"}, {100, 1, 10, 53, ""},
  };
  for (const auto& c : cases) {
    ScratchDir dir;
    std::string deep = dir.Sub("d1/d2/d3/project");
    ProjectBuilder p(deep);
    p.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv")});
    p.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
    p.Program("Program_1", FrameAndTelop());
    p.Playlist("Program_1", 1, {MovieItem("a.mp4")});
    p.Playlist("Program_1", 5, {TelopItem("t.tlp")});
    std::vector<std::string> text(c.lines, std::string(c.line_length, 'x'));
    WriteFile(dir.Sub("contents/t.tlp"), TelopText(c.font, c.mode, text));
    std::string report = dir.Sub("report.xml");
    RunResult r = RunQv({deep, "-check" + report}, RunEnv(dir.Sub("tmp")));
    std::string what = "font " + std::to_string(c.font) + " mode " + std::to_string(c.mode) +
                       " length " + std::to_string(c.line_length) + " lines " +
                       std::to_string(c.lines);
    if (std::string(c.id).empty()) {
      EXPECT_EQ(r.status, 0) << what;
      EXPECT_FALSE(Exists(report)) << what;
    } else {
      EXPECT_EQ(r.status, 2) << what;
      auto found = Exists(report) ? Findings(ParseXml(report)) : std::vector<Finding>{};
      ASSERT_EQ(found.size(), 1u) << what << "\n" << Describe(found);
      EXPECT_EQ(found[0].id, c.id) << what;
      EXPECT_EQ(found[0].pane, "5") << what;
      EXPECT_EQ(found[0].file, "t.tlp") << what;
    }
  }
}

}  // namespace
}  // namespace qvtest
