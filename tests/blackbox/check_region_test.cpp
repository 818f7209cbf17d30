// Check runs against a display region given with -td, and telop files whose
// extension is in capitals.
#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class CheckRegion : public BlackBoxTest {
 protected:
  void OneProgram(const ProgramSpec& spec) {
    p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv")});
    p_.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
    p_.Program("Program_1", spec);
    p_.Playlist("Program_1", 1, {MovieItem("a.mp4")});
    p_.Content("a.mp4", "a");
  }
  RunResult CheckWithRegion(const std::string& region) {
    return RunQv({project_, "-check" + report_, "-td" + region}, RunEnv(temp_));
  }
  std::vector<std::string> Ids() {
    std::vector<std::string> ids;
    if (!Exists(report_)) return ids;
    XmlNode root = Report();
    for (const XmlNode* d : root.At("CheckResult").All("CheckData")) {
      for (const XmlNode* r : d->All("Result")) ids.push_back(r->Attr("id") + r->Attr("kind"));
    }
    return ids;
  }
};

TEST_F(CheckRegion, SmallerDisplayRefusesTheProgramAndWarnsOfTheFrame) {
  ProgramSpec spec;
  spec.panes = {Pane{1, 0, 0, 1920, 1080, "true"}};
  OneProgram(spec);
  EXPECT_EQ(CheckWithRegion("(0,0,1920,1080)").status, 0);
  EXPECT_FALSE(Exists(report_));
  EXPECT_EQ(CheckWithRegion("(0,0,1280,720)").status, 2);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"PG0501E", "PG1301W"}));
}

TEST_F(CheckRegion, TurnedDisplayFits) {
  ProgramSpec spec;
  spec.width = 1080;
  spec.height = 1920;
  spec.panes = {Pane{1, 0, 0, 1080, 1920, "true"}};
  OneProgram(spec);
  EXPECT_EQ(CheckWithRegion("0,0,1920,1080").status, 0);
  EXPECT_FALSE(Exists(report_));
}

TEST_F(CheckRegion, ProgramMustStartAtTheRegionsCorner) {
  ProgramSpec spec;
  spec.panes = {Pane{1, 100, 100, 800, 600, "true"}};
  spec.width = 800;
  spec.height = 600;
  OneProgram(spec);
  EXPECT_EQ(CheckWithRegion("(100,100,800,600)").status, 2);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"PG0701E"}));
  spec.x = 100;
  spec.y = 100;
  p_.Program("Program_1", spec);
  RemoveAll(report_);
  EXPECT_EQ(CheckWithRegion("(100,100,800,600)").status, 0);
  EXPECT_FALSE(Exists(report_));
}

TEST_F(CheckRegion, CapitalTlpIsNotMeasuredButStillRecoded) {
  // Only the exact extension "tlp" is measured against the telop limits; the
  // copy still recodes any case of it.
  p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv")});
  p_.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
  ProgramSpec spec;
  spec.panes = {Pane{1, 0, 0, 1920, 980, "true"}, Pane{5, 0, 980, 1920, 100, "true"}};
  p_.Program("Program_1", spec);
  p_.Playlist("Program_1", 1, {MovieItem("a.mp4")});
  p_.Playlist("Program_1", 5, {TelopItem("NEWS.TLP")});
  p_.Content("a.mp4", "a");
  std::string text = TelopText(500, 0, {"大きな文字"});
  p_.Content("NEWS.TLP", Cp932(text));
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT2.tlp"), text);
}

}  // namespace
}  // namespace qvtest
