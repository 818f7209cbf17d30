// The way back: a package of XML documents opened with -unpackage comes back
// as a CSV project, and a project survives the way there and back.
#include <algorithm>
#include <functional>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// The position of the first stamp "YYYYMMDD_hhmmss" in a name, or npos.
std::size_t FindStamp(const std::string& name) {
  auto digits = [&](std::size_t at, std::size_t n) {
    for (std::size_t i = at; i < at + n; ++i) {
      if (i >= name.size() || name[i] < '0' || name[i] > '9') return false;
    }
    return true;
  };
  for (std::size_t i = 0; i + 15 <= name.size(); ++i) {
    if (digits(i, 8) && name[i + 8] == '_' && digits(i + 9, 6)) return i;
  }
  return std::string::npos;
}

std::string ReplaceStamps(std::string name) {
  for (std::size_t at; (at = FindStamp(name)) != std::string::npos;) name.replace(at, 15, "<stamp>");
  return name;
}

// The files below a folder with every stamp replaced by "<stamp>".
std::vector<std::string> Unstamped(const std::string& folder) {
  std::vector<std::string> out;
  for (const auto& f : FilesBelow(folder)) out.push_back(ReplaceStamps(f));
  std::sort(out.begin(), out.end());
  return out;
}

// The one stamp of a written project, from its schedule file name.
std::string StampOf(const std::string& folder) {
  for (const auto& f : ListDir(folder)) {
    const std::size_t at = FindStamp(f);
    if (f.rfind("Schedule_", 0) == 0 && at != std::string::npos) return f.substr(at, 15);
  }
  ADD_FAILURE() << "no schedule file in " << folder;
  return "?";
}

std::vector<std::string> ProgramFiles(const std::string& program, const Rows& contents) {
  std::vector<std::string> out = {program + "/program.csv"};
  for (int i = 0; i <= 7; ++i) out.push_back(program + "/playlist_" + std::to_string(i) + ".csv");
  for (const auto& c : contents) out.push_back(program + "/information/" + c[0]);
  return out;
}

// Compares two XML trees; returns the path of the first difference, or "".
std::string Diff(const XmlNode& a, const XmlNode& b, const std::string& where) {
  std::string here = where + "/" + a.name;
  if (a.name != b.name) return here + " vs " + b.name;
  if (a.attrs != b.attrs) {
    std::string s = here + " attributes:";
    for (const auto& [k, v] : a.attrs) s += " " + k + "=" + v;
    s += " vs";
    for (const auto& [k, v] : b.attrs) s += " " + k + "=" + v;
    return s;
  }
  if (a.children.size() != b.children.size()) return here + " child count";
  for (size_t i = 0; i < a.children.size(); ++i) {
    std::string d = Diff(a.children[i], b.children[i], here);
    if (!d.empty()) return d;
  }
  return "";
}

class RoundTrip : public BlackBoxTest {
 protected:
  std::string back_ = scratch_.Sub("back");

  RunResult Back(const std::string& zip = "") {
    MakeDirs(back_);
    return Unpackage(zip.empty() ? zip_ : zip, back_);
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
  std::vector<std::string> expected = {"Schedule_<stamp>_001.csv", "TimeTable_<stamp>_001.csv",
                                       "TimeTable_<stamp>_002.csv", "contents/CT1.png",
                                       "contents/CT3.mp4", "contents/CT4.jpg", "contents/CT5.tlp"};
  for (const auto& f : ProgramFiles("Program_<stamp>_001", {{"contents_1_001.csv"},
                                                            {"contents_1_002.csv"},
                                                            {"contents_1_003.csv"},
                                                            {"contents_2_001.csv"}})) {
    expected.push_back(f);
  }
  for (const auto& f :
       ProgramFiles("Program_<stamp>_002", {{"contents_1_001.csv"}, {"contents_1_002.csv"}})) {
    expected.push_back(f);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Unstamped(back_), expected);

  // One stamp for the whole run.
  std::string stamp = StampOf(back_);
  for (const auto& f : FilesBelow(back_)) {
    const std::size_t at = FindStamp(f);
    if (at != std::string::npos) {
      EXPECT_EQ(f.substr(at, 15), stamp) << f;
    }
  }

  EXPECT_FALSE(Exists(temp_ + "/unzip")) << "the opened package is removed at the end";
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
  ASSERT_TRUE(IsDir(temp_ + "/conv"));
  EXPECT_TRUE(ListDir(temp_ + "/conv").empty()) << "the work folder is removed at the end";
}

TEST_F(RoundTrip, ProjectReadBackKeepsItsValues) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  ASSERT_EQ(Back().status, 0);
  const std::string s = StampOf(back_);

