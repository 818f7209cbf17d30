// A real small disk, where the archive tool writes too: nothing written there crashes a run.  Each
// run gets a mount namespace of its own in which one folder is a fresh tmpfs of a few KiB; where
// none can be made, the test is skipped.  (The program's own writes to a full disk are tested
// through the Env, tests/app/run_options_test.cpp.)

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class HostileDisk : public BlackBoxTest {
 protected:
  void SetUp() override {
    MakeDirs(disk_);
    // An empty command line is refused (255) only where the tmpfs could be made.
    if (OnSmallDisk(16, {}).status != Status(-1))
      GTEST_SKIP() << "no mount namespace with a tmpfs here";
  }

  // Runs qvConvApp with `qv_args` and disk_ a tmpfs of `kib` KiB.
  RunResult OnSmallDisk(int kib, const std::vector<std::string>& qv_args,
                        const std::vector<std::string>& env = {}) {
    const std::string mount =
        "mount -t tmpfs -o size=$1 tmpfs \"$2\" || exit 99; shift 2; exec \"$@\"";
    std::vector<std::string> args{
        "unshare", "--mount", "--propagation",           "private", "sh",     "-c",
        mount,     "sh",      std::to_string(kib) + "k", disk_,     QV_BINARY};
    args.insert(args.end(), qv_args.begin(), qv_args.end());
    return RunProgram(args, env);
  }

  std::string disk_ = scratch_.Sub("disk");
};

// Opening a package with a temporary folder of every size from too small to enough: a partial
// extraction, an unreadable document or a CSV file cut short (its stream failures are not looked
// at) never crash the run or give a code outside the documented ones; with room the project is
// whole.
TEST_F(HostileDisk, WayBackOnDisksOfEverySize) {
  ASSERT_EQ(Package(kSample).status, 0);
  const std::string back = scratch_.Sub("back"), reference = scratch_.Sub("reference");
  MakeDirs(back);
  MakeDirs(reference);
  ASSERT_EQ(Unpackage(zip_, reference).status, 0);

  const std::vector<int> documented{0, Status(-3), Status(-4), Status(-300)};
  for (int kib = 4; kib <= 128; kib += 4) {
    const RunResult r = OnSmallDisk(kib, {zip_, "-unpackage" + back}, RunEnv(disk_));
    EXPECT_NE(std::find(documented.begin(), documented.end(), r.status), documented.end())
        << kib << " KiB: " << r.status << r.output;
    EXPECT_EQ(r.output, "");
  }
  RunProgram({"rm", "-rf", back});
  MakeDirs(back);
  const RunResult r = OnSmallDisk(1024, {zip_, "-unpackage" + back}, RunEnv(disk_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(Unstamped(back), Unstamped(reference));
}

}  // namespace
}  // namespace qvtest
