#include "workspace/work_folder.h"

#include "tests/support/test_support.h"

namespace {

using quorvane::qvconv::converter::MakeWorkFolder;
using qvtest::U16;
using qvtest::U8;

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
  EXPECT_TRUE(qvtest::IsDir(first));
  EXPECT_TRUE(qvtest::ListDir(first).empty());
  EXPECT_NE(first, U8(MakeWorkFolder(u"", u"QvConv")));

  // With a root, at any depth: no QvConv folder between.
  std::string root = scratch.path();
  for (char c = 'a'; c < 'g'; ++c) root += "/" + std::string(60, c);  // far past 260 characters
  qvtest::MakeDirs(root);
  const std::string folder = U8(MakeWorkFolder(U16(root), u"QvConv"));
  EXPECT_EQ(folder.substr(0, root.size() + 1), root + "/");
  EXPECT_EQ(folder.size(), root.size() + 1 + 51);
  EXPECT_TRUE(qvtest::IsDir(folder));
  EXPECT_FALSE(qvtest::Exists(root + "/QvConv"));
}

}  // namespace