  Rows schedule = ReadCsv(back_ + "/Schedule_" + s + "_001.csv");
  Rows expected_schedule = {{"サンプル スケジュール"},
                            {"false"},
                            {"2035/01/01", "TimeTable_" + s + "_001.csv", "true"},
                            {"2035/01/02", "TimeTable_" + s + "_002.csv", "false"},
                            {"2035/01/03", "TimeTable_" + s + "_001.csv", "false"}};
  EXPECT_EQ(schedule, expected_schedule);

  Rows weekday = ReadCsv(back_ + "/TimeTable_" + s + "_001.csv");
  ASSERT_EQ(weekday.size(), 5u) << "two program rows and the command row";
  EXPECT_EQ(weekday[0], Row{"平日の番組表"});
  EXPECT_EQ(weekday[1], Row{"0xD4F0FF"});
  EXPECT_EQ(weekday[2], (Row{"09:00:00", "12:00:00", "0", "Program_" + s + "_001", "0", ""}));
  EXPECT_EQ(weekday[3], (Row{"12:00:00", "18:00:00", "0", "Program_" + s + "_002", "0", ""}));
  ASSERT_GE(weekday[4].size(), 6u);
  EXPECT_EQ(weekday[4][0], "18:00:00");
  EXPECT_EQ(weekday[4][2], "1");
  EXPECT_EQ(weekday[4][4], "3");
  EXPECT_EQ(weekday[4][5], "HDMI1");

  const std::string news = back_ + "/Program_" + s + "_001";
  Rows program = ReadCsv(news + "/program.csv");
  ASSERT_EQ(program.size(), 11u);
  EXPECT_EQ(program[0], Row{"ニュース"});
  EXPECT_EQ(program[1], (Row{"0xD4F0FF", "0", "0", "1920", "1080", "00:10:00", "0"}));
  EXPECT_EQ(program[2], (Row{"0", "playlist_0.csv", "0", "0", "1920", "1080", "0x102030", "false",
                             "0", "true"}));
  EXPECT_EQ(program[3], (Row{"1", "playlist_1.csv", "0", "0", "1920", "900", "0x102030", "false",
                             "0", "true"}));
  // The telop pane comes back as the second pane number: panes are laid on
  // the numbers 1 to 5 in their order.
  EXPECT_EQ(program[4], (Row{"2", "playlist_2.csv", "0", "900", "1920", "180", "0x102030",
                             "false", "0", "true"}));
  EXPECT_EQ(program[5], (Row{"3", "playlist_3.csv", "0", "0", "0", "0", "0x000000", "false", "0",
                             "false"}));
  EXPECT_EQ(program[9], (Row{"7", "playlist_7.csv", "0", "0", "0", "0", "0x000000", "false", "0",
                             "true"}));
  EXPECT_EQ(program[10], (Row{"8", "playlist_8.csv", "0", "0", "0", "0", "0x000000", "false", "0",
                              "false"}));

  EXPECT_EQ(ReadCsv(news + "/playlist_1.csv"),
            (Rows{{"information\\contents_1_001.csv"},
                  {"information\\contents_1_002.csv"},
                  {"information\\contents_1_003.csv"}}));
  EXPECT_EQ(ReadCsv(news + "/playlist_2.csv"), (Rows{{"information\\contents_2_001.csv"}}));
  for (int i : {0, 3, 4, 5, 6, 7}) {
    EXPECT_EQ(ReadFile(news + "/playlist_" + std::to_string(i) + ".csv"), "") << i;
  }

  Rows movie = ReadCsv(news + "/information/contents_1_001.csv");
  ASSERT_GE(movie.size(), 2u);
  EXPECT_EQ(movie[0], Row{"..\\contents\\CT3.mp4"});
  ASSERT_EQ(movie[1].size(), 19u);
  EXPECT_EQ(movie[1][0], "1");
  EXPECT_EQ(movie[1][1], "00:00:30");
  EXPECT_EQ(movie[1][4], "0x000000");
  EXPECT_EQ(movie[1][10], "80");
  EXPECT_EQ(movie[1][14], "-1");

