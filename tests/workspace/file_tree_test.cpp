// Moves of trees: folders merge into a destination that must exist, names in use in any case keep
// their spelling, times and read-only flags come along.  The work folder of a run: below the
// temporary folder in QvConv, named by the time and a new UUID.
#include "workspace/file_tree.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "tests/support/test_support.h"
#include "workspace/work_folder.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::ListDir, qvtest::ReadFile, qvtest::U16, qvtest::U8, qvtest::WriteFile;

// A move brings what a copy brings: new names are moved with their times and flags, names in use
// (in any case) are overwritten in their own spelling, folders merge, a missing destination gets
// nothing, and the source keeps only what could not move.
TEST(MoveTree, BringsWhatACopyBringsAndMovesWhatIsNew) {
  qvtest::ScratchDir scratch;
  const std::string src = scratch.Sub("src"), dst = scratch.Sub("dst");
  WriteFile(src + "/new.csv", "new");
  WriteFile(src + "/Taken.CSV", "taken, new");
  WriteFile(src + "/Program_1/information/c.csv", "c");
  WriteFile(src + "/contents/a.jpg", "a");
  WriteFile(src + "/ro.txt", "ro");
  ::chmod((src + "/ro.txt").c_str(), 0444);
  const struct timespec old_times[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (src + "/new.csv").c_str(), old_times, 0), 0);
  WriteFile(dst + "/taken.csv", "taken, old");
  WriteFile(dst + "/CONTENTS/b.jpg", "b");

  MoveTree(U16(src), U16(scratch.Sub("nowhere/dst")));
  EXPECT_FALSE(qvtest::Exists(scratch.Sub("nowhere")));
  EXPECT_EQ(ReadFile(src + "/new.csv"), "new");

  MoveTree(U16(src), U16(dst));
  EXPECT_EQ(ListDir(dst), (std::vector<std::string>{"CONTENTS/", "Program_1/", "new.csv", "ro.txt",
                                                    "taken.csv"}));
  EXPECT_EQ(ReadFile(dst + "/taken.csv") + ReadFile(dst + "/new.csv"), "taken, newnew");
  EXPECT_EQ(ReadFile(dst + "/Program_1/information/c.csv"), "c");
  EXPECT_EQ(ListDir(dst + "/CONTENTS"), (std::vector<std::string>{"a.jpg", "b.jpg"}));
  struct stat moved, read_only;
  ASSERT_EQ(
      ::stat((dst + "/new.csv").c_str(), &moved) + ::stat((dst + "/ro.txt").c_str(), &read_only),
      0);
  EXPECT_EQ(moved.st_mtim.tv_sec, 1000000000);
  EXPECT_EQ(read_only.st_mode & 0222, 0u);
  EXPECT_FALSE(qvtest::Exists(src + "/new.csv") || qvtest::Exists(src + "/Program_1"));

  // A single file moves to its full target path, or overwrites what is there in another case.
  WriteFile(scratch.Sub("one.bin"), "one");
  MoveTree(U16(scratch.Sub("one.bin")), U16(dst + "/ONE.BIN"));
  EXPECT_EQ(ReadFile(dst + "/ONE.BIN"), "one");
  WriteFile(scratch.Sub("two.bin"), "two");
  MoveTree(U16(scratch.Sub("two.bin")), U16(dst + "/one.bin"));
  EXPECT_EQ(ReadFile(dst + "/ONE.BIN"), "two");
  EXPECT_FALSE(qvtest::Exists(dst + "/one.bin"));
}

TEST(WorkFolder, BelowTempWithTimeAndUuidName) {
  qvtest::ScratchDir scratch;
  qvtest::EnvOverride temp("TMPDIR", scratch.path());
  const std::string first = U8(MakeWorkFolder(u"", u"QvConv"));
  // "YYYYMMDD-hhmmss" and a lower-case random UUID, nothing between them.
  const std::string name = qvtest::Replaced(first, scratch.path() + "/QvConv/", "");
  ASSERT_EQ(name.size(), 15u + 36u) << first;
  EXPECT_EQ(name.find_first_not_of("0123456789"), 8u);
  EXPECT_EQ(name.substr(15).find_first_not_of("0123456789abcdef-"), std::string::npos);
  EXPECT_EQ(name.substr(15 + 8, 1) + name.substr(15 + 13, 2), "--4");
  EXPECT_TRUE(qvtest::IsDir(first) && qvtest::ListDir(first).empty());
  EXPECT_NE(first, U8(MakeWorkFolder(u"", u"QvConv")));
}

}  // namespace
