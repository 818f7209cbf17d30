// Whole runs of `qvConvApp <project> -package<zip>` on complete projects:
// programs, playlists and content files in the package, each document parsed
// back, content and telop bytes, and the failures below the time tables.
#include <algorithm>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

bool Contains(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

const std::vector<std::string> kCleanMembers = {
    "QvFormat",
    "QvFormat/QvC",
    "QvFormat/QvC/CT1.png",
    "QvFormat/QvC/CT3.mp4",
    "QvFormat/QvC/CT4.jpg",
    "QvFormat/QvC/CT5.tlp",
    "QvFormat/QvP",
    "QvFormat/QvP/PG1",
    "QvFormat/QvP/PG1/PG1.xml",
    "QvFormat/QvP/PG1/PL1.xml",
    "QvFormat/QvP/PG2",
    "QvFormat/QvP/PG2/PG2.xml",
    "QvFormat/QvP/PG2/PL1.xml",
    "QvFormat/QvP/PG2/PL2.xml",
    "QvFormat/QvS.xml",
    "QvFormat/QvT",
    "QvFormat/QvT/TM1.xml",
    "QvFormat/QvT/TM2.xml",
};

class ConversionPackage : public BlackBoxTest {};

TEST_F(ConversionPackage, SampleConvertsCleanly) {
  RunResult r = Package(std::string(QV_SOURCE_DIR) + "/examples/sample");
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output, "");
  EXPECT_EQ(ZipMembers(zip_), kCleanMembers);
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(ConversionPackage, SampleChecksWithoutFindings) {
  RunResult r = RunQv({std::string(QV_SOURCE_DIR) + "/examples/sample", "-package" + zip_,
                       "-check" + report_},
                      RunEnv(temp_));
  // -check after -package wins: a check-only run. Its telop lies where a
  // check-only run does not look, so the run may stop early, but never with
  // a finding.
  EXPECT_EQ(r.status, 0);
  EXPECT_FALSE(Exists(report_));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionPackage, CleanProjectMemberList) {
  BuildCleanProject(p_);
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip_), kCleanMembers)
      << "one copy of a content used twice, no file for the blank, .jpeg becomes .jpg";
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(ConversionPackage, TimeTableRowsNamePrograms) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  XmlNode tt = Doc("QvT/TM1.xml");
  EXPECT_EQ(tt.Attr("i"), "TM1");
  const XmlNode* tl = tt.First("tl");
  ASSERT_NE(tl, nullptr);
  EXPECT_EQ(tl->Attr("n"), "平日の番組表");
  auto rows = tl->All("tb");
  ASSERT_EQ(rows.size(), 3u);
  const XmlNode* pg = rows[0]->First("pg");
  ASSERT_NE(pg, nullptr);
  EXPECT_EQ(pg->Attr("rp"), "PG2") << "programs are numbered in the order the time tables are walked";
  EXPECT_EQ(pg->Attr("st"), "09:00:00");
  EXPECT_EQ(pg->Attr("et"), "12:00:00");
  EXPECT_FALSE(pg->Has("tp"));
  EXPECT_EQ(rows[1]->At("pg").Attr("rp"), "PG1");
  const XmlNode* co = rows[2]->First("co");
  ASSERT_NE(co, nullptr);
  EXPECT_EQ(co->Attr("tp"), "3");
  EXPECT_EQ(co->Attr("ti"), "HDMI1");
  EXPECT_EQ(co->Attr("st"), "18:00:00");

  XmlNode tm2 = Doc("QvT/TM2.xml");
  auto weekend = tm2.At("tl").All("tb");
  ASSERT_EQ(weekend.size(), 1u);
  EXPECT_EQ(weekend[0]->At("pg").Attr("rp"), "PG1");
}

