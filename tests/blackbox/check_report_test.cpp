// Whole runs of `qvConvApp <project> -check<report>`: the exit codes 0, 1
// and 2 by the findings, when a report is written and what it holds.
#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// The Results of a report: "data-kind id kind pane file" a line, and their texts.
struct Findings {
  std::string summary;
  std::vector<std::string> texts;
};

Findings Read(const XmlNode& report) {
  Findings out;
  for (const XmlNode* data : report.At("CheckResult").All("CheckData")) {
    for (const XmlNode* r : data->All("Result")) {
      out.summary += data->Attr("kind") + " " + r->Attr("id") + " " + r->Attr("kind") + " " + r->Attr("pane") +
                     " " + r->Attr("file") + "\n";
      out.texts.push_back(r->text);
    }
  }
  return out;
}

class CheckReport : public BlackBoxTest {};

TEST_F(CheckReport, ScheduleFindingsOutcomesAndReport) {
  BuildTimeTableProject(p_);
  RunResult r = Check();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output, "");
  EXPECT_FALSE(Exists(report_)) << "no finding, no report";
  EXPECT_TRUE(WorkFolders(temp_).empty());

  p_.Schedule({ScheduleEntry(DateFromToday(-2), "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/01/02", "時間表b.csv")});
  EXPECT_EQ(Check().status, 1);
  EXPECT_TRUE(WorkFolders(temp_).empty()) << "warnings only: the work folder is removed";
  // The language attribute is constant; a CheckData for every checked file.
  std::string outline = Outline(Report());
  for (size_t at; (at = outline.find(project_)) != std::string::npos;) outline.replace(at, project_.size(), "P");
  EXPECT_EQ(outline,
            "QvConvCheck language=ja version=1.0\n"
            " CheckInfo\n"
            "  Checker version=1.0\n"
            "  CheckFileInfo src=P\n"
            "   CheckFile src=P/Schedule.csv\n"
            "   CheckFile src=P/TimeTable_a.csv\n"
            "   CheckFile src=P/時間表b.csv\n"
            " CheckResult\n"
            "  CheckData kind=schedule src=P/Schedule.csv\n"
            "   Result id=SC0301 kind=W: There is a schedule in the past. Does not play.\n"
            "  CheckData kind=timetable src=P/TimeTable_a.csv\n"
            "  CheckData kind=timetable src=P/時間表b.csv\n");

  locale_ = "ja_JP.UTF-8";
  RemoveAll(report_);
  EXPECT_EQ(Check().status, 1);
  EXPECT_EQ(Read(Report()).texts, std::vector<std::string>{"過去のスケジュールがあります。再生されません。"});

  // The interrupt files are checked after the time tables, with one finding
  // however many there are; an error leaves the work folder.
  locale_ = "C";
  p_.File("Interrupt_1.csv", "anything");
  p_.File("Interrupt_2.csv", "");
  RemoveAll(report_);
  EXPECT_EQ(Check().status, 2);
  EXPECT_EQ(WorkFolders(temp_).size(), 1u);
  const XmlNode root = Report();
  const Findings found = Read(root);
  EXPECT_EQ(found.summary, "schedule SC0301 W  \ninterrupt EP0000 E  \n");
  ASSERT_EQ(found.texts.size(), 2u);
  EXPECT_EQ(found.texts[1], "Not support the special program table.");
  auto checked_files = root.At("CheckInfo").At("CheckFileInfo").All("CheckFile");
  ASSERT_EQ(checked_files.size(), 4u);
  EXPECT_EQ(checked_files[3]->Attr("src").rfind(project_ + "/Interrupt_", 0), 0u);
}

// One program whose frame and telop playlists are given. A check-only run
// looks for a telop seven folder levels above the contents file, so the
// project lies three levels down and its telop is also in <scratch>/contents.
class CheckProgram : public BlackBoxTest {
 protected:
  std::string deep_ = scratch_.Sub("d1/d2/d3/project");
  ProjectBuilder deep_p_{deep_};

  void Build(const ProgramSpec& spec, const std::vector<Item>& frame, int telop_font = 40) {
    deep_p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
    deep_p_.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
    deep_p_.Program("Program_1", spec);
    deep_p_.Playlist("Program_1", 1, frame);
    for (const char* name : {"a.mp4", "b.png", "c.jpg"}) deep_p_.Content(name, name);
    const std::string telop = Cp932(TelopText(telop_font, 0, {"telop"}));
    deep_p_.Content("t.tlp", telop);
    WriteFile(scratch_.Sub("contents/t.tlp"), telop);
  }
  void TelopPane(const Item& telop) { deep_p_.Playlist("Program_1", 5, {telop}); }

