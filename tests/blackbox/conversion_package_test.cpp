// Whole runs of `qvConvApp <project> -package<zip>` on complete projects: the
// package's members, each document parsed back, content and telop bytes.
#include <iterator>
#include <sstream>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// The members of the clean project's package, sorted.
std::vector<std::string> CleanMembers() {
  std::istringstream in(
      "QvFormat QvFormat/QvC QvFormat/QvC/CT1.png QvFormat/QvC/CT3.mp4 QvFormat/QvC/CT4.jpg "
      "QvFormat/QvC/CT5.tlp QvFormat/QvP QvFormat/QvP/PG1 QvFormat/QvP/PG1/PG1.xml "
      "QvFormat/QvP/PG1/PL1.xml QvFormat/QvP/PG2 QvFormat/QvP/PG2/PG2.xml "
      "QvFormat/QvP/PG2/PL1.xml QvFormat/QvP/PG2/PL2.xml QvFormat/QvS.xml QvFormat/QvT "
      "QvFormat/QvT/TM1.xml QvFormat/QvT/TM2.xml");
  return {std::istream_iterator<std::string>(in), {}};
}

class ConversionPackage : public BlackBoxTest {};

TEST_F(ConversionPackage, SampleConvertsAndChecksCleanly) {
  RunResult r = Package(kSample);
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip_), CleanMembers());
  EXPECT_TRUE(WorkFolders(temp_).empty());

  // -check after -package wins: a check-only run, whose telop rule stops at
  // the project folder (its path has no backslash) and so finds the telop.
  RemoveAll(zip_);
  EXPECT_EQ(RunQv({kSample, "-package" + zip_, "-check" + report_}, RunEnv(temp_)).status, 0);
  EXPECT_FALSE(Exists(report_));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionPackage, CleanProjectDocumentsAndContents) {
  BuildCleanProject(p_);
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip_), CleanMembers())
      << "one copy of a content used twice, no file for the blank, .jpeg becomes .jpg";

  // Programs are numbered in the order the time tables are walked, playlists per program; one
  // content file, one identifier; only the panes in use; end code 11 is loop/stop; effect 258 an
  // upward wipe; a telop has no background colour; a blank of kind 8 none either, and a short play
  // time.
  std::string documents;
  for (const char* doc : {"QvT/TM1.xml", "QvP/PG2/PG2.xml", "QvP/PG2/PL1.xml", "QvP/PG2/PL2.xml",
                          "QvP/PG1/PL1.xml"}) {
    documents += std::string("== ") + doc + "\n" + Outline(Doc(doc));
  }
  EXPECT_EQ(documents,
            "== QvT/TM1.xml\n"
            "tt i=TM1\n"
            " tl n=平日の番組表\n"
            "  tb\n   pg et=12:00:00 rp=PG2 st=09:00:00\n"
            "  tb\n   pg et=18:00:00 rp=PG1 st=12:00:00\n"
            "  tb\n   co st=18:00:00 ti=HDMI1 tp=3\n"
            "== QvP/PG2/PG2.xml\n"
            "pgp i=PG2 n=ニュース\n"
            " pgi lk=f pgt=00:10:00\n"
            "  re h=1080 w=1920 x=0 y=0\n"
            "  bc c=#102030\n"
            " pai\n"
            "  pa\n   re h=900 w=1920 x=0 y=0\n   plf mt=f rl=PL1\n"
            "  pa\n   re h=180 w=1920 x=0 y=900\n   plf mt=f rl=PL2\n"
            "== QvP/PG2/PL1.xml\n"
            "pl i=PL1\n"
            " m a=0 rc=CT3 tp=mp4 vo=80\n  bc c=#000000\n  pt ce=l t=00:00:30 to=s\n"
            " i a=1 rc=CT1 tp=png\n  bc c=#ffffff\n  pt ce=l t=00:00:10 to=s\n"
            " i a=2 rc=CT4 tp=jpeg\n  bc c=#000000\n  pt ce=l t=00:00:10 to=s\n"
            "  ie d=u t=1000 tp=wp vbc=f\n"
            "== QvP/PG2/PL2.xml\n"
            "pl i=PL2\n"
            " t a=0 rc=CT5 tp=tlp\n  pt ce=l t=00:00:20 to=s\n"
            "== QvP/PG1/PL1.xml\n"
            "pl i=PL1\n"
            " i a=0 rc=CT1 tp=png\n  bc c=#000000\n  pt ce=l t=00:00:10 to=s\n"
            " n\n  pt t=00:00:03\n");
  EXPECT_EQ(Doc("QvT/TM2.xml").At("tl").At("tb").At("pg").Attr("rp"), "PG1");

  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT3.mp4"), kMovieBytes);
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT5.tlp"), CleanTelopUtf8())
      << "a code page 932 telop becomes UTF-8 without a mark, line ends kept";
}

TEST_F(ConversionPackage, Utf16TelopCapitalExtensionsAndAMissingContentFile) {
  p_.OneProgram("Program_1", {.panes = {Pane{1, 0, 0, 1920, 980}, Pane{5, 0, 980, 1920, 100}}});
  p_.Playlist("Program_1", 1,
              {ImageItem("Photo.JPEG"), MovieItem("Clip.MP4"), MovieItem("gone.mp4")});
  p_.Playlist("Program_1", 5, {TelopItem("NEWS.TLP")});
  p_.Content("Photo.JPEG", "jpeg bytes"), p_.Content("Clip.MP4", "mp4 bytes");
  // A font beyond the telop limit: only the exact extension "tlp" is measured, but any case of it
  // is recoded.
  const std::string text = TelopText(500, 0, {"Hello", "World"});
  const std::u16string wide = U16(text);
  p_.Content("NEWS.TLP",
             "\xff\xfe" + std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2));
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;

  EXPECT_EQ(FilesBelow(Extracted() + "/QvC"),
            (std::vector<std::string>{"CT1.jpg", "CT2.mp4", "CT4.tlp"}))
      << "extensions lowered; the missing CT3 is left out";
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT1.jpg"), "jpeg bytes");
  std::string expected = text;
  expected.erase(std::remove(expected.begin(), expected.end(), '\n'), expected.end());
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT4.tlp"), expected)
      << "a UTF-16 telop loses its line feeds, carriage returns stay";

  std::string items;
  for (const auto& c : Doc("QvP/PG1/PL1.xml").children) items += c.name + c.Attr("rc") + " ";
  EXPECT_EQ(items, "iCT1 mCT2 mCT3 ") << "the playlist still names the missing file";
  EXPECT_EQ(Doc("QvP/PG1/PL2.xml").At("t").Attr("rc"), "CT4");
}

}  // namespace
}  // namespace qvtest
