// Packages delivered whole through a temporary beside the destination: the name the archive tool
// gives a new archive, and a failed pack that leaves the destination as it was.
#include "workspace/atomic_delivery.h"

#include "tests/support/test_support.h"
#include "workspace/archive_tool.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::U16;

class AtomicDelivery : public testing::Test {
 protected:
  AtomicDelivery() { qvtest::WriteFile(folder_ + "/QvS.xml", "<s/>"); }

  qvtest::ScratchDir scratch_;
  std::string folder_ = scratch_.Sub("work/QvFormat");
};

// The tool packs straight into one folder and through the temporary into another: both folders
// must end up with the same names, hidden ones included.
TEST_F(AtomicDelivery, PackageGetsTheNameTheToolGivesIt) {
  for (const std::string name : {"out", "out.zip", "out.ZIP", "x.", "x..", ".hidden", "sp ",
                                 "q.zip.", "a\\b", "new/inner.zip"}) {
    const std::string direct = scratch_.Sub("direct"), whole = scratch_.Sub("whole");
    PackFolder(U16(folder_), U16(direct + "/" + name), false);
    PackFolderWhole(U16(folder_), U16(whole + "/" + name), false);
    EXPECT_EQ(qvtest::FilesBelow(whole), qvtest::FilesBelow(direct)) << name;
    EXPECT_FALSE(qvtest::FilesBelow(whole).empty()) << name;
    qvtest::RemoveAll(direct), qvtest::RemoveAll(whole);
  }
  EXPECT_EQ(ZipPathOf(u"d.v/out"), u"d.v/out.zip");
  EXPECT_EQ(ZipPathOf(u"out.tar"), u"out.tar");
}

// A tool that fails (no archive to add to): the destination keeps its bytes, no temporary is left.
TEST_F(AtomicDelivery, FailedPackLeavesTheDestinationAsItWas) {
  const std::string zip = scratch_.Sub("out/p.zip");
  qvtest::WriteFile(zip, "not a zip at all");
  PackFolderWhole(U16(folder_), U16(zip), false);
  EXPECT_EQ(qvtest::ReadFile(zip), "not a zip at all");
  EXPECT_EQ(qvtest::ListDir(scratch_.Sub("out")), std::vector<std::string>{"p.zip"});
}

}  // namespace
