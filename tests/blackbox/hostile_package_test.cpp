// Packages made to hurt the program: documents that name local files through
// entities, entity bombs, nesting and attributes without bound, identifiers
// that are paths, and zip entries that climb out of their folder.  Each must
// end with its documented code, fast, and leave nothing outside the
// destination, the work folders and the temporary folder.
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const char kDecl[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
const char kSecret[] = "SECRET-7f3a9c-DO-NOT-COPY";

struct Entry {
  std::string name;
  std::string data;
  std::uint32_t mode = 0;  // Unix mode bits, e.g. 0120777 for a symbolic link
};

// A zip file of stored entries with any names, "../x" and "/x" included, and
// any Unix modes, which the archive tool would never write itself.
std::string StoredZip(const std::vector<Entry>& entries) {
  auto crc32 = [](const std::string& data) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (unsigned char byte : data) {
      crc ^= byte;
      for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
  };
  auto put16 = [](std::string& out, std::uint32_t v) {
    out.push_back(static_cast<char>(v & 0xFF));
    out.push_back(static_cast<char>((v >> 8) & 0xFF));
  };
  auto put32 = [&](std::string& out, std::uint32_t v) {
    put16(out, v & 0xFFFF);
    put16(out, v >> 16);
  };
  std::string body;
  std::string directory;
  for (const auto& [name, data, mode] : entries) {
    const std::uint32_t offset = static_cast<std::uint32_t>(body.size());
    const std::uint32_t crc = crc32(data);
    const auto size = static_cast<std::uint32_t>(data.size());
    const auto name_size = static_cast<std::uint32_t>(name.size());
    put32(body, 0x04034b50);
    put16(body, 20), put16(body, 0), put16(body, 0), put16(body, 0), put16(body, 0x21);
    put32(body, crc), put32(body, size), put32(body, size);
    put16(body, name_size), put16(body, 0);
    body += name + data;
    put32(directory, 0x02014b50);
    // Made by Unix (3) when a mode is given, so that the mode counts.
    put16(directory, mode != 0 ? 0x0314 : 20), put16(directory, 20), put16(directory, 0);
    put16(directory, 0), put16(directory, 0), put16(directory, 0x21);
    put32(directory, crc), put32(directory, size), put32(directory, size);
    put16(directory, name_size), put16(directory, 0), put16(directory, 0), put16(directory, 0);
    put16(directory, 0), put32(directory, mode << 16), put32(directory, offset);
    directory += name;
  }
  std::string zip = body + directory;
  put32(zip, 0x06054b50);
  put16(zip, 0), put16(zip, 0);
  put16(zip, static_cast<std::uint32_t>(entries.size()));
  put16(zip, static_cast<std::uint32_t>(entries.size()));
  put32(zip, static_cast<std::uint32_t>(directory.size()));
  put32(zip, static_cast<std::uint32_t>(body.size()));
  put16(zip, 0);
  return zip;
}

// A hand-written package opened with -unpackage into `back_`.
class HostilePackage : public BlackBoxTest {
 protected:
  std::string src_ = scratch_.Sub("src");
  std::string back_ = scratch_.Sub("back");

  void Doc(const std::string& relative, const std::string& body) {
    WriteFile(src_ + "/QvFormat/" + relative, std::string(kDecl) + body);
  }

  // A whole scenario of one time table, one program, one playlist; each
  // piece may be replaced afterwards.
  void Scenario(const std::string& playlist = "<pl i=\"PL1\"><m rc=\"CT1\" tp=\"mp4\"><pt t=\"00:00:01\"/></m></pl>") {
    Doc("QvS.xml", "<qv ver=\"1.0\"><sl n=\"S\" ad=\"f\"><s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
    Doc("QvT/TM1.xml", "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"PG1\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>");
    Doc("QvP/PG1/PG1.xml",
        "<pgp i=\"PG1\" n=\"P\"><pgi pgt=\"00:10:00\"><re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/>"
        "</pgi><pai><pa><re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/><plf rl=\"PL1\"/></pa></pai></pgp>");
    Doc("QvP/PG1/PL1.xml", playlist);
    WriteFile(src_ + "/QvFormat/QvC/CT1.mp4", "movie");
  }

  RunResult Open() {
    RemoveAll(zip_);
    ZipFolderContents(src_, zip_);
    MakeDirs(back_);
    return Unpackage(zip_, back_);
  }

  // Does any file below `folder` hold the secret?
  bool Leaked(const std::string& folder) {
    for (const std::string& file : FilesBelow(folder)) {
      if (ReadFile(folder + "/" + file).find(kSecret) != std::string::npos) return true;
    }
    return false;
  }
};

TEST_F(HostilePackage, ExternalEntityNamingALocalFileIsNeverRead) {
  const std::string secret = scratch_.Sub("secret.txt");
  WriteFile(secret, kSecret);
  Scenario();
  // An external entity may stand in text; it reads as empty.
  Doc("QvS.xml",
      "<!DOCTYPE qv [<!ENTITY leak SYSTEM \"file://" + secret + "\">]>"
      "<qv ver=\"1.0\"><sl n=\"S\" ad=\"f\">&leak;<s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  RunResult r = Open();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_FALSE(Leaked(back_));
  EXPECT_FALSE(Leaked(temp_));

  // In an attribute value it makes the document not well formed.
  Doc("QvS.xml",
      "<!DOCTYPE qv [<!ENTITY leak SYSTEM \"file://" + secret + "\">]>"
      "<qv ver=\"1.0\"><sl n=\"&leak;\"><s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  RemoveAll(back_);
  r = Open();
  EXPECT_EQ(r.status, Status(-300)) << r.output;
  EXPECT_TRUE(ListDir(back_).empty());
  EXPECT_FALSE(Leaked(temp_));
}

// Disabled: the XML library leaks the declaration of an external DTD subset
// (about 120 bytes a document) whenever it is handed an input source for it,
// which the sanitizer build reports as a failed run.
TEST_F(HostilePackage, ExternalDtdNamingALocalFileIsNeverRead) {
  const std::string dtd = scratch_.Sub("secret.dtd");
  WriteFile(dtd, std::string("<!ENTITY leak \"") + kSecret + "\">");
  Scenario();
  // The time table names a DTD and uses nothing of it: it converts.
  Doc("QvT/TM1.xml",
      "<!DOCTYPE tt SYSTEM \"file://" + dtd + "\">"
      "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"PG1\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>");
  RunResult r = Open();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_FALSE(Leaked(back_));
  EXPECT_FALSE(Leaked(temp_));

  // The schedule uses an entity that only the DTD defines.  With an external
  // subset an undeclared entity is a validity error, which is dropped: the
  // reference reads as nothing.
  Doc("QvS.xml",
      "<!DOCTYPE qv SYSTEM \"file://" + dtd + "\">"
      "<qv ver=\"1.0\"><sl n=\"S\">&leak;<s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  RemoveAll(back_);
  r = Open();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_FALSE(Leaked(back_));
  EXPECT_FALSE(Leaked(temp_));
}

TEST_F(HostilePackage, EntityBombIsRefusedQuickly) {
  std::string dtd = "<!DOCTYPE qv [<!ENTITY l0 \"lollollollollollollollollollol\">";
  for (int i = 1; i <= 12; ++i) {
    std::string refs;
    for (int k = 0; k < 10; ++k) refs += "&l" + std::to_string(i - 1) + ";";
    dtd += "<!ENTITY l" + std::to_string(i) + " \"" + refs + "\">";
  }
  dtd += "]>";
  for (const char* where : {"attribute", "text"}) {
    RemoveAll(src_);
    RemoveAll(back_);
    Scenario();
    const std::string body = std::string(where) == "attribute"
                                 ? "<qv ver=\"1.0\"><sl n=\"&l12;\"><s dt=\"2035/01/01\" rt=\"TM1\"/></sl></qv>"
                                 : "<qv ver=\"1.0\"><sl n=\"S\">&l12;<s dt=\"2035/01/01\" rt=\"TM1\"/></sl></qv>";
    Doc("QvS.xml", dtd + body);
    const auto start = std::chrono::steady_clock::now();
    RunResult r = Open();
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
    EXPECT_EQ(r.status, Status(-300)) << where << r.output;
    EXPECT_LT(seconds.count(), 30) << where;
    EXPECT_TRUE(ListDir(back_).empty()) << where;
  }
}

TEST_F(HostilePackage, DeepNestingIsRefusedAndHugeAttributesAreCarried) {
  // A hundred thousand nested elements in a well-formed playlist: refused,
  // neither a stack overflow in the walk nor in the release of the tree.
  std::string deep = "<pl i=\"PL1\">";
  for (int i = 0; i < 100000; ++i) deep += "<o>";
  for (int i = 0; i < 100000; ++i) deep += "</o>";
  Scenario(deep + "</pl>");
  RunResult r = Open();
  EXPECT_EQ(r.status, Status(-300)) << r.output;
  EXPECT_TRUE(ListDir(back_).empty());

  // A 16 MB name and an attribute of 100000 characters on an element of no
  // meaning: read and written as any other value.
  RemoveAll(src_);
  RemoveAll(back_);
  Scenario("<pl i=\"PL1\"><m rc=\"CT1\" tp=\"mp4\" zz=\"" + std::string(100000, 'z') +
           "\"><pt t=\"00:00:01\"/></m></pl>");
  Doc("QvS.xml", "<qv ver=\"1.0\"><sl n=\"" + std::string(16 << 20, 'n') +
                     "\"><s dt=\"2035/01/01\" rt=\"TM1\" df=\"t\"/></sl></qv>");
  r = Open();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
}

TEST_F(HostilePackage, IdentifiersThatArePathsAreMissingDocuments) {
  // Each reference names a document that does exist at the path it spells,
  // so only the refusal of the name keeps the run from reading it.
  struct Case {
    const char* what;
    std::string schedule_ref, program_ref, playlist_ref;
    std::string planted;  // the document the path leads to, below QvFormat
  } cases[] = {
      {"time table with ..", "../TM1", "PG1", "PL1", "TM1.xml"},
      {"time table with /", "sub/TM1", "PG1", "PL1", "QvT/sub/TM1.xml"},
      {"time table with \\", "sub\\TM1", "PG1", "PL1", "QvT/sub/TM1.xml"},
      {"program with /", "TM1", "PG1/PG1", "PL1", "QvP/PG1/PG1/PG1/PG1.xml"},
      {"program with ..", "TM1", "..", "PL1", "...xml"},
      {"playlist with ..", "TM1", "PG1", "../PG1/PL1", "QvP/PG1/PL1.xml"},
  };
  for (const Case& c : cases) {
    RemoveAll(src_);
    RemoveAll(back_);
    RemoveAll(temp_);
    Scenario();
    Doc("QvS.xml", "<qv ver=\"1.0\"><sl n=\"S\"><s dt=\"2035/01/01\" rt=\"" + c.schedule_ref +
                       "\" df=\"t\"/></sl></qv>");
    const std::string table = "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"" + c.program_ref +
                              "\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>";
    Doc("QvT/TM1.xml", table);
    Doc("QvP/PG1/PG1.xml",
        "<pgp i=\"PG1\"><pgi pgt=\"00:10:00\"/><pai><pa><re x=\"0\" y=\"0\" w=\"10\" h=\"10\"/>"
        "<plf rl=\"" + c.playlist_ref + "\"/></pa></pai></pgp>");
    if (!Exists(src_ + "/QvFormat/" + c.planted)) Doc(c.planted, table);
    RunResult r = Open();
    EXPECT_EQ(r.status, Status(-300)) << c.what << r.output;
    EXPECT_TRUE(ListDir(back_).empty()) << c.what;
  }
}

TEST_F(HostilePackage, ContentWhoseNameIsAPathIsLeftOut) {
  // The names climb from QvFormat/QvC of the opened package and from the
  // destination's contents folder; files wait at both ends.
  MakeDirs(temp_);
  WriteFile(temp_ + "/outside.mp4", kSecret);
  WriteFile(temp_ + "/unzip/outside.mp4", kSecret);
  Scenario(
      "<pl i=\"PL1\">"
      "<m rc=\"../../outside\" tp=\"mp4\"><pt t=\"00:00:01\"/></m>"
      "<m rc=\"../../../outside\" tp=\"mp4\"><pt t=\"00:00:01\"/></m>"
      "<m rc=\"" + temp_ + "/outside\" tp=\"mp4\"><pt t=\"00:00:01\"/></m>"
      "<m rc=\"CT1\" tp=\"mp4\"><pt t=\"00:00:01\"/></m>"
      "</pl>");
  RunResult r = Open();
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
  EXPECT_FALSE(Leaked(back_));
  EXPECT_FALSE(Exists(scratch_.Sub("outside.mp4"))) << "written beside the destination";
  EXPECT_FALSE(Exists(scratch_.Sub("back/outside.mp4")));
  EXPECT_FALSE(Exists(scratch_.Sub("../outside.mp4"))) << "written outside the scratch folder";
}

TEST_F(HostilePackage, ZipEntriesOfAPackageStayInTheTemporaryFolder) {
  Scenario();
  ZipFolderContents(src_, zip_);
  // The same documents as stored entries, with entries that climb out.
  std::vector<Entry> entries;
  for (const std::string& file : FilesBelow(src_)) entries.push_back({file, ReadFile(src_ + "/" + file)});
  entries.push_back({"../escaped.txt", "x"});
  entries.push_back({"../../escaped2.txt", "y"});
  entries.push_back({"QvFormat/../../escaped3.txt", "z"});
  entries.push_back({"/absolute-qv-escape.txt", "w"});
  WriteFile(zip_, StoredZip(entries));
  MakeDirs(back_);
  MakeDirs(temp_);
  RunResult r = Unpackage(zip_, back_);
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(FilesBelow(back_ + "/contents"), std::vector<std::string>{"CT1.mp4"});
  EXPECT_FALSE(Exists(scratch_.Sub("escaped.txt")));
  EXPECT_FALSE(Exists(scratch_.Sub("escaped2.txt")));
  EXPECT_FALSE(Exists(scratch_.Sub("escaped3.txt")));
  EXPECT_FALSE(Exists(temp_ + "/escaped.txt"));
  EXPECT_FALSE(Exists(temp_ + "/escaped3.txt"));
  EXPECT_FALSE(Exists("/absolute-qv-escape.txt"));
}

TEST_F(HostilePackage, SymbolicLinksInArchivesLeadNowhere) {
  const std::string outside = scratch_.Sub("outside");
  const std::string secret = scratch_.Sub("secret.mp4");
  MakeDirs(outside);
  WriteFile(secret, kSecret);
  MakeDirs(temp_);

  // A plain archive: a link to a folder outside, then a file through it.
  const std::string plain = scratch_.Sub("plain.zip");
  WriteFile(plain, StoredZip({{"d", outside, 0120777}, {"d/pwned.txt", "x"}}));
  const std::string dest = scratch_.Sub("dest");
  MakeDirs(dest);
  EXPECT_EQ(Unpackage(plain, dest).status, 0);
  EXPECT_TRUE(ListDir(outside).empty()) << "written through a link";

  // A package whose content file is a link to a local file, and whose
  // content folder holds a link to a folder outside with a file through it.
  Scenario();
  std::vector<Entry> entries;
  for (const std::string& file : FilesBelow(src_)) {
    if (file != "QvFormat/QvC/CT1.mp4") entries.push_back({file, ReadFile(src_ + "/" + file)});
  }
  entries.push_back({"QvFormat/QvC/CT1.mp4", secret, 0120777});
  entries.push_back({"QvFormat/QvC/lnk", outside, 0120777});
  entries.push_back({"QvFormat/QvC/lnk/pwned.txt", "x"});
  WriteFile(zip_, StoredZip(entries));
  MakeDirs(back_);
  RunResult r = Unpackage(zip_, back_);
  EXPECT_EQ(r.status, 0) << r.output;
  EXPECT_TRUE(ListDir(outside).empty()) << "written through a link";
  EXPECT_FALSE(Leaked(back_)) << "a local file came in through a link";
}

}  // namespace
}  // namespace qvtest
