// Packages made to hurt: local files named through entities, entity bombs, unbounded nesting and
// attributes, identifiers that are paths, climbing zip entries, links.  Each ends with its code,
// fast, writing nowhere else.
#include <chrono>
#include <tuple>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const char kSecret[] = "SECRET-7f3a9c-DO-NOT-COPY";
constexpr std::uint32_t kLink = 0120777;  // the Unix mode of a symbolic link

class HostilePackage : public HandPackageTest {
 protected:
  // The scenario's files as stored entries, but `skip`.
  std::vector<ZipEntry> Entries(const std::string& skip = "") {
    std::vector<ZipEntry> out;
    for (const std::string& file : FilesBelow(src_))
      if (file != skip) out.push_back({file, ReadFile(src_ + "/" + file)});
    return out;
  }
  // Opens the scenario zipped by the archive tool, or else `stored`: a refusal leaves nothing; no
  // secret comes in.
  void ExpectOpen(int code, const std::string& what = "",
                  const std::vector<ZipEntry>& stored = {}) {
    RunResult r = stored.empty() ? PackAndBack()
                                 : (WriteFile(zip_, StoredZip(stored)), RemoveAll(back_),
                                    UnpackageTo(zip_, back_));
    EXPECT_EQ(r.status, Status(code)) << what << r.output;
    EXPECT_TRUE(code == 0 || ListDir(back_).empty()) << what;
    EXPECT_FALSE(Leaked(back_)) << what;
  }
  bool Leaked(const std::string& folder) {
    for (const std::string& file : Contents(folder))
      if (file.find(kSecret) != std::string::npos) return true;
    return false;
  }
  std::vector<std::string> BackContents() { return FilesBelow(back_ + "/contents"); }
};

// An external entity reads as empty in text and is not well formed in an attribute.  A named DTD
// or parameter entity is never read: a document using nothing of it converts; an entity only the
// DTD defines reads as nothing.
TEST_F(HostilePackage, LocalFilesNamedThroughEntitiesAreNeverRead) {
  const std::string file = scratch_.Sub("secret.txt"), dtd = scratch_.Sub("secret.dtd");
  WriteFile(file, kSecret);
  WriteFile(dtd, std::string("<!ENTITY leak \"") + kSecret + "\">");
  const std::string entity = "<!DOCTYPE qv [<!ENTITY leak SYSTEM \"file://" + file + "\">]>";
  const std::tuple<std::string, std::string, int> cases[] = {
      {"QvS.xml", entity + ScheduleXml("S", "&leak;"), 0},
      {"QvS.xml", entity + ScheduleXml("&leak;"), -300},
      {"QvT/TM1.xml", "<!DOCTYPE tt SYSTEM \"file://" + dtd + "\">" + TableXml(), 0},
      {"QvS.xml", "<!DOCTYPE qv SYSTEM \"file://" + dtd + "\">" + ScheduleXml("S", "&leak;"), 0},
      {"QvS.xml",
       "<!DOCTYPE qv [<!ENTITY % p SYSTEM \"" + dtd + "\"> %p;]>" + ScheduleXml("S", "&leak;"), 0},
  };
  for (const auto& [doc, body, code] : cases) {
    Scenario();
    Write(doc, body);
    ExpectOpen(code, body);
    EXPECT_FALSE(Leaked(temp_)) << body;
  }
}

