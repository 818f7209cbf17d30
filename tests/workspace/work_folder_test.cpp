#include "workspace/work_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/test_support.h"

namespace {

using quorvane::qvconv::converter::MakeWorkFolder;
using qvtest::U16;
using qvtest::U8;

// Points the temporary folder at a scratch folder for the test's lifetime.
class TempDirOverride {
 public:
  explicit TempDirOverride(const std::string& dir) {
    const char* old = std::getenv("TMPDIR");
    had_old_ = old != nullptr;
    if (had_old_) old_ = old;
    ::setenv("TMPDIR", dir.c_str(), 1);
  }
  ~TempDirOverride() {
    if (had_old_) {
      ::setenv("TMPDIR", old_.c_str(), 1);
    } else {
      ::unsetenv("TMPDIR");
    }
  }

 private:
  bool had_old_ = false;
  std::string old_;
};

bool IsDigits(const std::string& s) {
  for (char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return !s.empty();
}

TEST(WorkFolder, BelowTempGetsTimeAndUuidName) {
  qvtest::ScratchDir scratch;
  TempDirOverride temp(scratch.path());

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
