// Packages made to hurt: local files named through entities, entity bombs, unbounded nesting and
// attributes, identifiers that are paths, climbing zip entries.  Each ends with its code, fast,
// writing nowhere else.
#include <chrono>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const char kSecret[] = "SECRET-7f3a9c-DO-NOT-COPY";
constexpr std::uint32_t kLink = 0120777;  // the Unix mode of a symbolic link

using Entry = ZipEntry;

using Str = const std::string&;
// The documents of a scenario: one time table, one program, one playlist.
std::string Schedule(Str name, Str text = "", Str table = "TM1") {
  return "<qv ver=\"1.0\"><sl n=\"" + name + "\">" + text + "<s dt=\"2035/01/01\" rt=\"" + table +
         "\" df=\"t\"/></sl></qv>";
}
std::string Table(Str program = "PG1") {
  return "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"" + program +
         "\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>";
}
std::string Program(Str playlist = "PL1") {
  return "<pgp i=\"PG1\" n=\"P\"><pgi pgt=\"00:10:00\"><re x=\"0\" y=\"0\" w=\"1920\" "
         "h=\"1080\"/></pgi><pai><pa>"
         "<re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/><plf rl=\"" +
         playlist + "\"/></pa></pai></pgp>";
}
std::string Item(Str rc, Str attr = "") {
  return "<m rc=\"" + rc + "\" tp=\"mp4\"" + attr + "><pt t=\"00:00:01\"/></m>";
}

// A hand-written package opened with -unpackage into `back_`.
class HostilePackage : public BlackBoxTest {
 protected:
  std::string src_ = scratch_.Sub("src"), back_ = scratch_.Sub("back");

  void Doc(Str relative, Str body) {
    WriteFile(src_ + "/QvFormat/" + relative, "<?xml version=\"1.0\"?>" + body);
  }
  // A whole scenario afresh; each document may be replaced afterwards.
  void Scenario(Str items = Item("CT1")) {
    RemoveAll(src_);
    Doc("QvS.xml", Schedule("S"));
    Doc("QvT/TM1.xml", Table());
    Doc("QvP/PG1/PG1.xml", Program());
    Doc("QvP/PG1/PL1.xml", "<pl i=\"PL1\">" + items + "</pl>");
    WriteFile(src_ + "/QvFormat/QvC/CT1.mp4", "movie");
  }
  std::vector<Entry> Entries(Str skip = "") {
    std::vector<Entry> out;
    for (const std::string& file : FilesBelow(src_))
      if (file != skip) out.push_back({file, ReadFile(src_ + "/" + file)});
    return out;
  }
  // Opens the scenario zipped by the archive tool, or else `stored`: a refusal leaves nothing; no
  // secret comes in.
  void ExpectOpen(int code, Str what = "", const std::vector<Entry>& stored = {}) {
    RemoveAll(zip_), RemoveAll(back_), MakeDirs(back_);
    stored.empty() ? ZipFolderContents(src_, zip_) : WriteFile(zip_, StoredZip(stored));
    RunResult r = Unpackage(zip_, back_);
    EXPECT_EQ(r.status, Status(code)) << what << r.output;
    EXPECT_TRUE(code == 0 || ListDir(back_).empty()) << what;
    EXPECT_FALSE(Leaked(back_)) << what;
  }
  bool Leaked(Str folder) {
    for (const std::string& file : FilesBelow(folder))
      if (ReadFile(folder + "/" + file).find(kSecret) != std::string::npos) return true;
    return false;
  }
};

TEST_F(HostilePackage, LocalFilesNamedThroughEntitiesAreNeverRead) {
  const std::string file = scratch_.Sub("secret.txt"), dtd = scratch_.Sub("secret.dtd");
  WriteFile(file, kSecret);
  WriteFile(dtd, std::string("<!ENTITY leak \"") + kSecret + "\">");
  const std::string entity = "<!DOCTYPE qv [<!ENTITY leak SYSTEM \"file://" + file + "\">]>";
  // An external entity reads as empty in text and is not well formed in an attribute.  A named DTD
  // or parameter entity is never read: a document using nothing of it converts; an entity only the
  // DTD defines reads as nothing.
  const struct {
    std::string doc, body;
    int code;
  } cases[] = {
      {"QvS.xml", entity + Schedule("S", "&leak;"), 0},
      {"QvS.xml", entity + Schedule("&leak;"), -300},
      {"QvT/TM1.xml", "<!DOCTYPE tt SYSTEM \"file://" + dtd + "\">" + Table(), 0},
      {"QvS.xml", "<!DOCTYPE qv SYSTEM \"file://" + dtd + "\">" + Schedule("S", "&leak;"), 0},
      {"QvS.xml",
       "<!DOCTYPE qv [<!ENTITY % p SYSTEM \"" + dtd + "\"> %p;]>" + Schedule("S", "&leak;"), 0},
  };
  for (const auto& c : cases) {
    Scenario();
    Doc(c.doc, c.body);
    ExpectOpen(c.code, c.body);
    EXPECT_FALSE(Leaked(temp_)) << c.body;
  }
}

