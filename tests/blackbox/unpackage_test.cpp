// Opening plain archives with -unpackage: the destination is emptied and receives the archive's
// entries; what is no archive leaves no destination.
#include <string>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class Unpackage : public BlackBoxTest {
 protected:
  int Open(const std::string& zip) { return BlackBoxTest::Unpackage(zip, dest_).status; }
  std::string PlainZip(const std::string& name, const std::string& inner) {
    WriteFile(scratch_.Sub("src_" + name + "/" + inner), name);
    ZipFolderContents(scratch_.Sub("src_" + name), scratch_.Sub(name));
    return scratch_.Sub(name);
  }

  std::string dest_ = scratch_.Sub("dest");
};

TEST_F(Unpackage, PlainArchiveReplacesTheDestinationContent) {
  WriteFile(dest_ + "/old/stale.txt", "stale");
  EXPECT_EQ(Open(PlainZip("a.zip", "dir/file.txt")), 0);
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"dir/"});  // old/ is gone
  EXPECT_EQ(ReadFile(dest_ + "/dir/file.txt"), "a.zip");

  // A folder QvFormat without QvS.xml is a plain archive too.
  EXPECT_EQ(Open(PlainZip("b.zip", "QvFormat/QvT/TM1.xml")), 0);
  EXPECT_EQ(ReadFile(dest_ + "/QvFormat/QvT/TM1.xml"), "b.zip");
  EXPECT_FALSE(Exists(dest_ + "/dir"));
}

TEST_F(Unpackage, NoArchiveLeavesNoDestination) {
  WriteFile(scratch_.Sub("not.zip"), "this is no archive");
  WriteFile(dest_ + "/old.txt", "old");
  EXPECT_EQ(Open(scratch_.Sub("not.zip")), 0);
  EXPECT_FALSE(Exists(dest_));
  EXPECT_EQ(Open(scratch_.Sub("missing.zip")), 0);
  EXPECT_FALSE(Exists(dest_));
}

}  // namespace
}  // namespace qvtest
