// Whole runs of `qvConvApp <project> -package<zip>`: the package's members, each document parsed
// back, content and telop bytes; and the outcome of each kind of project: exit status, package
// delivered or not, work folder removed or left, the last line of the log.
#include <iterator>
#include <sstream>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

using Conversion = BlackBoxTest;

// One copy of a content used twice, no file for the blank, .jpeg becomes .jpg; the sample, which
// the clean project copies, gives the same.  Programs are numbered in the order the time tables
// are walked, playlists per program; one content file, one identifier; only the panes in use; end
// code 11 is loop/stop; effect 258 an upward wipe; a telop has no background colour, a blank of
// kind 8 none either, and a short play time.
TEST_F(Conversion, CleanProjectMembersDocumentsAndContents) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  std::istringstream clean(
      "QvFormat QvFormat/QvC QvFormat/QvC/CT1.png QvFormat/QvC/CT3.mp4 QvFormat/QvC/CT4.jpg "
      "QvFormat/QvC/CT5.tlp QvFormat/QvP QvFormat/QvP/PG1 QvFormat/QvP/PG1/PG1.xml "
      "QvFormat/QvP/PG1/PL1.xml QvFormat/QvP/PG2 QvFormat/QvP/PG2/PG2.xml "
      "QvFormat/QvP/PG2/PL1.xml QvFormat/QvP/PG2/PL2.xml QvFormat/QvS.xml QvFormat/QvT "
      "QvFormat/QvT/TM1.xml QvFormat/QvT/TM2.xml");
  const std::vector<std::string> members{std::istream_iterator<std::string>(clean), {}};
  EXPECT_EQ(ZipMembers(zip_), members);
  EXPECT_EQ(RunQv({kSample, "-package" + scratch_.Sub("sample.zip")}).status, 0);
  EXPECT_EQ(ZipMembers(scratch_.Sub("sample.zip")), members);

  std::string documents;
  for (const char* doc :
       {"QvT/TM1.xml", "QvP/PG2/PG2.xml", "QvP/PG2/PL1.xml", "QvP/PG2/PL2.xml", "QvP/PG1/PL1.xml"})
    documents += std::string("== ") + doc + "\n" + Outline(Doc(doc));
  EXPECT_EQ(
      documents,
      "== QvT/TM1.xml\ntt i=TM1\n tl n=平日の番組表\n"
      "  tb\n   pg et=12:00:00 rp=PG2 st=09:00:00\n"
      "  tb\n   pg et=18:00:00 rp=PG1 st=12:00:00\n"
      "  tb\n   co st=18:00:00 ti=HDMI1 tp=3\n"
      "== QvP/PG2/PG2.xml\npgp i=PG2 n=ニュース\n pgi lk=f pgt=00:10:00\n"
      "  re h=1080 w=1920 x=0 y=0\n  bc c=#102030\n pai\n"
      "  pa\n   re h=900 w=1920 x=0 y=0\n   plf mt=f rl=PL1\n"
      "  pa\n   re h=180 w=1920 x=0 y=900\n   plf mt=f rl=PL2\n"
      "== QvP/PG2/PL1.xml\npl i=PL1\n"
      " m a=0 rc=CT3 tp=mp4 vo=80\n  bc c=#000000\n  pt ce=l t=00:00:30 to=s\n"
      " i a=1 rc=CT1 tp=png\n  bc c=#ffffff\n  pt ce=l t=00:00:10 to=s\n"
      " i a=2 rc=CT4 tp=jpeg\n  bc c=#000000\n  pt ce=l t=00:00:10 to=s\n"
      "  ie d=u t=1000 tp=wp vbc=f\n"
      "== QvP/PG2/PL2.xml\npl i=PL2\n t a=0 rc=CT5 tp=tlp\n  pt ce=l t=00:00:20 to=s\n"
      "== QvP/PG1/PL1.xml\npl i=PL1\n"
      " i a=0 rc=CT1 tp=png\n  bc c=#000000\n  pt ce=l t=00:00:10 to=s\n n\n  pt t=00:00:03\n");
  EXPECT_EQ(Doc("QvT/TM2.xml").At("tl").At("tb").At("pg").Attr("rp"), "PG1");
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT3.mp4"), kMovieBytes);
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT5.tlp"), CleanTelopUtf8())
      << "a code page 932 telop becomes UTF-8 without a mark, line ends kept";

  // -check after -package wins: a check-only run, whose telop rule stops at the project folder
  // (its path has no backslash) and so finds the telop.
  RemoveAll(zip_);
  EXPECT_EQ(RunQv({kSample, "-package" + zip_, "-check" + report_}, RunEnv(temp_)).status, 0);
  EXPECT_FALSE(Exists(report_) || Exists(zip_));
}

// A font beyond the telop limit: only the exact extension "tlp" is measured, but any case of it is
// recoded; a UTF-16 telop loses its line feeds, carriage returns stay; extensions are lowered; the
// playlist still names a missing content file, which is left out.
TEST_F(Conversion, Utf16TelopCapitalExtensionsAndAMissingContentFile) {
  p_.OneProgram("Program_1", {.panes = {Pane{1, 0, 0, 1920, 980}, Pane{5, 0, 980, 1920, 100}}});
  p_.Playlist("Program_1", 1,
              {ImageItem("Photo.JPEG"), MovieItem("Clip.MP4"), MovieItem("gone.mp4")});
  p_.Playlist("Program_1", 5, {TelopItem("NEWS.TLP")});
  p_.Content("Photo.JPEG", "jpeg bytes"), p_.Content("Clip.MP4", "mp4 bytes");
  const std::string text = TelopText(500, 0, {"Hello", "World"});
  p_.Content("NEWS.TLP", Utf16Le(text));
  ASSERT_EQ(Package().status, 0);
  EXPECT_EQ(Contents(Extracted() + "/QvC"),
            (std::vector<std::string>{"CT1.jpg=jpeg bytes", "CT2.mp4=mp4 bytes",
                                      "CT4.tlp=" + EraseAll(text, {"\n"})}));
  std::string items;
  for (const auto& c : Doc("QvP/PG1/PL1.xml").children) items += c.name + c.Attr("rc") + " ";
  EXPECT_EQ(items + Doc("QvP/PG1/PL2.xml").At("t").Attr("rc"), "iCT1 mCT2 mCT3 CT4");
}

