// Check runs against the display region given with -td.
#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class CheckRegion : public BlackBoxTest {};

TEST_F(CheckRegion, ProgramMustFitAndStartAtTheRegionsCorner) {
  struct Case {
    int x, y, pane_x, pane_y, width, height;  // of the program and its one pane
    std::string region;
    std::string ids;  // "" for no report
  } cases[] = {
      {0, 0, 0, 0, 1920, 1080, "(0,0,1920,1080)", ""},
      {0, 0, 0, 0, 1920, 1080, "(0,0,1280,720)", "PG0501E PG1301W "},
      {0, 0, 0, 0, 1080, 1920, "0,0,1920,1080", ""},  // a turned display fits
      {0, 0, 100, 100, 800, 600, "(100,100,800,600)", "PG0701E "},
      {100, 100, 100, 100, 800, 600, "(100,100,800,600)", ""},
  };
  p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv")});
  p_.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
  p_.Playlist("Program_1", 1, {MovieItem("a.mp4")});
  p_.Content("a.mp4", "a");
  for (const Case& c : cases) {
    ProgramShape shape;
    shape.x = c.x;
    shape.y = c.y;
    shape.width = c.width;
    shape.height = c.height;
    shape.panes = {Pane{1, c.pane_x, c.pane_y, c.width, c.height}};
    p_.Program("Program_1", shape);
    RemoveAll(report_);
    RunResult r = RunQv({project_, "-check" + report_, "-td" + c.region}, RunEnv(temp_));
    std::string ids;
    if (Exists(report_)) {
      const XmlNode report = Report();
      for (const XmlNode* d : report.At("CheckResult").All("CheckData")) {
        for (const XmlNode* f : d->All("Result")) ids += f->Attr("id") + f->Attr("kind") + " ";
      }
    }
    EXPECT_EQ(ids, c.ids) << c.region;
    EXPECT_EQ(r.status, c.ids.empty() ? 0 : 2) << c.region;
  }
}

}  // namespace
}  // namespace qvtest
