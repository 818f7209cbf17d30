#include "workspace/work_folder.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_support.h"
#include "tests/workspace/env_override.h"

namespace {

using quorvane::qvconv::converter::MakeWorkFolder;
using qvtest::U16;
using qvtest::U8;

bool IsDigits(const std::string& s) {
  for (char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return !s.empty();
}

TEST(WorkFolder, BelowTempGetsTimeAndUuidName) {
  qvtest::ScratchDir scratch;
  qvtest::EnvOverride temp("TMPDIR", scratch.path());

  const std::string first = U8(MakeWorkFolder(u"", u"QvConv"));
  const std::string second = U8(MakeWorkFolder(u"", u"QvConv"));
  const std::string parent = scratch.path() + "/QvConv/";

  ASSERT_EQ(first.substr(0, parent.size()), parent);
  const std::string name = first.substr(parent.size());
  // "YYYYMMDD-hhmmss" then a lower-case UUID, nothing between them.
  ASSERT_EQ(name.size(), 15u + 36u) << name;
  EXPECT_TRUE(IsDigits(name.substr(0, 8)));
  EXPECT_EQ(name[8], '-');
  EXPECT_TRUE(IsDigits(name.substr(9, 6)));
  const std::string uuid = name.substr(15);
  EXPECT_EQ(uuid[8], '-');
  EXPECT_EQ(uuid[13], '-');
  EXPECT_EQ(uuid.find_first_of("ABCDEF"), std::string::npos);

  EXPECT_TRUE(qvtest::IsDir(first));
  EXPECT_TRUE(qvtest::ListDir(first).empty());
  EXPECT_TRUE(qvtest::IsDir(second));
  EXPECT_NE(first, second);
}

TEST(WorkFolder, WithRootGoesDirectlyBelowIt) {
  qvtest::ScratchDir scratch;
  const std::string root = scratch.Sub("root");
  qvtest::MakeDirs(root);

  const std::string folder = U8(MakeWorkFolder(U16(root), u"QvConv"));
  EXPECT_EQ(folder.substr(0, root.size() + 1), root + "/");
  EXPECT_EQ(folder.size(), root.size() + 1 + 51);
  EXPECT_TRUE(qvtest::IsDir(folder));
  EXPECT_FALSE(qvtest::Exists(root + "/QvConv"));
}

TEST(WorkFolder, LongPathsBeyondTheOldLimitWork) {
  qvtest::ScratchDir scratch;
  std::string root = scratch.path();
  for (int i = 0; i < 6; ++i) root += "/" + std::string(60, 'a' + i);
  qvtest::MakeDirs(root);
  const std::string folder = U8(MakeWorkFolder(U16(root), u"QvConv"));
  EXPECT_GT(folder.size(), 400u);
  EXPECT_TRUE(qvtest::IsDir(folder));
}

}  // namespace
