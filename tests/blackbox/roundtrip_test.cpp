// The way back: a package of XML documents opened with -unpackage comes back
// as a CSV project, and a project survives the way there and back but for
// its two documented losses.
#include <algorithm>
#include <functional>
#include <regex>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const std::regex kStamp("[0-9]{8}_[0-9]{6}");

// The files below a folder with every stamp replaced by "S".
std::vector<std::string> Unstamped(const std::string& folder) {
  std::vector<std::string> out;
  for (const auto& f : FilesBelow(folder)) out.push_back(std::regex_replace(f, kStamp, "S"));
  std::sort(out.begin(), out.end());
  return out;
}

// The one stamp of a written project, from its schedule file name.
std::string StampOf(const std::string& folder) {
  std::smatch m;
  for (const auto& f : ListDir(folder)) {
    if (f.rfind("Schedule_", 0) == 0 && std::regex_search(f, m, kStamp)) return m.str();
  }
  ADD_FAILURE() << "no schedule file in " << folder;
  return "?";
}

// A CSV file of a written project in UTF-8, escapes undone, CR LF as "\n",
// stamps as "S".
std::string Csv(const std::string& path) {
  const std::string text = Utf8FromCp932(ReadFile(path));
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == ',')) {
      out += text[++i];
    } else if (text.compare(i, 2, "\r\n") == 0) {
      out += text[++i];
    } else {
      EXPECT_TRUE(text[i] != '\r' && text[i] != '\n') << path << ": a line end other than CR LF";
      out += text[i];
    }
  }
  return std::regex_replace(out, kStamp, "S");
}

class RoundTrip : public BlackBoxTest {
 protected:
  std::string back_ = scratch_.Sub("back");

  RunResult Back() {
    MakeDirs(back_);
    return Unpackage(zip_, back_);
  }
};

TEST_F(RoundTrip, PackageComesBackAsProject) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  RunResult r = Back();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output, "");

  // Time tables are numbered by the schedule's entries, programs by the rows
  // of the time tables: ニュース番組 (PG2) is named first by 平日 (TM1).
  std::vector<std::string> expected = {"Schedule_S_001.csv", "TimeTable_S_001.csv", "TimeTable_S_002.csv",
                                       "contents/CT1.png", "contents/CT3.mp4", "contents/CT4.jpg",
                                       "contents/CT5.tlp"};
  for (const std::string program : {"Program_S_001/", "Program_S_002/"}) {
    expected.push_back(program + "program.csv");
    for (int i = 0; i <= 7; ++i) expected.push_back(program + "playlist_" + std::to_string(i) + ".csv");
    expected.push_back(program + "information/contents_1_001.csv");
    expected.push_back(program + "information/contents_1_002.csv");
  }
  expected.push_back("Program_S_001/information/contents_1_003.csv");
  expected.push_back("Program_S_001/information/contents_2_001.csv");
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Unstamped(back_), expected);
  const std::string s = StampOf(back_);
  for (const auto& f : FilesBelow(back_)) {
    std::smatch m;
    if (std::regex_search(f, m, kStamp)) {
      EXPECT_EQ(m.str(), s) << "one stamp for the run: " << f;
    }
  }
  EXPECT_FALSE(Exists(temp_ + "/unzip")) << "the opened package is removed at the end";
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
  EXPECT_TRUE(IsDir(temp_ + "/conv"));
  EXPECT_TRUE(ListDir(temp_ + "/conv").empty()) << "the work folder is removed at the end";

  EXPECT_EQ(Csv(back_ + "/Schedule_" + s + "_001.csv"),
            "サンプル スケジュール\nfalse\n2035/01/01,TimeTable_S_001.csv,true\n"
            "2035/01/02,TimeTable_S_002.csv,false\n2035/01/03,TimeTable_S_001.csv,false\n");
  EXPECT_EQ(Csv(back_ + "/TimeTable_" + s + "_001.csv"),
            "平日の番組表\n0xD4F0FF\n09:00:00,12:00:00,0,Program_S_001,0,\n"
            "12:00:00,18:00:00,0,Program_S_002,0,\n18:00:00,,1,,3,HDMI1\n");
  // The telop pane comes back as pane 2: panes are laid on 1 to 5 in their order.
  const std::string news = back_ + "/Program_" + s + "_001";
  EXPECT_EQ(Csv(news + "/program.csv"),
            "ニュース\n0xD4F0FF,0,0,1920,1080,00:10:00,0\n"
            "0,playlist_0.csv,0,0,1920,1080,0x102030,false,0,true\n"
            "1,playlist_1.csv,0,0,1920,900,0x102030,false,0,true\n"
            "2,playlist_2.csv,0,900,1920,180,0x102030,false,0,true\n"
            "3,playlist_3.csv,0,0,0,0,0x000000,false,0,false\n"
            "4,playlist_4.csv,0,0,0,0,0x000000,false,0,false\n"
            "5,playlist_5.csv,0,0,0,0,0x000000,false,0,false\n"
            "6,playlist_6.csv,0,0,0,0,0x000000,false,0,false\n"
            "7,playlist_7.csv,0,0,0,0,0x000000,false,0,true\n"
            "8,playlist_8.csv,0,0,0,0,0x000000,false,0,false\n");
  EXPECT_EQ(Csv(news + "/playlist_1.csv"),
            "information\\contents_1_001.csv\ninformation\\contents_1_002.csv\n"
            "information\\contents_1_003.csv\n");
  EXPECT_EQ(Csv(news + "/playlist_2.csv"), "information\\contents_2_001.csv\n");
  EXPECT_EQ(ReadFile(news + "/playlist_3.csv"), "");
  EXPECT_EQ(Csv(news + "/information/contents_1_003.csv") + Csv(news + "/information/contents_2_001.csv"),
            "..\\contents\\CT4.jpg\n1,00:00:10,,false,0x000000,2,,0,0,0,100,258,1000,0,-1,-1,-1,-1,00\n"
            "..\\contents\\CT5.tlp\n1,00:00:20,,false,0x000000,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,00\n");

  // Contents as the package holds them: the telop as UTF-8, which the way
  // there reads as code page 932.
  EXPECT_EQ(ReadFile(back_ + "/contents/CT3.mp4"), kMovieBytes);
  EXPECT_EQ(ReadFile(back_ + "/contents/CT5.tlp"), CleanTelopUtf8());

  // The telop pane, now a second frame, fails the check on the way there.
  const std::string again = scratch_.Sub("again.zip");
  EXPECT_EQ(RunQv({back_, "-package" + again}, RunEnv(temp_)).status, 2);
  EXPECT_FALSE(Exists(again));
}