TEST_F(HostilePackage, EntityBombIsRefusedQuickly) {
  std::string dtd = "<!DOCTYPE qv [<!ENTITY l0 \"lollollollollollollollollollol\">";
  for (int i = 1; i <= 12; ++i) {
    dtd += "<!ENTITY l" + std::to_string(i) + " \"";
    for (int k = 0; k < 10; ++k) dtd += "&l" + std::to_string(i - 1) + ";";
    dtd += "\">";
  }
  for (const std::string& schedule : {ScheduleXml("&l12;"), ScheduleXml("S", "&l12;")}) {
    Scenario();
    Write("QvS.xml", dtd + "]>" + schedule);
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
  Scenario(MovieXml("CT1", " zz=\"" + std::string(100000, 'z') + "\""));
  Write("QvS.xml", ScheduleXml(std::string(16 << 20, 'n')));
  ExpectOpen(0, "huge");
  EXPECT_EQ(BackContents(), std::vector<std::string>{"CT1.mp4"});
}

// Each path leads to a document that exists (`planted`): only refusing the name keeps it unread.
TEST_F(HostilePackage, IdentifiersThatArePathsAreMissingDocuments) {
  const std::string cases[][4] = {
      {"../TM1", "PG1", "PL1", "TM1.xml"},
      {"sub\\TM1", "PG1", "PL1", "QvT/sub/TM1.xml"},
      {"TM1", "PG1/PG1", "PL1", "QvP/PG1/PG1/PG1/PG1.xml"},
      {"TM1", "PG1", "../PG1/PL1", "QvP/PG1/PL1.xml"},
  };
  for (const auto& [table, program, playlist, planted] : cases) {
    RemoveAll(temp_);
    Scenario();
    Write("QvS.xml", ScheduleXml("S", "", table));
    Write("QvT/TM1.xml", TableXml(program));
    Write("QvP/PG1/PG1.xml", ProgramXml(playlist));
    if (!Exists(src_ + "/QvFormat/" + planted)) Write(planted, TableXml(program));
    ExpectOpen(-300, table + " " + program + " " + playlist);
  }
}

// Names climbing from the package's QvFormat/QvC and from the destination's contents; files wait
// at both ends.
TEST_F(HostilePackage, ContentWhoseNameIsAPathIsLeftOut) {
  WriteFile(temp_ + "/outside.mp4", kSecret);
  WriteFile(temp_ + "/unzip/outside.mp4", kSecret);
  Scenario(MovieXml("../../outside") + MovieXml("../../../outside") + MovieXml(temp_ + "/outside") +
           MovieXml("CT1"));
  ExpectOpen(0);
  EXPECT_EQ(BackContents(), std::vector<std::string>{"CT1.mp4"});
  for (const char* path : {"outside.mp4", "back/outside.mp4", "../outside.mp4"})
    EXPECT_FALSE(Exists(scratch_.Sub(path))) << path;
}

TEST_F(HostilePackage, ZipEntriesOfAPackageStayInTheTemporaryFolder) {
  Scenario();
  std::vector<ZipEntry> entries = Entries();
  for (const char* name :
       {"../escaped.txt", "../../escaped2.txt", "QvFormat/../../escaped3.txt", "/qv-escape.txt"})
    entries.push_back({name, "x"});
  ExpectOpen(0, "", entries);
  EXPECT_EQ(BackContents(), std::vector<std::string>{"CT1.mp4"});
  for (const std::string& file : FilesBelow(scratch_.path()))
    EXPECT_EQ(file.find("escape"), std::string::npos) << file;
  EXPECT_FALSE(Exists("/qv-escape.txt"));
}

// In a plain archive: a link to a folder outside, then a file through it.  In a package: a content
// file linking to a local file, a link to the folder outside and a file through it.
TEST_F(HostilePackage, SymbolicLinksInArchivesLeadNowhere) {
  const std::string outside = scratch_.Sub("outside"), secret = scratch_.Sub("secret.mp4");
  MakeDirs(outside);
  WriteFile(secret, kSecret);
  ExpectOpen(0, "plain", {{"d", outside, kLink}, {"d/plain.txt", "x"}});
  Scenario();
  std::vector<ZipEntry> entries = Entries("QvFormat/QvC/CT1.mp4");
  entries.insert(entries.end(), {{"QvFormat/QvC/CT1.mp4", secret, kLink},
                                 {"QvFormat/QvC/lnk", outside, kLink},
                                 {"QvFormat/QvC/lnk/package.txt", "x"}});
  ExpectOpen(0, "package", entries);
  EXPECT_EQ(ListDir(outside), std::vector<std::string>{}) << "written through a link";
}

}  // namespace
}  // namespace qvtest
