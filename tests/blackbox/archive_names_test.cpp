// Zips as Windows tools write them, opened with -unpackage: names in code page 932 without the
// UTF-8 flag (Explorer, Lhaplus), "\" between folders (PowerShell), a package in any case; each
// name comes out as 7-Zip on Japanese Windows makes it, hostile names stay inside, and a later
// -unpackage empties the folder whatever names it holds.
#include <sys/stat.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// How a tool writes a path with "/" between folders (UTF-8) into a zip: in code page 932, with
// "\" (and the UTF-8 flag), or both.
enum Style { kExplorer = 1, kPowerShell = 2, kBoth = 3 };

class ArchiveNames : public BlackBoxTest {
 protected:
  // The files below `folder` zipped in `style` into windows_zip_.
  void ZipAs(Style style, const std::string& folder) {
    std::vector<ZipEntry> entries;
    for (const std::string& file : FilesBelow(folder)) {
      const std::string name = style & kPowerShell ? Replaced(file, "/", "\\") : file;
      entries.push_back({style & kExplorer ? Cp932(name) : name, ReadFile(folder + "/" + file), 0,
                         style == kPowerShell});
    }
    WriteFile(windows_zip_, StoredZip(entries));
  }

  std::string dest_ = scratch_.Sub("dest"), windows_zip_ = scratch_.Sub("windows.zip");
};

// Not a time table, program or content file is lost on the way.
TEST_F(ArchiveNames, ProjectZippedOnWindowsOpensWholeAndConverts) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  const std::vector<std::string> members = ZipMembers(zip_);
  for (const Style style : {kExplorer, kPowerShell, kBoth}) {
    ZipAs(style, project_);
    ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0) << style;
    EXPECT_EQ(Contents(dest_), Contents(project_)) << style;
    RemoveAll(zip_);
    ASSERT_EQ(RunQv({dest_, "-package" + zip_}, RunEnv(temp_)).status, 0) << style;
    EXPECT_EQ(ZipMembers(zip_), members) << style;
  }
}

// The tool writes a link that climbs as an empty file; the other links are not kept.
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
  EXPECT_EQ(Contents(deep),
            (std::vector<std::string>{"in/x7=7", "lnk/x8=8", "secret=", "secret.txt=9",
                                      "srv/share/x6=6", "x1=1", "x2=2", "x3=3", "x4=4", "x5=5"}));
  EXPECT_EQ(ReadFile(scratch_.Sub("secret.txt")), "secret");
  for (const std::string& file : FilesBelow(scratch_.path()))
    EXPECT_TRUE(file.starts_with("a/b/dest/") || file == "windows.zip" || file == "secret.txt")
        << file;
}

// What raw extraction left: names that are not UTF-8, a read-only file in a locked folder, and a
// name kept in its bytes since it is too long to be decoded.
TEST_F(ArchiveNames, LaterUnpackageEmptiesTheFolderWhateverItsNames) {
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
