#include "workspace/file_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::U16;

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

// A move brings what a copy brings: new names are moved with their times and flags, names in use
// (in any case) are overwritten in their own spelling, folders merge, a missing destination gets
// nothing, and the source keeps only what could not move.
TEST(MoveTree, BringsWhatACopyBringsAndMovesWhatIsNew) {
  qvtest::ScratchDir scratch;
  const std::string src = scratch.Sub("src"), dst = scratch.Sub("dst");
  qvtest::WriteFile(src + "/new.csv", "new");
  qvtest::WriteFile(src + "/Taken.CSV", "taken, new");
  qvtest::WriteFile(src + "/Program_1/information/c.csv", "c");
  qvtest::WriteFile(src + "/contents/a.jpg", "a");
  qvtest::WriteFile(src + "/ro.txt", "ro");
  ::chmod((src + "/ro.txt").c_str(), 0444);
  const struct timespec old_times[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (src + "/new.csv").c_str(), old_times, 0), 0);
  qvtest::WriteFile(dst + "/taken.csv", "taken, old");
  qvtest::WriteFile(dst + "/CONTENTS/b.jpg", "b");

  MoveTree(U16(src), U16(scratch.Sub("nowhere/dst")));  // missing: nothing arrives, no failure
  EXPECT_FALSE(qvtest::Exists(scratch.Sub("nowhere")));
  EXPECT_EQ(qvtest::ReadFile(src + "/new.csv"), "new");

  MoveTree(U16(src), U16(dst));
  EXPECT_EQ(qvtest::ListDir(dst), (std::vector<std::string>{"CONTENTS/", "Program_1/", "new.csv",
                                                            "ro.txt", "taken.csv"}));
  EXPECT_EQ(qvtest::ReadFile(dst + "/taken.csv"), "taken, new");
  EXPECT_EQ(qvtest::ReadFile(dst + "/new.csv"), "new");
  EXPECT_EQ(qvtest::ReadFile(dst + "/Program_1/information/c.csv"), "c");
  EXPECT_EQ(qvtest::ListDir(dst + "/CONTENTS"), (std::vector<std::string>{"a.jpg", "b.jpg"}));
  struct stat st;
  ASSERT_EQ(::stat((dst + "/new.csv").c_str(), &st), 0);
  EXPECT_EQ(st.st_mtim.tv_sec, 1000000000);
  ASSERT_EQ(::stat((dst + "/ro.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0222, 0u);
  EXPECT_FALSE(qvtest::Exists(src + "/new.csv"));
  EXPECT_FALSE(qvtest::Exists(src + "/Program_1"));

  // A single file moves to its full target path, or overwrites what is there.
  qvtest::WriteFile(scratch.Sub("one.bin"), "one");
  MoveTree(U16(scratch.Sub("one.bin")), U16(dst + "/ONE.BIN"));
  EXPECT_EQ(qvtest::ReadFile(dst + "/ONE.BIN"), "one");
  qvtest::WriteFile(scratch.Sub("two.bin"), "two");
  MoveTree(U16(scratch.Sub("two.bin")), U16(dst + "/one.bin"));
  EXPECT_EQ(qvtest::ReadFile(dst + "/ONE.BIN"), "two");
  EXPECT_FALSE(qvtest::Exists(dst + "/one.bin"));
}

}  // namespace
