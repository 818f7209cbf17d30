// Zips as Windows tools write them, opened with -unpackage: names in code page 932 without the
// UTF-8 flag (Explorer, Lhaplus), "\" between folders (PowerShell), a package in any case; each
// name comes out as 7-Zip on Japanese Windows makes it, hostile names stay inside, and a later
// -unpackage empties the folder whatever names it holds.
#include <sys/stat.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// How a tool writes a path with "/" between folders (UTF-8) into a zip.
using Style = std::function<ZipEntry(const std::string& path, const std::string& data)>;

std::string Backslashed(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}
const Style kExplorer = [](const std::string& path, const std::string& data) {
  return ZipEntry{Cp932(path), data};
};
const Style kPowerShell = [](const std::string& path, const std::string& data) {
  return ZipEntry{Backslashed(path), data, 0, true};
};
const Style kCp932Backslashed = [](const std::string& path, const std::string& data) {
  return ZipEntry{Cp932(Backslashed(path)), data};
};

class ArchiveNames : public BlackBoxTest {
 protected:
  // The files below `folder` zipped in `style` into `zip`.
  void ZipAs(const Style& style, const std::string& folder, const std::string& zip) {
    std::vector<ZipEntry> entries;
    for (const std::string& file : FilesBelow(folder))
      entries.push_back(style(file, ReadFile(folder + "/" + file)));
    WriteFile(zip, StoredZip(entries));
  }

  std::string dest_ = scratch_.Sub("dest"), windows_zip_ = scratch_.Sub("windows.zip");
};

TEST_F(ArchiveNames, ProjectZippedOnWindowsOpensWholeAndConverts) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  const std::vector<std::string> members = ZipMembers(zip_);
  const std::pair<const char*, Style> styles[] = {
      {"Explorer", kExplorer}, {"PowerShell", kPowerShell}, {"932 and \\", kCp932Backslashed}};
  for (const auto& [what, style] : styles) {
    ZipAs(style, project_, windows_zip_);
    ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0) << what;
    EXPECT_EQ(Contents(dest_), Contents(project_)) << what;
    // Not a time table, program or content file is lost on the way.
    RemoveAll(zip_);
    ASSERT_EQ(RunQv({dest_, "-package" + zip_}, RunEnv(temp_)).status, 0) << what;
    EXPECT_EQ(ZipMembers(zip_), members) << what;
  }
}

TEST_F(ArchiveNames, PackageZippedByPowerShellOrInLowerCaseIsAPackage) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  const std::string back = scratch_.Sub("back");
  ASSERT_EQ(Unpackage(zip_, back).status, 0);
  Extracted();
  ZipAs(kPowerShell, scratch_.Sub("extracted"), windows_zip_);
  ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0);
  EXPECT_EQ(Unstamped(dest_), Unstamped(back));
  // Named in lower case, the package is never opened as a plain archive.
  WriteFile(windows_zip_, StoredZip({{"qvformat/qvs.xml", ReadFile(Extracted() + "/QvS.xml")}}));
  Unpackage(windows_zip_, dest_);
  EXPECT_FALSE(Exists(dest_ + "/qvformat"));
}

TEST_F(ArchiveNames, HostileNamesStayInside) {
  const std::string deep = scratch_.Sub("a/b/dest");
  WriteFile(scratch_.Sub("secret.txt"), "secret");
  WriteFile(windows_zip_, StoredZip({{"..\\..\\x1", "1"},
                                     {"C:\\x2", "2"},
                                     {"\\x3", "3"},
                                     {"../x4", "4"},
                                     {"/x5", "5"},
                                     {"\\\\srv\\share\\x6", "6"},
                                     {"in\\..\\..\\..\\x7", "7"},
                                     {"lnk", "/", 0120777},
                                     {"lnk\\x8", "8"},
                                     {"secret", "../../../secret.txt", 0120777},
                                     {"..\\..\\secret.txt", "9"}}));
  ASSERT_EQ(Unpackage(windows_zip_, deep).status, 0);
  // The tool writes a link that climbs as an empty file; the others are not kept.
  EXPECT_EQ(Contents(deep),
            (std::vector<std::string>{"in/x7=7", "lnk/x8=8", "secret=", "secret.txt=9",
                                      "srv/share/x6=6", "x1=1", "x2=2", "x3=3", "x4=4", "x5=5"}));
  EXPECT_EQ(ReadFile(scratch_.Sub("secret.txt")), "secret");
  for (const std::string& file : FilesBelow(scratch_.path()))
    EXPECT_TRUE(file.rfind("a/b/dest/", 0) == 0 || file == "windows.zip" || file == "secret.txt")
        << file;
}

TEST_F(ArchiveNames, LaterUnpackageEmptiesTheFolderWhateverItsNames) {
  // What raw extraction left: names that are not UTF-8, a read-only file in a locked folder,
  // and a name kept in its bytes since it is too long to be decoded.
  WriteFile(dest_ + "/" + Cp932("平日.csv"), "old");
  WriteFile(dest_ + "/\x95\\/\xff.txt", "old");
  ::chmod((dest_ + "/\x95\\/\xff.txt").c_str(), 0444);
  ::chmod((dest_ + "/\x95\\").c_str(), 0500);
  WriteFile(windows_zip_, StoredZip({{std::string(200, '\x8a'), "long"}}));
  ASSERT_EQ(Unpackage(windows_zip_, dest_ + "/inner").status, 0);
  EXPECT_EQ(ListDir(dest_ + "/inner"), std::vector<std::string>{std::string(200, '\x8a')});

  WriteFile(windows_zip_, StoredZip({{Cp932("新.csv"), "new"}}));
  ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0);
  EXPECT_EQ(Contents(dest_), std::vector<std::string>{"新.csv=new"});
}

}  // namespace
}  // namespace qvtest