  Rows photo = ReadCsv(news + "/information/contents_1_003.csv");
  ASSERT_GE(photo.size(), 2u);
  EXPECT_EQ(photo[0], Row{"..\\contents\\CT4.jpg"});
  ASSERT_EQ(photo[1].size(), 19u);
  EXPECT_EQ(photo[1][5], "2") << "aspect";
  EXPECT_EQ(photo[1][11], "258") << "wipe upwards";
  EXPECT_EQ(photo[1][12], "1000");

  Rows telop = ReadCsv(news + "/information/contents_2_001.csv");
  ASSERT_GE(telop.size(), 2u);
  EXPECT_EQ(telop[0], Row{"..\\contents\\CT5.tlp"});
  EXPECT_EQ(telop[1][1], "00:00:20");

  // Content files are copied as the package holds them: the telop as UTF-8.
  EXPECT_EQ(ReadFile(back_ + "/contents/CT3.mp4"), kMovieBytes);
  EXPECT_EQ(ReadFile(back_ + "/contents/CT5.tlp"), CleanTelopUtf8());

  const std::string ads = back_ + "/Program_" + s + "_002";
  Rows blank = ReadCsv(ads + "/information/contents_1_002.csv");
  ASSERT_GE(blank.size(), 2u) << "the blank item comes back";
  EXPECT_EQ(blank[1][0], "8") << "a blank without colour";
  EXPECT_EQ(blank[1][1], "00:00:03");
}

// A project whose names sort in the order of their first use, so that the
// identifiers of a second conversion are those of the first; one pane per
// program, so that the way back loses nothing.
void BuildStableProject(ProjectBuilder& p) {
  p.Schedule({ScheduleEntry("2035/02/01", "TimeTable_a.csv", "true"),
              ScheduleEntry("2035/02/02", "TimeTable_b.csv"),
              ScheduleEntry("2035/02/03", "TimeTable_a.csv")},
             "Schedule.csv", "往復");
  p.TimeTable("TimeTable_a.csv", "A",
              {ProgramLine("06:00:00", "12:00:00", "Program_a"),
               ProgramLine("12:00:00", "23:00:00", "Program_b"),
               CommandLine("23:30:00", "4", "HDMI2")});
  p.TimeTable("TimeTable_b.csv", "B", {ProgramLine("00:00:00", "23:59:59", "Program_b")});

  ProgramSpec a;
  a.title = "番組A";
  a.play_time = "01:02:03";
  a.background = "0x0000ff";
  a.panes = {Pane{1, 0, 0, 1920, 1080, "true"}};
  p.Program("Program_a", a);
  Item movie = MovieItem("clip.mp4", "00:01:00");
  movie.line.volume = "35";
  movie.line.end_code = "42";
  movie.line.color = "0x112233";
  // Turn page (code 8), upwards (1 << 8), through the background (1 << 16).
  Item slide = ImageItem("slide.jpg", "65800", "750");
  slide.line.aspect = "3";
  Item logo = ImageItem("logo.png");
  p.Playlist("Program_a", 1, {movie, slide, BlankItem("8"), logo});

  ProgramSpec b;
  b.title = "Program B";
  b.panes = {Pane{1, 0, 0, 1080, 1920, "true"}};
  p.Program("Program_b", b);
  p.Playlist("Program_b", 1, {ImageItem("logo.png"), MovieItem("clip.mp4")});

  p.Content("clip.mp4", "clip bytes");
  p.Content("slide.jpg", "slide bytes");
  p.Content("logo.png", "logo bytes");
}

// All documents of an extracted package, by path below QvFormat.
std::map<std::string, XmlNode> Documents(const std::string& qvformat) {
  std::map<std::string, XmlNode> docs;
  for (const auto& f : FilesBelow(qvformat)) {
    if (f.size() > 4 && f.substr(f.size() - 4) == ".xml") docs[f] = ParseXml(qvformat + "/" + f);
  }
  return docs;
}

