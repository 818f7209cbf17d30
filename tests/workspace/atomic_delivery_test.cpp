#include "workspace/atomic_delivery.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
#include "workspace/archive_tool.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::ListDir;
using qvtest::ReadFile;
using qvtest::U16;
using qvtest::WriteFile;

// Every plain file below a folder, hidden ones included, relative and sorted.
std::vector<std::string> AllFiles(const std::string& folder) {
  std::vector<std::string> files;
  if (!qvtest::IsDir(folder)) return files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files.push_back(std::filesystem::relative(entry.path(), folder).string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

class AtomicDelivery : public testing::Test {
 protected:
  AtomicDelivery() { WriteFile(folder_ + "/QvS.xml", "<s/>"); }

  qvtest::ScratchDir scratch_;
  std::string folder_ = scratch_.Sub("work/QvFormat");
};

// The name of the package is the one 7-Zip gives a new archive on Windows, where it sees the name
// as typed: no extension gets ".zip", one "." at the end is dropped and means none; the file calls
// then drop what trailing dots remain.
TEST_F(AtomicDelivery, PackageGetsTheNameTheToolGivesIt) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"out", "out.zip"},   {"out.zip", "out.zip"}, {"out.ZIP", "out.ZIP"},
      {"x.", "x"},          {"x..", "x"},           {".hidden", ".hidden"},
      {"sp ", "sp .zip"},   {"q.zip.", "q.zip"},    {"new/inner.zip", "new/inner.zip"}};
  for (const auto& [name, stored] : names) {
    const std::string whole = scratch_.Sub("whole");
    PackFolderWhole(U16(folder_), U16(whole + "/" + name), false);
    EXPECT_EQ(AllFiles(whole), std::vector<std::string>{stored}) << name;
    qvtest::RemoveAll(whole);
  }
  EXPECT_EQ(ZipPathOf(u"d.v/out"), u"d.v/out.zip");
  EXPECT_EQ(ZipPathOf(u"a\\b"), u"a\\b.zip");
}

// 7-Zip adds to a read-only archive as to any other.
TEST_F(AtomicDelivery, AReadOnlyPackageIsAddedTo) {
  const std::string zip = scratch_.Sub("ro.zip");
  PackFolderWhole(U16(folder_), U16(zip), false);
  WriteFile(scratch_.Sub("work/QvFormat/QvT/TM1.xml"), "<t/>");
  ::chmod(zip.c_str(), 0444);
  PackFolderWhole(U16(folder_), U16(zip), false);
  const std::string out = scratch_.Sub("out");
  ASSERT_EQ(qvtest::Run({"7za", "x", "-y", "-o" + out, zip}).status, 0);
  EXPECT_EQ(AllFiles(out), (std::vector<std::string>{"QvFormat/QvS.xml", "QvFormat/QvT/TM1.xml"}));
}

// A tool that fails (no archive to add to): the destination keeps its bytes and no temporary is
// left.
TEST_F(AtomicDelivery, FailedPackLeavesTheDestinationAsItWas) {
  const std::string zip = scratch_.Sub("out/p.zip");
  WriteFile(zip, "not a zip at all");
  PackFolderWhole(U16(folder_), U16(zip), false);
  EXPECT_EQ(ReadFile(zip), "not a zip at all");
  EXPECT_EQ(ListDir(scratch_.Sub("out")), std::vector<std::string>{"p.zip"});
}

}  // namespace
