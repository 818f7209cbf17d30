#include "workspace/file_tree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using quorvane::qvconv::converter::CopyTree;
using quorvane::qvconv::converter::DeleteTree;
using quorvane::qvconv::converter::ListFiles;
using qvtest::U16;
using qvtest::U8;

TEST(DeleteTree, MissingFolderOrFileIsFalse) {
  qvtest::ScratchDir scratch;
  EXPECT_FALSE(DeleteTree(U16(scratch.Sub("missing"))));
  qvtest::WriteFile(scratch.Sub("file"), "x");
  EXPECT_FALSE(DeleteTree(U16(scratch.Sub("file"))));
  EXPECT_TRUE(qvtest::Exists(scratch.Sub("file")));
}

TEST(DeleteTree, RemovesNestedTreeWithReadOnlyFilesAndFolders) {
  qvtest::ScratchDir scratch;
  const std::string top = scratch.Sub("top");
  qvtest::WriteFile(top + "/a.txt", "a");
  qvtest::WriteFile(top + "/sub/deeper/b.txt", "b");
  qvtest::WriteFile(top + "/sub/.hidden", "h");
  ::chmod((top + "/a.txt").c_str(), 0444);
  ::chmod((top + "/sub/deeper/b.txt").c_str(), 0444);
  ::chmod((top + "/sub/deeper").c_str(), 0555);

  EXPECT_TRUE(DeleteTree(U16(top)));
  EXPECT_FALSE(qvtest::Exists(top));
}

TEST(DeleteTree, RemovesLinksWithoutFollowingThem) {
  qvtest::ScratchDir scratch;
  const std::string outside = scratch.Sub("outside");
  qvtest::WriteFile(outside + "/keep.txt", "keep");
  const std::string top = scratch.Sub("top");
  qvtest::MakeDirs(top);
  ASSERT_EQ(::symlink(outside.c_str(), (top + "/to_folder").c_str()), 0);
  ASSERT_EQ(::symlink((outside + "/keep.txt").c_str(), (top + "/to_file").c_str()), 0);

  EXPECT_TRUE(DeleteTree(U16(top)));
  EXPECT_FALSE(qvtest::Exists(top));
  EXPECT_EQ(qvtest::ReadFile(outside + "/keep.txt"), "keep");
}

TEST(CopyTree, SingleFileGoesToTheFullTargetPathAndOverwrites) {
  qvtest::ScratchDir scratch;
  qvtest::WriteFile(scratch.Sub("src.bin"), std::string("new\0data", 8));
  qvtest::WriteFile(scratch.Sub("dst.bin"), "old content that is longer");
  CopyTree(U16(scratch.Sub("src.bin")), U16(scratch.Sub("dst.bin")));
  EXPECT_EQ(qvtest::ReadFile(scratch.Sub("dst.bin")), std::string("new\0data", 8));
}

TEST(CopyTree, FolderIntoExistingDestinationCopiesEveryLevel) {
  qvtest::ScratchDir scratch;
  const std::string src = scratch.Sub("src");
  qvtest::WriteFile(src + "/a.txt", "a");
  qvtest::WriteFile(src + "/sub/b.txt", "b");
  qvtest::WriteFile(src + "/sub/deeper/c.txt", "c");
  qvtest::MakeDirs(src + "/empty");
  const std::string dst = scratch.Sub("dst");
  qvtest::MakeDirs(dst);

  CopyTree(U16(src), U16(dst));
  EXPECT_EQ(qvtest::ReadFile(dst + "/a.txt"), "a");
  EXPECT_EQ(qvtest::ReadFile(dst + "/sub/b.txt"), "b");
  EXPECT_EQ(qvtest::ReadFile(dst + "/sub/deeper/c.txt"), "c");
  EXPECT_TRUE(qvtest::IsDir(dst + "/empty"));
  EXPECT_EQ(qvtest::ReadFile(src + "/sub/b.txt"), "b");
}

TEST(CopyTree, MissingDestinationOrSourceCopiesNothingAndDoesNotFail) {
  qvtest::ScratchDir scratch;
  const std::string src = scratch.Sub("src");
  qvtest::WriteFile(src + "/a.txt", "a");
  qvtest::WriteFile(src + "/sub/b.txt", "b");

  CopyTree(U16(src), U16(scratch.Sub("nowhere/dst")));
  EXPECT_FALSE(qvtest::Exists(scratch.Sub("nowhere")));

  CopyTree(U16(scratch.Sub("no_source")), U16(scratch.Sub("dst2")));
  EXPECT_FALSE(qvtest::Exists(scratch.Sub("dst2")));
}

TEST(ListFiles, PlainFilesOnlyWithFullPathsInNameOrder) {
  qvtest::ScratchDir scratch;
  const std::string dir = scratch.Sub("dir");
  qvtest::WriteFile(dir + "/b.csv", "");
  qvtest::WriteFile(dir + "/a.csv", "");
  qvtest::WriteFile(dir + "/.hidden.csv", "");
  qvtest::WriteFile(dir + "/sub/inner.csv", "");
  qvtest::WriteFile(dir + "/ro.csv", "");
  ::chmod((dir + "/ro.csv").c_str(), 0444);
  ASSERT_EQ(::symlink((dir + "/sub").c_str(), (dir + "/link_to_folder").c_str()), 0);

  std::vector<std::string> names;
  for (const auto& path : ListFiles(U16(dir))) names.push_back(U8(path));
  EXPECT_EQ(names, (std::vector<std::string>{dir + "/a.csv", dir + "/b.csv", dir + "/ro.csv"}));

  EXPECT_TRUE(ListFiles(U16(scratch.Sub("missing"))).empty());
}

}  // namespace
