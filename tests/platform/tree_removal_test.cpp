// Removing trees on folder descriptors: nothing outside a tree is touched, whatever links it holds
// at whatever depth; names that are not UTF-8, read-only files and folders that may not be read or
// written all go; a tree of any depth is settled (extracted names) and goes with few descriptors.
#include "platform/tree_removal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/extracted_names.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::ScratchDir;
using qvtest::U16;

// What the links of a tree point to.
class TreeRemoval : public testing::Test {
 protected:
  TreeRemoval() { qvtest::WriteFile(outside_ + "/keep.txt", "keep"); }

  bool OutsideIntact() {
    return qvtest::ListDir(outside_) == std::vector<std::string>{"keep.txt"} &&
           qvtest::ReadFile(outside_ + "/keep.txt") == "keep" &&
           !qvtest::Exists(outside_ + "/missing");
  }
  static void Link(const std::string& target, const std::string& at) {
    ASSERT_EQ(::symlink(target.c_str(), at.c_str()), 0) << at;
  }

  // Every kind of entry at each of three depths, and folders that their owner may not write, read
  // or search.
  void BuildTree(const std::string& top) {
    std::string level = top;
    for (int depth = 0; depth < 3; ++depth, level += "/sub") {
      qvtest::WriteFile(level + "/read_only.txt", "r");
      ::chmod((level + "/read_only.txt").c_str(), 0444);
      Link(outside_, level + "/to_folder");
      Link(outside_ + "/keep.txt", level + "/to_file");
      Link(outside_ + "/missing", level + "/dangling");
      qvtest::WriteFile(level + "/\xff\xfe not utf-8", "x");
      qvtest::MakeDirs(level + "/\x80 folder/\xc3");
      ASSERT_EQ(::mkfifo((level + "/pipe").c_str(), 0600), 0);
    }
    qvtest::WriteFile(top + "/locked/inner/f", "f");
    ::chmod((top + "/locked/inner").c_str(), 0);
    ::chmod((top + "/locked").c_str(), 0500);
  }

  ScratchDir scratch_;
  std::string outside_ = scratch_.Sub("outside"), top_ = scratch_.Sub("top");
};

TEST_F(TreeRemoval, RemovesEverythingInsideAndNothingOutside) {
  BuildTree(top_);
  EXPECT_TRUE(RemoveTree(U16(top_ + "/")));
  EXPECT_FALSE(qvtest::Exists(top_));
  EXPECT_TRUE(OutsideIntact());

  // Emptied in place: the open folder stays, and can be emptied again.
  BuildTree(top_);
  const int fd = ::open(top_.c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_GE(fd, 0);
  EXPECT_TRUE(EmptyFolder(fd));
  EXPECT_TRUE(qvtest::ListDir(top_).empty());
  qvtest::WriteFile(top_ + "/again.txt", "a");
  EXPECT_TRUE(EmptyFolder(fd));
  EXPECT_TRUE(qvtest::ListDir(top_).empty());
  ::close(fd);
  EXPECT_TRUE(OutsideIntact());
}

TEST_F(TreeRemoval, TheTopMustBeARealFolder) {
  const std::string at = scratch_.Sub("at");
  const std::vector<std::pair<const char*, std::string>> tops = {
      {"link to a folder", outside_}, {"dangling link", outside_ + "/missing"}};
  for (const auto& [what, target] : tops) {
    Link(target, at);
    EXPECT_FALSE(RemoveTree(U16(at))) << what;
    EXPECT_FALSE(RemoveTree(U16(at + "/"))) << what;
    struct stat st;
    EXPECT_TRUE(::lstat(at.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) << what;
    ::unlink(at.c_str());
  }
  EXPECT_FALSE(RemoveTree(U16(outside_ + "/keep.txt")));
  EXPECT_FALSE(RemoveTree(U16(scratch_.Sub("missing"))));
  EXPECT_TRUE(OutsideIntact());
}

// Whether `call` succeeds in a child process that may open no more than 64 descriptors.
template <typename Call>
bool WithFewDescriptors(Call call) {
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit few{64, 64};
    ::setrlimit(RLIMIT_NOFILE, &few);
    ::_exit(call() ? 0 : 1);
  }
  int status = -1;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

// Deeper than the descriptors a process may open: folders far above are left and found again,
// by the settling of extracted names and by the removal.
TEST_F(TreeRemoval, AnyDepthWithFewDescriptors) {
  std::string deep = top_;
  for (int i = 0; i < 300; ++i) deep += "/d";
  qvtest::WriteFile(deep + "/x\\y", "1");
  qvtest::WriteFile(deep + "/" + qvtest::Cp932("平日.csv"), "2");
  qvtest::WriteFile(top_ + "/d\\e", "3");
  EXPECT_TRUE(WithFewDescriptors([&] { return FixExtractedNames(U16(top_)); }));
  EXPECT_EQ(qvtest::ReadFile(deep + "/x/y"), "1");
  EXPECT_EQ(qvtest::ReadFile(deep + "/平日.csv"), "2");
  EXPECT_EQ(qvtest::ReadFile(top_ + "/d/e"), "3");
  Link(outside_, deep + "/to_folder");
  EXPECT_TRUE(WithFewDescriptors([&] { return RemoveTree(U16(top_)); }));
  EXPECT_FALSE(qvtest::Exists(top_));
  EXPECT_TRUE(OutsideIntact());
}

}  // namespace
}  // namespace quorvane::platform