TEST_F(ConversionPackage, ProgramDocument) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  XmlNode pgp = Doc("QvP/PG2/PG2.xml");
  EXPECT_EQ(pgp.name, "pgp");
  EXPECT_EQ(pgp.Attr("i"), "PG2");
  EXPECT_EQ(pgp.Attr("n"), "ニュース");
  const XmlNode* pgi = pgp.First("pgi");
  ASSERT_NE(pgi, nullptr);
  EXPECT_EQ(pgi->Attr("pgt"), "00:10:00");
  EXPECT_EQ(pgi->Attr("lk"), "f");
  ASSERT_NE(pgi->First("re"), nullptr);
  EXPECT_EQ(pgi->At("re").Attr("x"), "0");
  EXPECT_EQ(pgi->At("re").Attr("w"), "1920");
  EXPECT_EQ(pgi->At("re").Attr("h"), "1080");
  ASSERT_NE(pgi->First("bc"), nullptr);
  EXPECT_EQ(pgi->At("bc").Attr("c"), "#102030");
  EXPECT_EQ(pgi->First("plf"), nullptr) << "the program's own playlist reference is not written";

  const XmlNode* pai = pgp.First("pai");
  ASSERT_NE(pai, nullptr);
  auto panes = pai->All("pa");
  ASSERT_EQ(panes.size(), 2u) << "only the panes in use";
  const XmlNode* re = panes[1]->First("re");
  ASSERT_NE(re, nullptr);
  EXPECT_EQ(re->Attr("y"), "900");
  EXPECT_EQ(re->Attr("h"), "180");
  const XmlNode* plf0 = panes[0]->First("plf");
  const XmlNode* plf1 = panes[1]->First("plf");
  ASSERT_NE(plf0, nullptr);
  ASSERT_NE(plf1, nullptr);
  EXPECT_EQ(plf0->Attr("rl"), "PL1");
  EXPECT_EQ(plf1->Attr("rl"), "PL2");
  EXPECT_EQ(plf0->Attr("mt"), "f");
  EXPECT_FALSE(plf0->Has("tp")) << "the CSV project does not say a pane's type";
}

TEST_F(ConversionPackage, PlaylistDocuments) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  XmlNode frame = Doc("QvP/PG2/PL1.xml");
  EXPECT_EQ(frame.name, "pl");
  EXPECT_EQ(frame.Attr("i"), "PL1");
  ASSERT_EQ(frame.children.size(), 3u);

  const XmlNode& m = frame.children[0];
  EXPECT_EQ(m.name, "m");
  EXPECT_EQ(m.Attr("rc"), "CT3");
  EXPECT_EQ(m.Attr("tp"), "mp4");
  EXPECT_EQ(m.Attr("a"), "0");
  EXPECT_EQ(m.Attr("vo"), "80");
  ASSERT_NE(m.First("bc"), nullptr);
  EXPECT_EQ(m.At("bc").Attr("c"), "#000000");
  const XmlNode* pt = m.First("pt");
  ASSERT_NE(pt, nullptr);
  EXPECT_EQ(pt->Attr("t"), "00:00:30");
  EXPECT_EQ(pt->Attr("ce"), "l") << "end code 11 is loop";
  EXPECT_EQ(pt->Attr("to"), "s") << "and stop";

  const XmlNode& logo = frame.children[1];
  EXPECT_EQ(logo.name, "i");
  EXPECT_EQ(logo.Attr("rc"), "CT1");
  EXPECT_EQ(logo.Attr("tp"), "png");
  EXPECT_EQ(logo.Attr("a"), "1");
  EXPECT_EQ(logo.At("bc").Attr("c"), "#ffffff");
  EXPECT_EQ(logo.First("ie"), nullptr);

  const XmlNode& photo = frame.children[2];
  EXPECT_EQ(photo.name, "i");
  EXPECT_EQ(photo.Attr("rc"), "CT4");
  EXPECT_EQ(photo.Attr("tp"), "jpeg");
  EXPECT_EQ(photo.Attr("a"), "2");
  const XmlNode* ie = photo.First("ie");
  ASSERT_NE(ie, nullptr) << "effect code 258 is a wipe";
  EXPECT_EQ(ie->Attr("tp"), "wp");
  EXPECT_EQ(ie->Attr("d"), "u");
  EXPECT_EQ(ie->Attr("t"), "1000");

  XmlNode telops = Doc("QvP/PG2/PL2.xml");
  EXPECT_EQ(telops.Attr("i"), "PL2");
  ASSERT_EQ(telops.children.size(), 1u);
  const XmlNode& t = telops.children[0];
  EXPECT_EQ(t.name, "t");
  EXPECT_EQ(t.Attr("rc"), "CT5");
  EXPECT_EQ(t.Attr("tp"), "tlp");
  EXPECT_EQ(t.First("bc"), nullptr) << "a telop has no background colour";
  ASSERT_NE(t.First("pt"), nullptr);
  EXPECT_EQ(t.At("pt").Attr("t"), "00:00:20");

  // Every playlist numbers its own playlists from 1: PL1 of the other program.
  XmlNode ads = Doc("QvP/PG1/PL1.xml");
  EXPECT_EQ(ads.Attr("i"), "PL1");
  ASSERT_EQ(ads.children.size(), 2u);
  EXPECT_EQ(ads.children[0].name, "i");
  EXPECT_EQ(ads.children[0].Attr("rc"), "CT1") << "one content file, one identifier";
  const XmlNode& blank = ads.children[1];
  EXPECT_EQ(blank.name, "n");
  EXPECT_EQ(blank.First("bc"), nullptr) << "kind 8 is a blank without colour";
  ASSERT_NE(blank.First("pt"), nullptr);
  EXPECT_EQ(blank.At("pt").Attr("t"), "00:00:03");
  EXPECT_FALSE(blank.At("pt").Has("ce")) << "a blank has the short play time";
}

