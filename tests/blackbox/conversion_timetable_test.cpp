// Whole runs of `qvConvApp <project> -package<zip>`: schedules and time tables in the package, and
// the outcome of each kind of project: exit status, package delivered or not, work folder removed
// or left.

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class ConversionTimeTable : public BlackBoxTest {};

TEST_F(ConversionTimeTable, ScheduleAndTimeTableDocuments) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/01/02", "時間表b.csv"),
               ScheduleEntry("2035/01/03", "Nowhere.csv")});  // a missing time table is passed over
  WriteFile(scratch_.Sub("old/keep.txt"), "kept");
  ZipFolderContents(scratch_.Sub("old"), zip_);  // packing onto a zip adds to it
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_TRUE(WorkFolders(temp_).empty());
  const std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_EQ(std::count(members.begin(), members.end(), "keep.txt"), 1);
  for (const auto& m : members)
    EXPECT_TRUE(m == "keep.txt" ||
                (m.rfind("QvFormat", 0) == 0 && m.find("Temp") == std::string::npos))
        << m;

  // The missing time table is still named, but has no document; an empty target input is written.
  EXPECT_EQ(std::count(members.begin(), members.end(), "QvFormat/QvT/TM3.xml"), 0);
  EXPECT_EQ(Outline(Doc("QvS.xml")) + Outline(Doc("QvT/TM1.xml")) + Outline(Doc("QvT/TM2.xml")),
            "qv ver=1.0\n"
            " sl ad=f n=Schedule\n"
            "  s df=t dt=2035/01/01 rt=TM1\n"
            "  s df=f dt=2035/01/02 rt=TM2\n"
            "  s df=f dt=2035/01/03 rt=TM3\n"
            "tt i=TM1\n tl n=Morning\n  tb\n   co st=06:00:00 ti= tp=1\n"
            "tt i=TM2\n tl n=夜\n  tb\n   co st=22:00:00 ti=VIDEO1 tp=2\n");
}

TEST_F(ConversionTimeTable, OutcomeOfEachKindOfProject) {
  using Edit = std::function<void(ProjectBuilder&)>;
  auto remove = [](const std::string& path) {
    return [=](ProjectBuilder& p) { RemoveAll(p.Path(path)); };
  };
  auto rename_schedule = [](const std::string& name) {
    return [=](ProjectBuilder& p) {
      p.File(name, ReadFile(p.Path("Schedule.csv")));
      RemoveAll(p.Path("Schedule.csv"));
    };
  };
  // On the clean project, else on the time table project: the status, the package delivered, the
  // work folders left, the last line of the log (P: the project).
  const struct {
    const char* what;
    bool clean;
    Edit edit;
    int status;
    bool delivered;
    size_t work_folders;
    std::string exit_line = {};
  } cases[] = {
      {"a warning", false,
       [](ProjectBuilder& p) { p.Schedule({ScheduleEntry(DateFromToday(-3), "TimeTable_a.csv")}); },
       1, true, 0, "exit 1: the check found warnings and no error"},
      {"an interrupt file", false, [](ProjectBuilder& p) { p.File("Interrupt_1.csv", ""); }, 2,
       false, 1, "exit 2: the check found errors: nothing was delivered"},
      {"a content error", true,
       [](ProjectBuilder& p) { p.Playlist("Program_ads", 1, {MovieItem("clip.wmv")}); }, 2, false,
       1},
      {"no schedule", false, remove("Schedule.csv"), Status(-101), false, 1,
       "exit -101: no schedule file in \"P\""},
      {"no project folder", false, [](ProjectBuilder& p) { RemoveAll(p.root()); }, Status(-101),
       false, 1},
      {"lower case schedule", false, rename_schedule("schedule.csv"), Status(-101), false, 1},
      {"schedule not first", false, rename_schedule("MySchedule.csv"), Status(-101), false, 1},
      {"stamped schedule", false, rename_schedule("Schedule_20240101_120000_001.csv"), 0, true, 0,
       "exit 0: finished"},
      {"schedule in a subfolder", false,
       [](ProjectBuilder& p) {
         p.File("old/Schedule2.csv", CsvBytes({{"x"}, {"false"}}));
       },
       0, true, 0},
      {"two schedules", false,
       [](ProjectBuilder& p) { p.File("Schedule2.csv", ReadFile(p.Path("Schedule.csv"))); },
       Status(-103), false, 1, "exit -103: more than one schedule file in \"P\""},
      {"no escape", false,
       [](ProjectBuilder& p) {
         p.File("TimeTable_a.csv", "M\r\n0xD4F0FF\r\n06:00:00,a\\b,1,,1,\r\n");
       },
       Status(-102), false, 1, "exit -102: cannot understand \"P\\TimeTable_a.csv\""},
      {"no program file", true, remove("Program_ads/program.csv"), Status(-101), false, 1,
       "exit -101: cannot open \"P\\Program_ads\\program.csv\""},
      {"no playlist of a pane in use", true, remove("ニュース番組/playlist_5.csv"), Status(-101),
       false, 1},
      {"a content path without a point", true,
       [](ProjectBuilder& p) { p.Playlist("Program_ads", 1, {Item{.path_cell = "noextension"}}); },
       Status(-102), false, 1},
      // The check cannot open the telop: the run stops quietly.
      {"no telop file", true, remove("contents/お知らせ.tlp"), 0, false, 0},
  };
  for (const auto& c : cases) {
    ScratchDir dir;
    ProjectBuilder p(dir.Sub("project"));
    c.clean ? BuildCleanProject(p) : BuildTimeTableProject(p);
    c.edit(p);
    const std::string log = dir.Sub("run.log");
    RunResult r =
        RunQv({p.root(), "-package" + dir.Sub("out.zip"), "-log" + log}, RunEnv(dir.Sub("tmp")));
    EXPECT_EQ(r.status, c.status) << c.what;
    EXPECT_EQ(r.output, "") << c.what;
    EXPECT_EQ(Exists(dir.Sub("out.zip")), c.delivered) << c.what;
    EXPECT_EQ(WorkFolders(dir.Sub("tmp")).size(), c.work_folders) << c.what;
    std::string line = ExitLine(ReadFile(log));
    for (size_t at; (at = line.find(p.root())) != std::string::npos;)
      line.replace(at, p.root().size(), "P");
    EXPECT_TRUE(c.exit_line.empty() || line == c.exit_line) << c.what << ": " << line;
  }
}

}  // namespace
}  // namespace qvtest
