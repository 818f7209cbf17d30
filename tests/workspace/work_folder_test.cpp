// The work folder of a run: below the temporary folder in QvConv, or directly below a given root
// at any depth, named by the time and a new UUID.
#include "workspace/work_folder.h"

#include "tests/support/test_support.h"

namespace {

using quorvane::qvconv::converter::MakeWorkFolder;
using qvtest::U16, qvtest::U8;

TEST(WorkFolder, BelowTempOrDirectlyBelowTheRootWithTimeAndUuidName) {
  qvtest::ScratchDir scratch;
  qvtest::EnvOverride temp("TMPDIR", scratch.path());
  const std::string first = U8(MakeWorkFolder(u"", u"QvConv"));
  const std::string parent = scratch.path() + "/QvConv/";
  ASSERT_EQ(first.substr(0, parent.size()), parent);
  // "YYYYMMDD-hhmmss" and a lower-case UUID, nothing between them.
  const std::string name = first.substr(parent.size());
  ASSERT_EQ(name.size(), 15u + 36u) << name;
  EXPECT_EQ(name.find_first_not_of("0123456789"), 8u);
  EXPECT_EQ(name.substr(15).find_first_not_of("0123456789abcdef-"), std::string::npos);
  EXPECT_EQ(name.substr(15 + 8, 1) + name.substr(15 + 13, 1) + name.substr(15 + 14, 1), "--4");
  EXPECT_TRUE(qvtest::IsDir(first) && qvtest::ListDir(first).empty());
  EXPECT_NE(first, U8(MakeWorkFolder(u"", u"QvConv")));

  // With a root, at any depth (far past 260 characters): no QvConv folder between.
  std::string root = scratch.path();
  for (char c = 'a'; c < 'g'; ++c) root += "/" + std::string(60, c);
  qvtest::MakeDirs(root);
  const std::string folder = U8(MakeWorkFolder(U16(root), u"QvConv"));
  EXPECT_EQ(folder.substr(0, root.size() + 1), root + "/");
  EXPECT_EQ(folder.size(), root.size() + 1 + 51);
  EXPECT_TRUE(qvtest::IsDir(folder));
  EXPECT_FALSE(qvtest::Exists(root + "/QvConv"));
}

}  // namespace
