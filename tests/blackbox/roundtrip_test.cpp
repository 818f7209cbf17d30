// The way back: a package opened with -unpackage comes back as a CSV project, and a project
// survives the way there and back but for its two documented losses.
#include <unistd.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// The one stamp of a written project, from the first of its names.
std::string StampOf(const std::string& folder) {
  const std::vector<std::string> names = ListDir(folder);
  return names.empty() ? "?" : FirstStamp(names[0]);
}

// A CSV file of a written project in UTF-8, escapes undone, CR LF as "\n", stamps as "S".
std::string Csv(const std::string& path) {
  const std::string text = Utf8FromCp932(ReadFile(path));
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool pair = text.compare(i, 2, "\\\\") == 0 || text.compare(i, 2, "\\,") == 0 ||
                      text.compare(i, 2, "\r\n") == 0;
    EXPECT_TRUE(pair || (text[i] != '\r' && text[i] != '\n')) << path << ": a bare line end";
    out += text[i += pair];
  }
  return ReplaceStamps(out, "S");
}

using RoundTrip = HandPackageTest;

TEST_F(RoundTrip, PackageComesBackAsProject) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  EXPECT_TRUE(Unpackage(zip_, back_).status == 0 && !Exists(back_)) << "nothing makes it";
  ASSERT_EQ(UnpackageTo(zip_, back_).status, 0);
  // A schedule, two time tables, four contents, two programs of 11 files; one stamp for the run.
  const std::string s = StampOf(back_);
  EXPECT_EQ(FilesBelow(back_).size(), 1u + 2 + 4 + 2 * 11 + 2);
  for (const auto& f : FilesBelow(back_)) EXPECT_EQ(ReplaceStamps(f, s), f);
  EXPECT_TRUE(!Exists(temp_ + "/unzip") && ListDir(temp_ + "/conv").empty())
      << "opened package and work folder removed";

  // Time tables are numbered by the schedule's entries, programs by the rows of the time tables:
  // ニュース番組 (PG2) is named first by 平日 (TM1).
  EXPECT_EQ(
      Csv(back_ + "/Schedule_" + s + "_001.csv") + Csv(back_ + "/TimeTable_" + s + "_001.csv"),
      "サンプル スケジュール\nfalse\n2035/01/01,TimeTable_S_001.csv,true\n"
      "2035/01/02,TimeTable_S_002.csv,false\n2035/01/03,TimeTable_S_001.csv,false\n"
      "平日の番組表\n0xD4F0FF\n09:00:00,12:00:00,0,Program_S_001,0,\n"
      "12:00:00,18:00:00,0,Program_S_002,0,\n18:00:00,,1,,3,HDMI1\n");
  // The telop pane comes back as pane 2: panes are laid on 1 to 5 in their order.
  EXPECT_NE(Csv(back_ + "/Program_" + s + "_001/program.csv")
                .find("ニュース\n0xD4F0FF,0,0,1920,1080,00:10:00,0\n"
                      "0,playlist_0.csv,0,0,1920,1080,0x102030,false,0,true\n"
                      "1,playlist_1.csv,0,0,1920,900,0x102030,false,0,true\n"
                      "2,playlist_2.csv,0,900,1920,180,0x102030,"),
            std::string::npos);
  // Contents as the package holds them: the telop as UTF-8, which the way there reads as code
  // page 932.
  EXPECT_EQ(ReadFile(back_ + "/contents/CT5.tlp"), CleanTelopUtf8());
  // The telop pane, now a second frame, fails the check on the way there.
  EXPECT_EQ(RunQv({back_, "-package" + scratch_.Sub("again.zip")}, RunEnv(temp_)).status, 2);
  EXPECT_FALSE(Exists(scratch_.Sub("again.zip")));
}

// All documents (as outlines) and content files of an extracted package.
std::string PackageText(const std::string& qvformat) {
  std::string all;
  for (const auto& f : FilesBelow(qvformat))
    all += "== " + f + "\n" +
           (f.ends_with(".xml") ? Outline(ParseXml(qvformat + "/" + f))
                                : ReadFile(qvformat + "/" + f) + "\n");
  return all;
}

// Names that sort in the order of their first use, so that a second conversion gives the same
// identifiers; one pane per program.
// A link standing in the destination is not written through: what would go there stays out.
TEST_F(RoundTrip, ALinkInTheDestinationIsNotFollowed) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  WriteFile(scratch_.Sub("victim/CT1.png"), "precious");
  MakeDirs(back_);
  ASSERT_EQ(::symlink(scratch_.Sub("victim").c_str(), (back_ + "/contents").c_str()), 0);
  ASSERT_EQ(Unpackage(zip_, back_).status, 0);
  EXPECT_EQ(ListDir(scratch_.Sub("victim")), std::vector<std::string>{"CT1.png"});
  EXPECT_EQ(ReadFile(scratch_.Sub("victim/CT1.png")), "precious");
  EXPECT_EQ(FilesBelow(back_).size(), 1u + 2 + 2 * 11 + 2);  // all but the contents
}