// All documents and content files of an extracted package.
std::string PackageText(const std::string& qvformat) {
  std::string all;
  for (const auto& f : FilesBelow(qvformat)) {
    const bool xml = f.size() > 4 && f.substr(f.size() - 4) == ".xml";
    all += "== " + f + "\n" + (xml ? Outline(ParseXml(qvformat + "/" + f)) : ReadFile(qvformat + "/" + f) + "\n");
  }
  return all;
}

TEST_F(RoundTrip, SecondPackageHoldsTheSameDocuments) {
  // Names that sort in the order of their first use, so that a second
  // conversion gives the same identifiers; one pane per program.
  p_.Schedule({ScheduleEntry("2035/02/01", "TimeTable_a.csv", "true"),
               ScheduleEntry("2035/02/02", "TimeTable_b.csv"), ScheduleEntry("2035/02/03", "TimeTable_a.csv")},
              "Schedule.csv", "往復");
  p_.TimeTable("TimeTable_a.csv", "A",
               {ProgramLine("06:00:00", "12:00:00", "Program_a"), ProgramLine("12:00:00", "23:00:00", "Program_b"),
                CommandLine("23:30:00", "4", "HDMI2")});
  p_.TimeTable("TimeTable_b.csv", "B", {ProgramLine("00:00:00", "23:59:59", "Program_b")});
  ProgramSpec a;
  a.title = "番組A";
  a.play_time = "01:02:03";
  a.background = "0x0000ff";
  a.panes = {Pane{1, 0, 0, 1920, 1080}};
  p_.Program("Program_a", a);
  Item movie = MovieItem("clip.mp4", "00:01:00");
  movie.volume = "35";
  movie.end_code = "11";  // the two numberings of the end code meet only here
  movie.color = "0x112233";
  Item slide = ImageItem("slide.jpg", "65800", "750");  // turn page, upwards, through the background
  slide.aspect = "3";
  p_.Playlist("Program_a", 1, {movie, slide, BlankItem("8"), ImageItem("logo.png")});
  ProgramSpec b;
  b.title = "Program B";
  b.panes = {Pane{1, 0, 0, 1080, 1920}};
  p_.Program("Program_b", b);
  p_.Playlist("Program_b", 1, {ImageItem("logo.png"), MovieItem("clip.mp4")});
  for (const char* name : {"clip.mp4", "slide.jpg", "logo.png"}) p_.Content(name, name);

  ASSERT_EQ(Package().status, 0);
  ASSERT_EQ(Back().status, 0);
  const std::string zip2 = scratch_.Sub("second.zip");
  RunResult r = RunQv({back_, "-package" + zip2}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip2), ZipMembers(zip_));
  const std::string second = scratch_.Sub("second");
  MakeDirs(second);
  Unzip(zip2, second);
  EXPECT_EQ(PackageText(second + "/QvFormat"), PackageText(Extracted()));
}