TEST_F(HostilePackage, EntityBombIsRefusedQuickly) {
  std::string dtd = "<!DOCTYPE qv [<!ENTITY l0 \"lollollollollollollollollollol\">";
  for (int i = 1; i <= 12; ++i) {
    dtd += "<!ENTITY l" + std::to_string(i) + " \"";
    for (int k = 0; k < 10; ++k) dtd += "&l" + std::to_string(i - 1) + ";";
    dtd += "\">";
  }
  for (const std::string& schedule : {Schedule("&l12;"), Schedule("S", "&l12;")}) {
    Scenario();
    Doc("QvS.xml", dtd + "]>" + schedule);
    const auto start = std::chrono::steady_clock::now();
    ExpectOpen(-300, schedule);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30)) << schedule;
  }
}

TEST_F(HostilePackage, DeepNestingIsRefusedAndHugeAttributesAreCarried) {
  // A hundred thousand nested elements: refused, neither the walk nor the release overflowing the
  // stack.
  std::string open, close;
  for (int i = 0; i < 100000; ++i) open += "<o>", close += "</o>";
  Scenario(open + close);
  ExpectOpen(-300, "deep");
  // A 16 MB name and a 100000-character attribute of no meaning: carried.
  Scenario(Item("CT1", " zz=\"" + std::string(100000, 'z') + "\""));
  Doc("QvS.xml", Schedule(std::string(16 << 20, 'n')));
  ExpectOpen(0, "huge");
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
}

TEST_F(HostilePackage, IdentifiersThatArePathsAreMissingDocuments) {
  // Each path leads to a document that exists (`planted`): only refusing the name keeps it unread.
  const struct {
    std::string table, program, playlist, planted;
  } cases[] = {
      {"../TM1", "PG1", "PL1", "TM1.xml"},
      {"sub\\TM1", "PG1", "PL1", "QvT/sub/TM1.xml"},
      {"TM1", "PG1/PG1", "PL1", "QvP/PG1/PG1/PG1/PG1.xml"},
      {"TM1", "PG1", "../PG1/PL1", "QvP/PG1/PL1.xml"},
  };
  for (const auto& c : cases) {
    RemoveAll(temp_);
    Scenario();
    Doc("QvS.xml", Schedule("S", "", c.table));
    Doc("QvT/TM1.xml", Table(c.program));
    Doc("QvP/PG1/PG1.xml", Program(c.playlist));
    if (!Exists(src_ + "/QvFormat/" + c.planted)) Doc(c.planted, Table(c.program));
    ExpectOpen(-300, c.table + " " + c.program + " " + c.playlist);
  }
}

TEST_F(HostilePackage, ContentWhoseNameIsAPathIsLeftOut) {
  // Names climbing from the package's QvFormat/QvC and from the destination's contents; files wait
  // at both ends.
  WriteFile(temp_ + "/outside.mp4", kSecret);
  WriteFile(temp_ + "/unzip/outside.mp4", kSecret);
  Scenario(Item("../../outside") + Item("../../../outside") + Item(temp_ + "/outside") +
           Item("CT1"));
  ExpectOpen(0);
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
  for (const char* path : {"outside.mp4", "back/outside.mp4", "../outside.mp4"})
    EXPECT_FALSE(Exists(scratch_.Sub(path))) << path;
}

TEST_F(HostilePackage, ZipEntriesOfAPackageStayInTheTemporaryFolder) {
  Scenario();
  std::vector<Entry> entries = Entries();
  for (const char* name :
       {"../escaped.txt", "../../escaped2.txt", "QvFormat/../../escaped3.txt", "/qv-escape.txt"})
    entries.push_back({name, "x"});
  ExpectOpen(0, "", entries);
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
  for (const std::string& file : FilesBelow(scratch_.path()))
    EXPECT_EQ(file.find("escape"), std::string::npos) << file;
  EXPECT_FALSE(Exists("/qv-escape.txt"));
}

TEST_F(HostilePackage, SymbolicLinksInArchivesLeadNowhere) {
  const std::string outside = scratch_.Sub("outside"), secret = scratch_.Sub("secret.mp4");
  MakeDirs(outside);
  WriteFile(secret, kSecret);
  // A plain archive: a link to a folder outside, then a file through it.
  ExpectOpen(0, "plain", {{"d", outside, kLink}, {"d/plain.txt", "x"}});
  // A package: a content file linking to a local file, a link to the folder outside and a file
  // through it.
  Scenario();
  std::vector<Entry> entries = Entries("QvFormat/QvC/CT1.mp4");
  entries.insert(entries.end(), {{"QvFormat/QvC/CT1.mp4", secret, kLink},
                                 {"QvFormat/QvC/lnk", outside, kLink},
                                 {"QvFormat/QvC/lnk/package.txt", "x"}});
  ExpectOpen(0, "package", entries);
  EXPECT_EQ(ListDir(outside), std::vector<std::string>{}) << "written through a link";
}

}  // namespace
}  // namespace qvtest