  static ProgramSpec FrameAndTelop() {
    ProgramSpec spec;
    spec.panes = {Pane{1, 0, 0, 1920, 980}, Pane{5, 0, 980, 1920, 100}};
    return spec;
  }

  Findings CheckDeep(int expected_status) {
    RunResult r = Check(deep_);
    EXPECT_EQ(r.status, expected_status) << r.output;
    return Exists(report_) ? Read(Report()) : Findings{};
  }
};

TEST_F(CheckProgram, CleanProgramAndItsTelopSevenLevelsUp) {
  Build(FrameAndTelop(), {MovieItem("a.mp4"), ImageItem("b.png", "258", "500"), BlankItem()});
  TelopPane(TelopItem("t.tlp"));
  CheckDeep(0);
  EXPECT_FALSE(Exists(report_));
  // A conversion finds the telop in the project's own contents folder.
  EXPECT_EQ(Package(deep_).status, 0);

  // A check-only run that cannot open it there stops at once: code 0, no report.
  RemoveAll(scratch_.Sub("contents/t.tlp"));
  CheckDeep(0);
  EXPECT_FALSE(Exists(report_));
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(CheckProgram, LayoutFindingsCarryTheirPaneLine) {
  ProgramSpec spec;
  spec.panes = {Pane{1, 0, 0, 960, 1080}, Pane{2, 960, 0, 960, 1080}, Pane{8, 0, 0, 100, 100}};
  Build(spec, {MovieItem("a.mp4")});
  deep_p_.Playlist("Program_1", 2, {ImageItem("b.png")});
  const Findings found = CheckDeep(2);
  EXPECT_EQ(found.summary, "program PG0903 E 2 \nprogram PG0909 E 8 \n");
  EXPECT_EQ(found.texts, (std::vector<std::string>{"Not support multiple frames layout. Please modify layout.",
                                                   "PIP is not supported. Please modify layout."}));
}

TEST_F(CheckProgram, ContentFindingsCarryPaneAndFile) {
  Item transparent = ImageItem("b.png");
  transparent.color = "";
  Item moved = MovieItem("a.mp4");
  moved.frame_move = "0";
  Item attached = MovieItem("a.mp4");
  attached.extra = {{"..\\contents\\extra.txt"}};
  Item wmv = MovieItem("clip.wmv");
  wmv.kind = "2";  // silenced by the extension finding
  Item url = MovieItem("x");
  url.path_cell = "http://example.com/a.wmv";  // no backslash: no file
  url.kind = "3";
  Item telop = TelopItem("t.tlp");
  telop.color = "";
  Build(FrameAndTelop(),
        {transparent, ImageItem("c.jpg", "15"), moved, attached, wmv, MovieItem("tool.exe"), url,
         BlankItem("7")},
        201);
  TelopPane(telop);
  const Findings found = CheckDeep(2);
  std::string summary = found.summary;
  for (size_t at; (at = summary.find("contentsinfo ")) != std::string::npos;) summary.erase(at, 13);
  EXPECT_EQ(summary,
            "CHECK_COLOR E 1 b.png\n"
            "CI1401 E 1 c.jpg\n"
            "CI1700 E 1 a.mp4\nCI1800 E 1 a.mp4\nCI1900 E 1 a.mp4\nCI2000 E 1 a.mp4\n"
            "CI2200 E 1 a.mp4\n"
            "CI0100 E 1 clip.wmv\nCI0100 E 1 tool.exe\n"
            "CI0204 E 1 \nCI0211 E 1 \n"
            "CI2300 E 5 t.tlp\nCHECK_COLOR E 5 t.tlp\n")
      << "all of kind contentsinfo";
  ASSERT_EQ(found.texts.size(), 13u);
  EXPECT_EQ(found.texts[1],
            "Not support display effect on the \"circle\". Please modify the setting at content "
            "property screen.");
  EXPECT_EQ(found.texts[7], "Not support the content of the extension (.wmv).");
  EXPECT_EQ(found.texts[8], "Specifying the executable file is not supported.");
}

}  // namespace
}  // namespace qvtest