// ---- Hand-written packages --------------------------------------------------

class HandPackage : public RoundTrip {
 public:
  std::string src_ = scratch_.Sub("src");

  void Doc(const std::string& relative, const std::string& body) {
    WriteFile(src_ + "/QvFormat/" + relative, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + body);
  }
  // A schedule of one time table naming one program with one pane.
  void OneProgram(const std::string& playlist_body) {
    Doc("QvS.xml", "<qv ver=\"1.0\"><sl n=\"S\" ad=\"f\"><s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
    Doc("QvT/TM1.xml", "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"PG1\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>");
    Doc("QvP/PG1/PG1.xml",
        "<pgp i=\"PG1\" n=\"P\"><pgi pgt=\"00:10:00\" lk=\"f\"><re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/>"
        "<bc c=\"#102030\"/></pgi><pai><pa><re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/><plf rl=\"PL1\" mt=\"f\"/>"
        "</pa></pai></pgp>");
    Doc("QvP/PG1/PL1.xml", playlist_body);
  }
  RunResult PackAndBack() {
    ZipFolderContents(src_, zip_);
    return Back();
  }
};

TEST_F(HandPackage, EveryItemKindAndAMissingContentFileComeBack) {
  OneProgram(
      "<pl i=\"PL1\">"
      "<m rc=\"CT1\" tp=\"mp4\" a=\"0\" vo=\"50\"><bc c=\"#000000\"/><pt t=\"00:00:30\" ce=\"l\" to=\"s\"/></m>"
      "<o/><u/><cc/><a/><p/><c/>"
      "<i rc=\"CT2\" tp=\"png\" a=\"3\"><bc c=\"#ffffff\"/><pt t=\"00:00:10\" ce=\"l\" to=\"s\"/>"
      "<ie tp=\"fd\" d=\"no\" t=\"500\"/></i>"
      "<t rc=\"CT3\" tp=\"tlp\" a=\"0\"><pt t=\"00:00:20\" ce=\"l\" to=\"s\"/></t>"
      "<n><bc c=\"#123456\"/><pt t=\"00:00:05\"/></n>"
      "<m rc=\"CT9\" tp=\"mp4\"><pt t=\"00:00:01\"/></m>"
      "</pl>");
  // One time table named three times is written once.
  Doc("QvS.xml",
      "<qv ver=\"1.0\"><sl n=\"S\"><s dt=\"2035/01/01\" rt=\"TM1\"/><s dt=\"2035/01/02\" rt=\"TM1\"/>"
      "<s dt=\"2035/01/03\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  WriteFile(src_ + "/QvFormat/QvC/CT1.mp4", "movie");
  WriteFile(src_ + "/QvFormat/QvC/CT2.png", "image");
  WriteFile(src_ + "/QvFormat/QvC/CT3.tlp", "telop");
  RunResult r = PackAndBack();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string s = StampOf(back_);
  EXPECT_EQ(Csv(back_ + "/Schedule_" + s + "_001.csv"),
            "S\nfalse\n2035/01/01,TimeTable_S_001.csv,false\n2035/01/02,TimeTable_S_001.csv,false\n"
            "2035/01/03,TimeTable_S_001.csv,true\n");
  EXPECT_FALSE(Exists(back_ + "/TimeTable_" + s + "_002.csv"));

  const std::string program = back_ + "/Program_" + s + "_001/";
  EXPECT_EQ(Csv(program + "playlist_1.csv"),
            "information\\contents_1_001.csv\ninformation\\contents_1_002.csv\n"
            "information\\contents_1_003.csv\ninformation\\contents_1_004.csv\n"
            "information\\contents_1_005.csv\n")
      << "the skipped kinds give no item";
  // Fade is effect code 13; a blank comes back as kind 8 (kind 7 would be
  // refused) with its colour.
  std::string items;
  for (int k = 1; k <= 4; ++k) items += Csv(program + "information/contents_1_00" + std::to_string(k) + ".csv");
  EXPECT_EQ(items,
            "..\\contents\\CT1.mp4\n1,00:00:30,,false,0x000000,0,,0,0,0,50,0,0,0,-1,-1,-1,-1,00\n"
            "..\\contents\\CT2.png\n1,00:00:10,,false,0xffffff,3,,0,0,0,100,13,500,0,-1,-1,-1,-1,00\n"
            "..\\contents\\CT3.tlp\n1,00:00:20,,false,0x000000,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,00\n"
            "\n8,00:00:05,,false,0x123456,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,00\n");
  EXPECT_EQ(Csv(program + "information/contents_1_005.csv").rfind("..\\contents\\CT9.mp4\n", 0), 0u);
  EXPECT_EQ(FilesBelow(back_ + "/contents"), (std::vector<std::string>{"CT1.mp4", "CT2.png", "CT3.tlp"}))
      << "the missing CT9 is no failure";
  EXPECT_EQ(ReadFile(back_ + "/contents/CT3.tlp"), "telop");
}

TEST_F(HandPackage, SevenPanesKeepTheFirstFive) {
  Doc("QvS.xml", "<qv><sl><s dt=\"2035/01/01\" rt=\"TM1\"/></sl></qv>");
  Doc("QvT/TM1.xml", "<tt><tl><tb><pg rp=\"PG1\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>");
  std::string panes;
  for (int i = 1; i <= 7; ++i) {
    panes += "<pa><re x=\"0\" y=\"0\" w=\"10\" h=\"10\"/><plf rl=\"PL" + std::to_string(i) + "\"/></pa>";
  }
  Doc("QvP/PG1/PG1.xml", "<pgp><pgi pgt=\"00:01:00\"/><pai>" + panes + "</pai></pgp>");
  for (int i = 1; i <= 5; ++i) {  // PL6 and PL7 do not exist: they are never read
    Doc("QvP/PG1/PL" + std::to_string(i) + ".xml",
        "<pl><m rc=\"CT" + std::to_string(i) + "\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>");
  }
  RunResult r = PackAndBack();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string program = back_ + "/Program_" + StampOf(back_) + "_001/";
  for (int i = 0; i <= 7; ++i) {
    const std::string n = std::to_string(i);
    EXPECT_EQ(Csv(program + "playlist_" + n + ".csv"),
              i >= 1 && i <= 5 ? "information\\contents_" + n + "_001.csv\n" : "") << i;
  }
  EXPECT_FALSE(Exists(program + "playlist_8.csv"));
  const std::string lines = Csv(program + "program.csv");
  EXPECT_NE(lines.find("\n6,playlist_6.csv,0,0,10,10,"), std::string::npos) << lines;
  EXPECT_NE(lines.find(",true\n7,playlist_7.csv,"), std::string::npos) << "the sixth pane has a line, but no playlist";
}

TEST_F(HandPackage, MissingOrBrokenDocumentIs300AndDeliversNothing) {
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"missing time table", [&] { RemoveAll(src_ + "/QvFormat/QvT/TM1.xml"); }},
      {"missing playlist", [&] { RemoveAll(src_ + "/QvFormat/QvP/PG1/PL1.xml"); }},
      {"broken program", [&] { Doc("QvP/PG1/PG1.xml", "<pgp><pai></pgp>"); }},
  };
  for (const auto& [what, edit] : cases) {
    for (const std::string& folder : {src_, zip_, back_, temp_}) RemoveAll(folder);
    OneProgram("<pl><m rc=\"CT1\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>");
    edit();
    EXPECT_EQ(PackAndBack().status, Status(-300)) << what;
    EXPECT_TRUE(ListDir(back_).empty()) << what << ": nothing is delivered";
    EXPECT_TRUE(IsDir(temp_ + "/unzip")) << what << ": the opened package stays";
    EXPECT_EQ(ListDir(temp_ + "/conv").size(), 1u) << what << ": the work folder stays";
  }
}

TEST_F(HandPackage, DestinationThatDoesNotExistGetsNothing) {
  OneProgram("<pl/>");
  ZipFolderContents(src_, zip_);
  const std::string missing = scratch_.Sub("not-made");
  EXPECT_EQ(Unpackage(zip_, missing).status, 0);
  EXPECT_FALSE(Exists(missing)) << "nothing makes the destination";
  EXPECT_FALSE(Exists(temp_ + "/unzip"));
}

}  // namespace
}  // namespace qvtest