TEST_F(RoundTrip, SecondPackageHoldsTheSameDocuments) {
  p_.Schedule({ScheduleEntry("2035/02/01", "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/02/02", "TimeTable_b.csv"),
               ScheduleEntry("2035/02/03", "TimeTable_a.csv")},
              "Schedule.csv", "往復");
  p_.TimeTable(
      "TimeTable_a.csv", "A",
      {ProgramLine("06:00:00", "12:00:00", "Program_a"),
       ProgramLine("12:00:00", "23:00:00", "Program_b"), CommandLine("23:30:00", "4", "HDMI2")});
  p_.TimeTable("TimeTable_b.csv", "B", {ProgramLine("00:00:00", "23:59:59", "Program_b")});
  const ProgramShape a{
      .title = "番組A", .play_time = "01:02:03", .background = "0x0000ff", .panes = {Pane{1}}},
      b{.title = "Program B", .panes = {Pane{1, 0, 0, 1080, 1920}}};
  Item movie = MovieItem("clip.mp4", "00:01:00"), slide = ImageItem("slide.jpg", "65800", "750");
  movie.volume = "35", movie.color = "0x112233";
  slide.aspect = "3";  // slide: turn page, upwards, through the background
  p_.Program("Program_a", a);
  p_.Playlist("Program_a", 1, {movie, slide, BlankItem("8"), ImageItem("logo.png")});
  p_.Program("Program_b", b);
  p_.Playlist("Program_b", 1, {ImageItem("logo.png"), MovieItem("clip.mp4")});
  for (const char* name : {"clip.mp4", "slide.jpg", "logo.png"}) p_.Content(name, name);

  ASSERT_EQ(Package().status, 0);
  ASSERT_EQ(UnpackageTo(zip_, back_).status, 0);
  const std::string zip2 = scratch_.Sub("second.zip"), second = scratch_.Sub("second");
  ASSERT_EQ(RunQv({back_, "-package" + zip2}, RunEnv(temp_)).status, 0);
  EXPECT_EQ(ZipMembers(zip2), ZipMembers(zip_));
  Unzip(zip2, second);
  EXPECT_EQ(PackageText(second + "/QvFormat"), PackageText(Extracted()));
}

// The skipped kinds give no item (the 2nd is CT2); fade is effect code 13; a blank comes back as
// kind 8 (kind 7 would be refused) with its colour; a missing content file is no failure, and one
// time table named three times is written once.
TEST_F(RoundTrip, EveryItemKindAndAMissingContentFileComeBack) {
  Scenario(
      "<m rc=\"CT1\" tp=\"mp4\" vo=\"50\"><pt t=\"00:00:30\"/></m><o/><u/><cc/><a/><p/><c/>"
      "<i rc=\"CT2\" tp=\"png\" a=\"3\"><bc c=\"#ffffff\"/><pt t=\"00:00:10\"/>"
      "<ie tp=\"fd\" d=\"no\" t=\"500\"/></i><t rc=\"CT3\" tp=\"tlp\" a=\"0\">"
      "<pt t=\"00:00:20\"/></t><n><bc c=\"#123456\"/><pt t=\"00:00:05\"/></n>" +
      MovieXml("CT9"));
  const std::string entry = "<s dt=\"2035/01/02\" rt=\"TM1\"/>";
  Write("QvS.xml", ScheduleXml("S", entry + entry));
  for (const char* name : {"CT2.png", "CT3.tlp"}) WriteFile(src_ + "/QvFormat/QvC/" + name, name);
  ASSERT_EQ(PackAndBack().status, 0);
  const std::string s = StampOf(back_), program = back_ + "/Program_" + s + "_001/";
  EXPECT_FALSE(Exists(back_ + "/TimeTable_" + s + "_002.csv"));
  std::string items;
  for (int k = 2; k <= 4; ++k)
    items += Csv(program + "information/contents_1_00" + std::to_string(k) + ".csv");
  EXPECT_EQ(
      items,
      "..\\contents\\CT2.png\n1,00:00:10,,false,0xffffff,3,,0,0,0,100,13,500,0,-1,-1,-1,-1,00\n"
      "..\\contents\\CT3.tlp\n1,00:00:20,,false,0x000000,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,00\n"
      "\n8,00:00:05,,false,0x123456,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,00\n");
  EXPECT_EQ(FilesBelow(back_ + "/contents"),
            (std::vector<std::string>{"CT1.mp4", "CT2.png", "CT3.tlp"}));
}

// Of seven panes the first five are kept; the sixth has a line, but no playlist.
TEST_F(RoundTrip, SevenPanesKeepTheFirstFive) {
  Scenario(MovieXml("CT1"), 7);
  for (int i = 2; i <= 5; ++i) Write("QvP/PG1/PL" + std::to_string(i) + ".xml", "<pl/>");
  ASSERT_EQ(PackAndBack().status, 0);  // PL6 and PL7 are never read
  const std::string program = back_ + "/Program_" + StampOf(back_) + "_001/";
  EXPECT_FALSE(Exists(program + "playlist_8.csv"));
  const std::string lines = Csv(program + "program.csv");
  EXPECT_NE(lines.find("\n6,playlist_6.csv,0,0,1920,1080,"), std::string::npos) << lines;
  EXPECT_NE(lines.find(",true\n7,playlist_7.csv,"), std::string::npos) << lines;
}

// A missing or broken document is -300: nothing is delivered, the opened package and the work
// folder stay.
TEST_F(RoundTrip, MissingOrBrokenDocumentIs300AndDeliversNothing) {
  for (const std::string broken : {"", "<pgp><pai></pgp>"}) {
    RemoveAll(temp_);
    Scenario();
    broken.empty() ? RemoveAll(src_ + "/QvFormat/QvP/PG1/PL1.xml")
                   : Write("QvP/PG1/PG1.xml", broken);
    EXPECT_EQ(PackAndBack().status, Status(-300)) << broken;
    EXPECT_TRUE(ListDir(back_).empty()) << broken;
    EXPECT_TRUE(IsDir(temp_ + "/unzip")) << broken;
    EXPECT_EQ(ListDir(temp_ + "/conv").size(), 1u) << broken;
  }
}

}  // namespace
}  // namespace qvtest
