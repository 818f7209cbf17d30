// Files delivered whole through a temporary, and started programs: their output and status.  The
// log file: tests/blackbox/run_log_test.cpp; that no program outlives a killed run, and results
// stay whole: bench/kill_test.py (a ctest test).
#include <sys/stat.h>
#include <unistd.h>

#include "platform/atomic_file.h"
#include "platform/process.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::ReadFile;
using qvtest::U16;
using qvtest::WriteFile;

TEST(AtomicFile, TemporaryNameIsHiddenBesideTheDestinationAndFitsAName) {
  EXPECT_EQ(PartialPathOf(u"a/b/c.csv"), u"a/b/.c.csv.partial");
  // 246 bytes still fit with the two additions; one more is hashed, the same way each time.
  const std::u16string fits(246, u'x'), too_long(247, u'x');
  EXPECT_EQ(PartialPathOf(u"d/" + fits), u"d/." + fits + u".partial");
  const std::u16string hashed = PartialPathOf(u"d/" + too_long);
  EXPECT_EQ(hashed.size(), 2 + 1 + 16 + 8u);
  EXPECT_EQ(hashed, PartialPathOf(u"d/" + too_long));
  EXPECT_NE(hashed, PartialPathOf(u"d/" + too_long + u"y"));
}

TEST(AtomicFile, CopyReplacesWholeOrLeavesTheDestinationAsItWas) {
  qvtest::ScratchDir dir;
  const std::string src = dir.Sub("src.bin"), dst = dir.Sub("out/dst.bin");
  const std::string big(3 << 20, 'q');  // more than one round of the kernel's copy
  WriteFile(src, big);
  WriteFile(dst, "old");
  ASSERT_TRUE(CopyFileWhole(U16(src), U16(dst)));
  EXPECT_EQ(ReadFile(dst), big);
  // A temporary left as a link (a killed run's is taken over: bench/kill_test.py) is replaced,
  // never written through.
  WriteFile(dir.Sub("victim"), "untouched");
  ASSERT_EQ(::symlink(dir.Sub("victim").c_str(), dir.Sub("out/.dst.bin.partial").c_str()), 0);
  WriteFile(src, "new");
  ASSERT_TRUE(CopyFileWhole(U16(src), U16(dst)));
  EXPECT_EQ(ReadFile(dst) + ReadFile(dir.Sub("victim")), "newuntouched");

  // Sources that are no readable plain file, and a destination folder that is missing: false,
  // the destination as it was, no temporary left.
  ::mkfifo(dir.Sub("fifo").c_str(), 0600);
  for (const std::string& bad : {dir.Sub("missing"), dir.Sub("out"), dir.Sub("fifo")}) {
    EXPECT_FALSE(CopyFileWhole(U16(bad), U16(dst))) << bad;
    EXPECT_EQ(ReadFile(dst), "new") << bad;
  }
  EXPECT_FALSE(CopyFileWhole(U16(src), U16(dir.Sub("nowhere/dst.bin"))));
  EXPECT_EQ(qvtest::ListDir(dir.Sub("out")), std::vector<std::string>{"dst.bin"});
}

// The standard output is read while the program runs, also when it is more than a pipe holds; the
// other streams stay silent; a program that cannot start gives nothing.
TEST(Process, ReportsStartExitAndTheStandardOutput) {
  std::string out;
  const ProcessResult r =
      RunProcess({u"sh", u"-c", u"head -c 300000 /dev/zero; echo err >&2; exit 4"}, out);
  EXPECT_TRUE(r.started && r.exit_status == 4);
  EXPECT_EQ(out, std::string(300000, '\0'));
  EXPECT_FALSE(RunProcess({u"no-such-program-qv"}, out).started || !out.empty());
}

}  // namespace
}  // namespace quorvane::platform
