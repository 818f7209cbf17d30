// Whole runs of `qvConvApp <project> -check<report>` (and -td<region>): exit codes 0, 1 and 2, and
// the report.
#include <tuple>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// The Results of a report, "data-kind id kind pane file" a line, with the texts of those at the
// places `texts`.
std::string Findings(const XmlNode& report, const std::vector<int>& texts = {}) {
  std::string out;
  int n = 0;
  for (const XmlNode* data : report.At("CheckResult").All("CheckData")) {
    for (const XmlNode* r : data->All("Result")) {
      const bool text = std::find(texts.begin(), texts.end(), n++) != texts.end();
      out += data->Attr("kind") + " " + r->Attr("id") + " " + r->Attr("kind") + " " +
             r->Attr("pane") + " " + r->Attr("file") + (text ? ": " + r->text : "") + "\n";
    }
  }
  return out;
}

using CheckReport = BlackBoxTest;

// No finding, no report; warnings only: 1, and the work folder is removed; an error leaves it.  The
// language attribute is constant; a CheckData for every checked file, named as the project folder
// and a backslash and the name.  The interrupt files are checked after the time tables, with one
// finding however many there are.
TEST_F(CheckReport, ScheduleFindingsOutcomesAndReport) {
  BuildTimeTableProject(p_);
  EXPECT_EQ(Check().status, 0);
  EXPECT_TRUE(!Exists(report_) && WorkFolders(temp_).empty());

  p_.Schedule({ScheduleEntry(DateFromToday(-2), "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/01/02", "時間表b.csv")});
  EXPECT_EQ(Check().status, 1);
  EXPECT_TRUE(WorkFolders(temp_).empty());
  EXPECT_EQ(Replaced(Outline(Report()), project_, "P"),
            "QvConvCheck language=ja version=1.0\n CheckInfo\n  Checker version=1.0\n"
            "  CheckFileInfo src=P\n   CheckFile src=P\\Schedule.csv\n"
            "   CheckFile src=P\\TimeTable_a.csv\n   CheckFile src=P\\時間表b.csv\n"
            " CheckResult\n  CheckData kind=schedule src=P\\Schedule.csv\n"
            "   Result id=SC0301 kind=W: There is a schedule in the past. Does not play.\n"
            "  CheckData kind=timetable src=P\\TimeTable_a.csv\n"
            "  CheckData kind=timetable src=P\\時間表b.csv\n");

  p_.File("Interrupt_1.csv", "anything"), p_.File("Interrupt_2.csv", "");
  RemoveAll(report_);
  EXPECT_EQ(Check().status, 2);
  ASSERT_EQ(WorkFolders(temp_).size(), 1u);  // with the content copy's unused scratch folder
  EXPECT_EQ(ListDir(temp_ + "/QvConv/" + WorkFolders(temp_)[0]),
            (std::vector<std::string>{"QvFormat/", "Temp/"}));
  EXPECT_EQ(Findings(Report(), {1}),
            "schedule SC0301 W  \ninterrupt EP0000 E  : Not support the special program table.\n");
  const std::string files = Outline(Report().At("CheckInfo"));  // one interrupt file, the last
  EXPECT_EQ(files.find("CheckFile src=" + project_ + "\\Interrupt_"), files.rfind("CheckFile"));
}

// A check makes a folder for each program in its work folder, as the conversion does, and one that
// stops at a bad program leaves the folders of the programs up to that one, and no others.
TEST_F(CheckReport, AStoppedCheckLeavesTheProgramFoldersMadeSoFar) {
  Rows lines;
  std::vector<std::string> made;
  for (int i = 1; i <= 300; ++i) {
    const std::string folder = "P" + std::to_string(1000 + i);  // walked in the order of the names
    lines.push_back(ProgramLine("08:00:00", "09:00:00", folder));
    p_.Program(folder, {});
    if (i <= 250) made.push_back("PG" + std::to_string(i) + "/");
  }
  p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
  p_.TimeTable("TimeTable_1.csv", "T", lines);
  p_.File("P1250/program.csv", "bad \\escape\r\n");
  // The temporary folder typed in another case is the same folder, as on Windows.
  MakeDirs(temp_);
  EXPECT_EQ(RunQv({project_, "-check" + report_}, {"TMPDIR=" + scratch_.Sub("TMP"), "LC_ALL=C"})
                .status,
            Status(-102));
  ASSERT_EQ(WorkFolders(temp_).size(), 1u);
  std::sort(made.begin(), made.end());
  EXPECT_EQ(ListDir(temp_ + "/QvConv/" + WorkFolders(temp_)[0] + "/QvFormat/QvP"), made);
}

