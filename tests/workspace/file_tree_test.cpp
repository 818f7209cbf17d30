#include "workspace/file_tree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::U16;

TEST(DeleteTree, RemovesEverythingReadOnlyIncludedButNeverFollowsLinks) {
  qvtest::ScratchDir scratch;
  const std::string top = scratch.Sub("top"), outside = scratch.Sub("outside");
  qvtest::WriteFile(outside + "/keep.txt", "keep");
  qvtest::WriteFile(top + "/a.txt", "a");
  qvtest::WriteFile(top + "/sub/deeper/.b", "b");
  for (const char* ro : {"/a.txt", "/sub/deeper/.b", "/sub/deeper"}) ::chmod((top + ro).c_str(), 0555);
  ASSERT_EQ(::symlink(outside.c_str(), (top + "/to_folder").c_str()), 0);
  ASSERT_EQ(::symlink((outside + "/keep.txt").c_str(), (top + "/sub/to_file").c_str()), 0);

  EXPECT_TRUE(DeleteTree(U16(top)));
  EXPECT_FALSE(qvtest::Exists(top));
  EXPECT_EQ(qvtest::ReadFile(outside + "/keep.txt"), "keep");

  EXPECT_FALSE(DeleteTree(U16(top)));  // no longer there
  EXPECT_FALSE(DeleteTree(U16(outside + "/keep.txt")));  // no folder
  ASSERT_EQ(::symlink(outside.c_str(), top.c_str()), 0);
  EXPECT_FALSE(DeleteTree(U16(top)));  // a link, not followed
  EXPECT_TRUE(qvtest::Exists(outside + "/keep.txt"));
}

TEST(CopyTree, FileOverwritesFolderNeedsAnExistingDestination) {
  qvtest::ScratchDir scratch;
  const std::string src = scratch.Sub("src");
  qvtest::WriteFile(src + "/a.bin", std::string("new\0data", 8));
  qvtest::WriteFile(src + "/sub/deeper/c.txt", "c");
  qvtest::MakeDirs(src + "/empty");
  qvtest::WriteFile(scratch.Sub("dst.bin"), "old content that is longer");
  CopyTree(U16(src + "/a.bin"), U16(scratch.Sub("dst.bin")));
  EXPECT_EQ(qvtest::ReadFile(scratch.Sub("dst.bin")), std::string("new\0data", 8));

  CopyTree(U16(src), U16(scratch.Sub("nowhere/dst")));  // missing: nothing arrives, no failure
  EXPECT_FALSE(qvtest::Exists(scratch.Sub("nowhere")));
  const std::string dst = scratch.Sub("dst");
  qvtest::MakeDirs(dst);
  CopyTree(U16(src), U16(dst));
  EXPECT_EQ(qvtest::ReadFile(dst + "/a.bin"), std::string("new\0data", 8));
  EXPECT_EQ(qvtest::ReadFile(dst + "/sub/deeper/c.txt"), "c");
  EXPECT_TRUE(qvtest::IsDir(dst + "/empty"));
}

// What a listing on Windows gives: plain files, in NTFS order, as "<folder>\<name>"; no name that
// Windows could not hold (the stream a copy of a download leaves beside a file).
TEST(ListFiles, PlainFilesOnlyWithFullPathsInNtfsOrder) {
  qvtest::ScratchDir scratch;
  const std::string dir = scratch.Sub("dir");
  for (const char* name : {"b.csv", "A.csv", ".hidden.csv", "sub/inner.csv", "ro.csv",
                           "b.csv:Zone.Identifier", "c. "})
    qvtest::WriteFile(dir + "/" + name, "");
  ::chmod((dir + "/ro.csv").c_str(), 0444);
  ASSERT_EQ(::symlink((dir + "/sub").c_str(), (dir + "/link_to_folder").c_str()), 0);

  std::vector<std::string> paths;
  for (const auto& path : ListFiles(U16(dir))) paths.push_back(qvtest::U8(path));
  EXPECT_EQ(paths, (std::vector<std::string>{dir + "\\A.csv", dir + "\\b.csv", dir + "\\ro.csv"}));
  EXPECT_TRUE(ListFiles(U16(scratch.Sub("missing"))).empty());
}

}  // namespace