TEST_F(ConversionPackage, ContentBytesAndTelopRecoding) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  std::string qvc = Extracted() + "/QvC/";
  EXPECT_EQ(ReadFile(qvc + "CT3.mp4"), kMovieBytes);
  EXPECT_EQ(ReadFile(qvc + "CT1.png"), kLogoBytes);
  EXPECT_EQ(ReadFile(qvc + "CT4.jpg"), kPhotoBytes);
  EXPECT_EQ(ReadFile(qvc + "CT5.tlp"), CleanTelopUtf8())
      << "a code page 932 telop becomes UTF-8 without a mark, line ends kept";
}

// A project of one program whose frame playlist is the given items.
void OneProgram(ProjectBuilder& p, const std::vector<Item>& frame,
                const std::vector<Item>& telop = {}) {
  p.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
  p.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
  ProgramSpec spec;
  spec.panes = {Pane{1, 0, 0, 1920, 1080, "true"}};
  if (!telop.empty()) spec.panes.push_back(Pane{5, 0, 980, 1920, 100, "true"});
  p.Program("Program_1", spec);
  p.Playlist("Program_1", 1, frame);
  if (!telop.empty()) p.Playlist("Program_1", 5, telop);
}

TEST_F(ConversionPackage, Utf16TelopLosesItsLineFeeds) {
  std::string text = TelopText(40, 0, {"Hello", "World"});
  std::u16string wide = U16(text);
  std::string bytes = "\xff\xfe";
  bytes.append(reinterpret_cast<const char*>(wide.data()), wide.size() * 2);
  p_.Content("news.tlp", bytes);
  OneProgram(p_, {MovieItem("a.mp4")}, {TelopItem("news.tlp")});
  p_.Content("a.mp4", "m");
  ASSERT_EQ(Package().status, 0);
  std::string expected = text;
  expected.erase(std::remove(expected.begin(), expected.end(), '\n'), expected.end());
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT2.tlp"), expected)
      << "lines follow each other without their line feeds, carriage returns stay";
}