// A missing time table is still named, but has no document; an empty target input is written;
// packing onto a zip adds to it.
TEST_F(Conversion, ScheduleAndTimeTableDocuments) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/01/02", "時間表b.csv"),
               ScheduleEntry("2035/01/03", "Nowhere.csv")});
  WriteFile(scratch_.Sub("old/keep.txt"), "kept");
  ZipFolderContents(scratch_.Sub("old"), zip_);
  ASSERT_EQ(Package().status, 0);
  EXPECT_TRUE(WorkFolders(temp_).empty());
  EXPECT_EQ(ZipMembers(zip_),
            (std::vector<std::string>{"QvFormat", "QvFormat/QvC", "QvFormat/QvP",
                                      "QvFormat/QvS.xml", "QvFormat/QvT", "QvFormat/QvT/TM1.xml",
                                      "QvFormat/QvT/TM2.xml", "keep.txt"}));
  EXPECT_EQ(Outline(Doc("QvS.xml")) + Outline(Doc("QvT/TM1.xml")) + Outline(Doc("QvT/TM2.xml")),
            "qv ver=1.0\n sl ad=f n=Schedule\n  s df=t dt=2035/01/01 rt=TM1\n"
            "  s df=f dt=2035/01/02 rt=TM2\n  s df=f dt=2035/01/03 rt=TM3\n"
            "tt i=TM1\n tl n=Morning\n  tb\n   co st=06:00:00 ti= tp=1\n"
            "tt i=TM2\n tl n=夜\n  tb\n   co st=22:00:00 ti=VIDEO1 tp=2\n");
}

// On the clean project, else on the time table project: the status, the package delivered, the
// work folders left, the last line of the log (P: the project).
TEST_F(Conversion, OutcomeOfEachKindOfProject) {
  using Edit = std::function<void(ProjectBuilder&)>;
  auto put = [](const std::string& path, const std::string& bytes) -> Edit {
    return [=](ProjectBuilder& p) { p.File(path, bytes); };
  };
  auto remove = [](const std::string& path) -> Edit {
    return [=](ProjectBuilder& p) { RemoveAll(p.Path(path)); };
  };
  // Schedule.csv copied to `name`, and removed unless `keep`.
  auto schedule_as = [](const std::string& name, bool keep = false) -> Edit {
    return [=](ProjectBuilder& p) {
      p.File(name, ReadFile(p.Path("Schedule.csv")));
      if (!keep) RemoveAll(p.Path("Schedule.csv"));
    };
  };
  const std::string ads = "Program_ads/information/contents_1_001.csv",
                    line2 = "\r\n1,00:00:10,,false,0x000000,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,11\r\n";
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
       put("Schedule.csv", CsvBytes({{"S"}, {"f"}, {DateFromToday(-3), "TimeTable_a.csv"}})), 1,
       true, 0, "exit 1: the check found warnings and no error"},
      {"an interrupt file", false, put("Interrupt_1.csv", ""), 2, false, 1,
       "exit 2: the check found errors: nothing was delivered"},
      {"a content error", true, put(ads, "..\\\\contents\\\\clip.wmv" + line2), 2, false, 1},
      {"no schedule", false, remove("Schedule.csv"), Status(-101), false, 1,
       "exit -101: no schedule file in \"P\""},
      {"no project folder", false, remove(""), Status(-101), false, 1},
      {"lower case schedule", false, schedule_as("schedule.csv"), Status(-101), false, 1},
      {"schedule not first", false, schedule_as("MySchedule.csv"), Status(-101), false, 1},
      {"stamped schedule", false, schedule_as("Schedule_20240101_120000_001.csv"), 0, true, 0,
       "exit 0: finished"},
      {"schedule in a subfolder", false, put("old/Schedule2.csv", CsvBytes({{"x"}, {"false"}})), 0,
       true, 0},
      {"two schedules", false, schedule_as("Schedule2.csv", true), Status(-103), false, 1,
       "exit -103: more than one schedule file in \"P\""},
      {"no escape", false, put("TimeTable_a.csv", "M\r\n0xD4F0FF\r\n06:00:00,a\\b,1,,1,\r\n"),
       Status(-102), false, 1, "exit -102: cannot understand \"P\\TimeTable_a.csv\""},
      {"no program file", true, remove("Program_ads/program.csv"), Status(-101), false, 1,
       "exit -101: cannot open \"P\\Program_ads\\program.csv\""},
      {"no playlist of a pane in use", true, remove("ニュース番組/playlist_5.csv"), Status(-101),
       false, 1},
      {"a content path without a point", true, put(ads, "noextension" + line2), Status(-102), false,
       1},
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
    const std::string line = Replaced(ExitLine(ReadFile(log)), p.root(), "P");
    EXPECT_TRUE(c.exit_line.empty() || line == c.exit_line) << c.what << ": " << line;
  }
}

}  // namespace
}  // namespace qvtest