// The program must fit the display region given with -td and start at its corner; a turned
// display fits.
TEST_F(CheckReport, ProgramAgainstTheDisplayRegion) {
  const std::tuple<int, int, int, int, std::string, std::string> cases[] = {
      {0, 0, 1920, 1080, "(0,0,1920,1080)", ""},
      {0, 0, 1920, 1080, "(0,0,1280,720)", "program PG0501 E  \nprogram PG1301 W  \n"},
      {0, 0, 1080, 1920, "0,0,1920,1080", ""},
      {100, 100, 800, 600, "(100,100,800,600)", ""},
  };
  p_.Playlist("Program_1", 1, {MovieItem("a.mp4")});
  p_.Content("a.mp4", "a");
  for (const auto& [x, y, width, height, region, findings] : cases) {
    p_.OneProgram("Program_1", {.x = x,
                                .y = y,
                                .width = width,
                                .height = height,
                                .panes = {Pane{1, x, y, width, height}}});
    RemoveAll(report_);
    EXPECT_EQ(RunQv({project_, "-check" + report_, "-td" + region}, RunEnv(temp_)).status,
              findings.empty() ? 0 : 2)
        << region;
    EXPECT_EQ(Exists(report_) ? Findings(Report()) : "", findings) << region;
  }
}

// One program of given frame and telop playlists, three levels down: a check-only run looks for a
// telop seven folder levels above the contents file, so it is also in <scratch>/contents.
class CheckProgram : public BlackBoxTest {
 protected:
  std::string deep_ = scratch_.Sub("d1/d2/d3/project");
  ProjectBuilder deep_p_{deep_};

  void Build(const std::vector<Item>& frame, const std::vector<Item>& telops, int telop_font = 40) {
    deep_p_.OneProgram("Program_1",
                       {.panes = {Pane{1, 0, 0, 1920, 980}, Pane{5, 0, 980, 1920, 100}}});
    deep_p_.Playlist("Program_1", 1, frame);
    deep_p_.Playlist("Program_1", 5, telops);
    for (const char* name : {"a.mp4", "b.png", "c.jpg"}) deep_p_.Content(name, name);
    const std::string telop = Cp932(TelopText(telop_font, 0, {"telop"}));
    deep_p_.Content("t.tlp", telop);
    WriteFile(scratch_.Sub("contents/t.tlp"), telop);
  }
  std::string CheckDeep(int expected_status, const std::vector<int>& texts = {}) {
    EXPECT_EQ(Check(deep_).status, expected_status);
    return Exists(report_) ? Findings(Report(), texts) : "";
  }
};

// A conversion finds the telop in the project's own contents folder; a check-only run that cannot
// open it seven levels up stops at once: code 0, no report.
TEST_F(CheckProgram, CleanProgramAndItsTelopSevenLevelsUp) {
  Build({MovieItem("a.mp4"), ImageItem("b.png", "258", "500"), BlankItem()}, {TelopItem("t.tlp")});
  EXPECT_EQ(CheckDeep(0), "");
  EXPECT_EQ(Package(deep_).status, 0);
  RemoveAll(scratch_.Sub("contents/t.tlp"));
  EXPECT_EQ(CheckDeep(0), "");
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

// All of kind contentsinfo.  The first wmv is silenced by the extension finding; the URL has no
// backslash, and no file.
TEST_F(CheckProgram, ContentFindingsCarryPaneAndFile) {
  Item transparent = ImageItem("b.png"), moved = MovieItem("a.mp4"), attached = MovieItem("a.mp4");
  Item wmv = MovieItem("clip.wmv"), url = MovieItem("x"), telop = TelopItem("t.tlp");
  transparent.color = telop.color = "", moved.frame_move = "0";
  attached.extra = {{"..\\contents\\extra.txt"}};
  wmv.kind = "2", url.path_cell = "http://example.com/a.wmv", url.kind = "3";
  Build({transparent, ImageItem("c.jpg", "15"), moved, attached, wmv, MovieItem("tool.exe"), url,
         BlankItem("7")},
        {telop}, 201);
  EXPECT_EQ(
      EraseAll(CheckDeep(2, {1, 7, 8}), {"contentsinfo "}),
      "CHECK_COLOR E 1 b.png\n"
      "CI1401 E 1 c.jpg: Not support display effect on the \"circle\". Please modify the setting "
      "at content property screen.\n"
      "CI1700 E 1 a.mp4\nCI1800 E 1 a.mp4\nCI1900 E 1 a.mp4\nCI2000 E 1 a.mp4\nCI2200 E 1 a.mp4\n"
      "CI0100 E 1 clip.wmv: Not support the content of the extension (.wmv).\n"
      "CI0100 E 1 tool.exe: Specifying the executable file is not supported.\n"
      "CI0204 E 1 \nCI0211 E 1 \nCI2300 E 5 t.tlp\nCHECK_COLOR E 5 t.tlp\n");
}

}  // namespace
}  // namespace qvtest