TEST_F(ConversionPackage, UpperCaseExtensionsAreLowered) {
  OneProgram(p_, {ImageItem("Photo.JPEG"), MovieItem("Clip.MP4")});
  p_.Content("Photo.JPEG", "jpeg bytes");
  p_.Content("Clip.MP4", "mp4 bytes");
  ASSERT_EQ(Package().status, 0);
  std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_TRUE(Contains(members, "QvFormat/QvC/CT1.jpg"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvC/CT2.mp4"));
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT1.jpg"), "jpeg bytes");
  XmlNode pl = Doc("QvP/PG1/PL1.xml");
  ASSERT_EQ(pl.children.size(), 2u);
  EXPECT_EQ(pl.children[0].name, "i");
  EXPECT_EQ(pl.children[1].name, "m");
}

TEST_F(ConversionPackage, MissingContentFileIsNoFailure) {
  BuildCleanProject(p_);
  RemoveAll(p_.Path("contents/photo.jpeg"));
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_FALSE(Contains(members, "QvFormat/QvC/CT4.jpg"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvC/CT3.mp4"));
  // The playlist still refers to it.
  EXPECT_EQ(Doc("QvP/PG2/PL1.xml").Nth(2).Attr("rc"), "CT4");
}

TEST_F(ConversionPackage, ItemsOfEachPlaylistGoToTheirOwnDocument) {
  // Two frame-like playlists in one program would be refused by the check, so
  // use a frame and a telop: the items are carried across the playlists.
  OneProgram(p_, {MovieItem("a.mp4"), ImageItem("b.png")}, {TelopItem("c.tlp")});
  p_.Content("a.mp4", "a");
  p_.Content("b.png", "b");
  p_.Content("c.tlp", Cp932(TelopText(30, 0, {"abc"})));
  ASSERT_EQ(Package().status, 0);
  XmlNode frame = Doc("QvP/PG1/PL1.xml");
  XmlNode telop = Doc("QvP/PG1/PL2.xml");
  ASSERT_EQ(frame.children.size(), 2u);
  ASSERT_EQ(telop.children.size(), 1u);
  EXPECT_EQ(frame.children[0].Attr("rc"), "CT1");
  EXPECT_EQ(frame.children[1].Attr("rc"), "CT2");
  EXPECT_EQ(telop.children[0].Attr("rc"), "CT3");
}

TEST_F(ConversionPackage, EmptyFirstPlaylistGetsAPlaceholder) {
  // An empty frame playlist before any non-empty one plays a blank in the
  // pane's colour.
  p_.Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
  p_.TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", "Program_1")});
  ProgramSpec spec;
  spec.background = "0x0a0b0c";
  spec.panes = {Pane{1, 0, 0, 1920, 1080, "true"}};
  p_.Program("Program_1", spec);
  p_.File("Program_1/playlist_1.csv", "");
  ASSERT_EQ(Package().status, 0);
  XmlNode pl = Doc("QvP/PG1/PL1.xml");
  ASSERT_EQ(pl.children.size(), 1u);
  EXPECT_EQ(pl.children[0].name, "n");
  ASSERT_NE(pl.children[0].First("bc"), nullptr);
  EXPECT_EQ(pl.children[0].At("bc").Attr("c"), "#0a0b0c");
  EXPECT_EQ(pl.children[0].At("pt").Attr("t"), "00:00:00");
}

TEST_F(ConversionPackage, MissingProgramFolderFails) {
  BuildCleanProject(p_);
  RemoveAll(p_.Path("Program_ads"));
  RunResult r = Package();
  EXPECT_EQ(r.status, Status(-101));
  EXPECT_FALSE(Exists(zip_));
  EXPECT_EQ(WorkFolders(temp_).size(), 1u);
}

TEST_F(ConversionPackage, MissingContentsFileFails) {
  BuildCleanProject(p_);
  RemoveAll(p_.Path("ニュース番組/information/contents_1_002.csv"));
  EXPECT_EQ(Package().status, Status(-101));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionPackage, MissingPlaylistOfAPaneInUseFails) {
  BuildCleanProject(p_);
  RemoveAll(p_.Path("ニュース番組/playlist_5.csv"));
  EXPECT_EQ(Package().status, Status(-101));
}

TEST_F(ConversionPackage, ContentPathWithoutExtensionIsUnreadable) {
  // No point at all: the check refuses it, then the reader cannot read it.
  Item odd = MovieItem("x");
  odd.path_cell = "noextension";
  OneProgram(p_, {odd});
  RunResult r = Package();
  EXPECT_EQ(r.status, Status(-102));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionPackage, UnopenableTelopStopsTheRunQuietly) {
  // The check of a telop that is not there fails inside the check; the run
  // stops where it is, with exit code 0, no package and no work folder.
  OneProgram(p_, {MovieItem("a.mp4")}, {TelopItem("missing.tlp")});
  p_.Content("a.mp4", "a");
  RunResult r = Package();
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.output, "");
  EXPECT_FALSE(Exists(zip_));
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(ConversionPackage, ProgramAndContentErrorsStopDelivery) {
  struct Case {
    const char* what;
    void (*edit)(ProjectBuilder&);
  } cases[] = {
      {"program moved off the corner",
       [](ProjectBuilder& p) {
         ProgramSpec s;
         s.x = 10;
         s.panes = {Pane{1, 10, 0, 1900, 1080, "true"}};
         p.Program("Program_ads", s);
       }},
      {"two frames",
       [](ProjectBuilder& p) {
         ProgramSpec s;
         s.panes = {Pane{1, 0, 0, 960, 1080, "true"}, Pane{2, 960, 0, 960, 1080, "true"}};
         s.background = "0x000000";
         p.Program("Program_ads", s);
         p.Playlist("Program_ads", 2, {ImageItem("ロゴ.png")});
       }},
      {"transparent background",
       [](ProjectBuilder& p) {
         Item i = ImageItem("ロゴ.png");
         i.line.color = "";
         p.Playlist("Program_ads", 1, {i});
       }},
      {"wmv movie",
       [](ProjectBuilder& p) {
         p.Playlist("Program_ads", 1, {MovieItem("clip.wmv")});
       }},
  };
  for (const auto& c : cases) {
    ScratchDir dir;
    ProjectBuilder p(dir.Sub("project"));
    BuildCleanProject(p);
    c.edit(p);
    RunResult r = RunQv({p.root(), "-package" + dir.Sub("out.zip")}, RunEnv(dir.Sub("tmp")));
    EXPECT_EQ(r.status, 2) << c.what;
    EXPECT_FALSE(Exists(dir.Sub("out.zip"))) << c.what;
  }
}

}  // namespace
}  // namespace qvtest