TEST_F(RoundTrip, SecondPackageHoldsTheSameDocuments) {
  BuildStableProject(p_);
  ASSERT_EQ(Package().status, 0);
  ASSERT_EQ(Back().status, 0);
  std::string zip2 = scratch_.Sub("second.zip");
  RunResult r = RunQv({back_, "-package" + zip2}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;

  EXPECT_EQ(ZipMembers(zip2), ZipMembers(zip_));
  std::string second = scratch_.Sub("second");
  MakeDirs(second);
  Unzip(zip2, second);
  auto first_docs = Documents(Extracted());
  auto second_docs = Documents(second + "/QvFormat");
  ASSERT_EQ(first_docs.size(), second_docs.size());
  for (const auto& [path, doc] : first_docs) {
    ASSERT_TRUE(second_docs.count(path)) << path;
    EXPECT_EQ(Diff(doc, second_docs[path], path), "") << "documents differ";
  }
  for (const auto& f : FilesBelow(Extracted() + "/QvC")) {
    EXPECT_EQ(ReadFile(second + "/QvFormat/QvC/" + f), ReadFile(Extracted() + "/QvC/" + f)) << f;
  }
}

TEST_F(RoundTrip, TelopPaneComesBackAsASecondFrame) {
  // The way back lays the telop pane on number 2, which the check then
  // refuses as a second display frame.
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  ASSERT_EQ(Back().status, 0);
  std::string again = scratch_.Sub("again.zip");
  RunResult r = RunQv({back_, "-package" + again}, RunEnv(temp_));
  EXPECT_EQ(r.status, 2);
  EXPECT_FALSE(Exists(again));
}

// ---- Hand-written packages --------------------------------------------------

const char kDecl[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

class HandPackage : public RoundTrip {
 public:
  std::string src_ = scratch_.Sub("src");

  void Doc(const std::string& relative, const std::string& body) {
    WriteFile(src_ + "/QvFormat/" + relative, std::string(kDecl) + body);
  }
  void Pack() { ZipFolderContents(src_, zip_); }

  // A schedule of one time table naming one program with one pane.
  void OneProgram(const std::string& playlist_body) {
    Doc("QvS.xml", "<qv ver=\"1.0\"><sl n=\"S\" ad=\"f\"><s dt=\"2035/01/01\" rt=\"TM1\" "
                   "df=\"t\"/></sl></qv>");
    Doc("QvT/TM1.xml", "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"PG1\" st=\"08:00:00\" "
                       "et=\"09:00:00\"/></tb></tl></tt>");
    Doc("QvP/PG1/PG1.xml",
        "<pgp i=\"PG1\" n=\"P\"><pgi pgt=\"00:10:00\" lk=\"f\"><re x=\"0\" y=\"0\" w=\"1920\" "
        "h=\"1080\"/><bc c=\"#102030\"/></pgi><pai><pa><re x=\"0\" y=\"0\" w=\"1920\" "
        "h=\"1080\"/><plf rl=\"PL1\" mt=\"f\"/></pa></pai></pgp>");
    Doc("QvP/PG1/PL1.xml", playlist_body);
  }
};

TEST_F(HandPackage, EveryItemKindComesBack) {
  OneProgram(
      "<pl i=\"PL1\">"
      "<m rc=\"CT1\" tp=\"mp4\" a=\"0\" vo=\"50\"><bc c=\"#000000\"/>"
      "<pt t=\"00:00:30\" ce=\"l\" to=\"s\"/></m>"
      "<o/><u/><cc/><a/><p/><c/>"
      "<i rc=\"CT2\" tp=\"png\" a=\"3\"><bc c=\"#ffffff\"/><pt t=\"00:00:10\" ce=\"l\" to=\"s\"/>"
      "<ie tp=\"fd\" d=\"no\" t=\"500\"/></i>"
      "<t rc=\"CT3\" tp=\"tlp\" a=\"0\"><pt t=\"00:00:20\" ce=\"l\" to=\"s\"/></t>"
      "<n><bc c=\"#123456\"/><pt t=\"00:00:05\"/></n>"
      "</pl>");
  WriteFile(src_ + "/QvFormat/QvC/CT1.mp4", "movie");
  WriteFile(src_ + "/QvFormat/QvC/CT2.png", "image");
  WriteFile(src_ + "/QvFormat/QvC/CT3.tlp", "telop");
  Pack();
  RunResult r = Back();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string s = StampOf(back_);
  const std::string program = back_ + "/Program_" + s + "_001";
  EXPECT_EQ(ReadCsv(program + "/playlist_1.csv"),
            (Rows{{"information\\contents_1_001.csv"},
                  {"information\\contents_1_002.csv"},
                  {"information\\contents_1_003.csv"},
                  {"information\\contents_1_004.csv"}}))
      << "the skipped kinds give no item";
  Rows movie = ReadCsv(program + "/information/contents_1_001.csv");
  ASSERT_GE(movie.size(), 2u);
  EXPECT_EQ(movie[0], Row{"..\\contents\\CT1.mp4"});
  EXPECT_EQ(movie[1][10], "50");
  Rows image = ReadCsv(program + "/information/contents_1_002.csv");
  ASSERT_GE(image.size(), 2u);
  EXPECT_EQ(image[0], Row{"..\\contents\\CT2.png"});
  ASSERT_EQ(image[1].size(), 19u);
  EXPECT_EQ(image[1][4], "0xffffff");
  EXPECT_EQ(image[1][5], "3");
  EXPECT_EQ(image[1][11], "13") << "fade is effect code 13";
  EXPECT_EQ(image[1][12], "500");
  Rows telop = ReadCsv(program + "/information/contents_1_003.csv");
  ASSERT_GE(telop.size(), 2u);
  EXPECT_EQ(telop[0], Row{"..\\contents\\CT3.tlp"});
  Rows blank = ReadCsv(program + "/information/contents_1_004.csv");
  ASSERT_GE(blank.size(), 2u);
  // Kind 7 would be refused by the check: a blank comes back as kind 8 with
  // its colour in column 4.
  EXPECT_EQ(blank[1][0], "8");
  EXPECT_EQ(blank[1][4], "0x123456");
  EXPECT_EQ(blank[1][1], "00:00:05");
  EXPECT_EQ(FilesBelow(back_ + "/contents"),
            (std::vector<std::string>{"CT1.mp4", "CT2.png", "CT3.tlp"}));
  EXPECT_EQ(ReadFile(back_ + "/contents/CT3.tlp"), "telop");
}

TEST_F(HandPackage, OneTimeTableNamedThreeTimesIsWrittenOnce) {
  OneProgram("<pl i=\"PL1\"/>");
  Doc("QvS.xml",
      "<qv ver=\"1.0\"><sl n=\"S\"><s dt=\"2035/01/01\" rt=\"TM1\"/><s dt=\"2035/01/02\" "
      "rt=\"TM1\"/><s dt=\"2035/01/03\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  Pack();
  ASSERT_EQ(Back().status, 0);
  const std::string s = StampOf(back_);
  Rows schedule = ReadCsv(back_ + "/Schedule_" + s + "_001.csv");
  ASSERT_EQ(schedule.size(), 5u);
  for (size_t i = 2; i < 5; ++i) EXPECT_EQ(schedule[i][1], "TimeTable_" + s + "_001.csv");
  EXPECT_EQ(schedule[4][2], "true");
  EXPECT_TRUE(Exists(back_ + "/TimeTable_" + s + "_001.csv"));
  EXPECT_FALSE(Exists(back_ + "/TimeTable_" + s + "_002.csv"));
}

TEST_F(HandPackage, SevenPanesKeepTheFirstFive) {
  Doc("QvS.xml", "<qv><sl><s dt=\"2035/01/01\" rt=\"TM1\"/></sl></qv>");
  Doc("QvT/TM1.xml", "<tt><tl><tb><pg rp=\"PG1\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>");
  std::string panes;
  for (int i = 1; i <= 7; ++i) {
    panes += "<pa><re x=\"0\" y=\"0\" w=\"10\" h=\"10\"/><plf rl=\"PL" + std::to_string(i) +
             "\"/></pa>";
  }
  Doc("QvP/PG1/PG1.xml", "<pgp><pgi pgt=\"00:01:00\"/><pai>" + panes + "</pai></pgp>");
  for (int i = 1; i <= 5; ++i) {
    Doc("QvP/PG1/PL" + std::to_string(i) + ".xml",
        "<pl><m rc=\"CT" + std::to_string(i) + "\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>");
  }
  // PL6 and PL7 do not exist: they are never read.
  Pack();
  RunResult r = Back();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string program = back_ + "/Program_" + StampOf(back_) + "_001";
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(ReadCsv(program + "/playlist_" + std::to_string(i) + ".csv").size(), 1u) << i;
  }
  for (int i : {0, 6, 7}) {
    EXPECT_EQ(ReadFile(program + "/playlist_" + std::to_string(i) + ".csv"), "") << i;
  }
  EXPECT_FALSE(Exists(program + "/playlist_8.csv"));
  Rows rows = ReadCsv(program + "/program.csv");
  ASSERT_EQ(rows.size(), 11u);
  EXPECT_EQ(rows[8][0], "6");
  EXPECT_EQ(rows[8][9], "true") << "the sixth pane has a line, but no playlist";
}

TEST_F(HandPackage, CommandRowsOnlyAndProgramWithoutPanes) {
  Doc("QvS.xml", "<qv><sl><s dt=\"2035/01/01\" rt=\"TM1\"/><s dt=\"2035/01/02\" rt=\"TM2\"/></sl></qv>");
  Doc("QvT/TM1.xml", "<tt><tl><tb><co tp=\"1\" ti=\"\" st=\"05:00:00\"/></tb></tl></tt>");
  Doc("QvT/TM2.xml", "<tt><tl><tb><pg rp=\"PG7\" st=\"01:00:00\" et=\"02:00:00\"/></tb></tl></tt>");
  Doc("QvP/PG7/PG7.xml", "<pgp><pgi pgt=\"00:01:00\"/><pai/></pgp>");
  Pack();
  ASSERT_EQ(Back().status, 0);
  const std::string s = StampOf(back_);
  std::vector<std::string> dirs;
  for (const auto& e : ListDir(back_)) {
    if (e.back() == '/') dirs.push_back(e);
  }
  EXPECT_EQ(dirs, (std::vector<std::string>{"Program_" + s + "_001/", "contents/"}));
  const std::string program = back_ + "/Program_" + s + "_001";
  for (int i = 0; i <= 7; ++i) {
    EXPECT_EQ(ReadFile(program + "/playlist_" + std::to_string(i) + ".csv"), "") << i;
  }
  EXPECT_TRUE(FilesBelow(back_ + "/contents").empty());
}

TEST_F(HandPackage, MissingContentFileIsNoFailure) {
  OneProgram("<pl><m rc=\"CT9\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>");
  Pack();
  RunResult r = Back();
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string program = back_ + "/Program_" + StampOf(back_) + "_001";
  EXPECT_EQ(ReadCsv(program + "/information/contents_1_001.csv")[0],
            Row{"..\\contents\\CT9.mp4"});
  EXPECT_FALSE(Exists(back_ + "/contents/CT9.mp4"));
}

TEST_F(HandPackage, MissingOrBrokenDocumentIs300AndDeliversNothing) {
  struct Case {
    const char* what;
    std::function<void(HandPackage&)> edit;
  } cases[] = {
      {"missing time table", [](HandPackage& h) { RemoveAll(h.src_ + "/QvFormat/QvT/TM1.xml"); }},
      {"missing program", [](HandPackage& h) { RemoveAll(h.src_ + "/QvFormat/QvP/PG1/PG1.xml"); }},
      {"missing playlist", [](HandPackage& h) { RemoveAll(h.src_ + "/QvFormat/QvP/PG1/PL1.xml"); }},
      {"broken time table",
       [](HandPackage& h) { h.Doc("QvT/TM1.xml", "<tt><tl><tb></tl></tt>"); }},
  };
  for (const auto& c : cases) {
    RemoveAll(src_);
    RemoveAll(zip_);
    RemoveAll(back_);
    RemoveAll(temp_);
    OneProgram("<pl><m rc=\"CT1\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>");
    c.edit(*this);
    Pack();
    RunResult r = Back();
    EXPECT_EQ(r.status, Status(-300)) << c.what;
    EXPECT_TRUE(ListDir(back_).empty()) << c.what << ": nothing is delivered";
    EXPECT_TRUE(IsDir(temp_ + "/unzip")) << c.what << ": the opened package stays";
    EXPECT_EQ(ListDir(temp_ + "/conv").size(), 1u) << c.what << ": the work folder stays";
  }
}

TEST_F(HandPackage, DestinationThatDoesNotExistGetsNothing) {
  OneProgram("<pl/>");
  Pack();
  std::string missing = scratch_.Sub("not-made");
  RunResult r = Unpackage(zip_, missing);
  EXPECT_EQ(r.status, 0);
  EXPECT_FALSE(Exists(missing)) << "nothing makes the destination";
  EXPECT_FALSE(Exists(temp_ + "/unzip"));
}

}  // namespace
}  // namespace qvtest
