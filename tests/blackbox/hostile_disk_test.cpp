// Full disks: the program's own XML files (documents, the report) written to a small file system
// end the run as unknown failure, and nothing else written there crashes a run.
//
// Each run gets a mount namespace of its own in which one folder is a fresh tmpfs of a few KiB; the
// mount disappears with the run.  Where no namespace can be made (not root, no namespaces) the tests
// are skipped.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const std::string kSample = std::string(QV_SOURCE_DIR) + "/examples/sample";

// tmpfs counts whole 4 KiB pages: 16 KiB holds the sample's first four XML documents and no more.
constexpr int kTinyKib = 16;
constexpr int kRoomyKib = 1024;

class HostileDisk : public BlackBoxTest {
 protected:
  void SetUp() override {
    MakeDirs(disk_);
    if (OnSmallDisk(kTinyKib, false, {"true"}).status != 0) {
      GTEST_SKIP() << "no mount namespace with a tmpfs can be made here";
    }
  }

  // Runs `command` with disk_ a tmpfs of `kib` KiB, filled up first when `full`.
  RunResult OnSmallDisk(int kib, bool full, std::vector<std::string> command,
                        const std::vector<std::string>& env = {}) {
    std::vector<std::string> args{
        "unshare", "--mount", "--propagation", "private", "sh", "-c",
        "mount -t tmpfs -o size=\"$1\" tmpfs \"$2\" || exit 99\n"
        "if [ \"$3\" = full ]; then cat /dev/zero > \"$2/filler\" 2>/dev/null; fi\n"
        "shift 3; exec \"$@\"",
        "sh", std::to_string(kib) + "k", disk_, full ? "full" : "room"};
    args.insert(args.end(), command.begin(), command.end());
    return qvtest::Run(args, env);
  }

  RunResult QvOnSmallDisk(int kib, bool full, const std::vector<std::string>& qv_args,
                          const std::vector<std::string>& env) {
    std::vector<std::string> command{QV_BINARY};
    command.insert(command.end(), qv_args.begin(), qv_args.end());
    return OnSmallDisk(kib, full, command, env);
  }

  std::string disk_ = scratch_.Sub("disk");
};

TEST_F(HostileDisk, XmlDocumentsThatDoNotFitEndAsUnknownFailure) {
  // The temporary folder, and so the work folder with the XML documents, on the tiny disk.
  const RunResult r = QvOnSmallDisk(kTinyKib, false, {kSample, "-package" + zip_}, RunEnv(disk_));
  EXPECT_EQ(r.status, Status(-999)) << r.output;
  EXPECT_EQ(r.output, "");
  EXPECT_FALSE(Exists(zip_));

  // With room the same run packs the sample.
  EXPECT_EQ(QvOnSmallDisk(kRoomyKib, false, {kSample, "-package" + zip_}, RunEnv(disk_)).status, 0);
  EXPECT_TRUE(Exists(zip_));
}

// Opening a package with a temporary folder of every size from too small to
// enough: a partial extraction, an unreadable document or a CSV file cut short
// (its stream failures are not looked at) never crash the run or give a code
// outside the documented ones; with room the project is whole.
TEST_F(HostileDisk, WayBackOnDisksOfEverySize) {
  ASSERT_EQ(Package(kSample).status, 0);
  const std::string back = scratch_.Sub("back"), reference = scratch_.Sub("reference");
  MakeDirs(back);
  MakeDirs(reference);
  ASSERT_EQ(Unpackage(zip_, reference).status, 0);

  const std::vector<int> documented{0, Status(-3), Status(-4), Status(-300)};
  for (int kib = 4; kib <= 128; kib += 4) {
    const RunResult r = QvOnSmallDisk(kib, false, {zip_, "-unpackage" + back}, RunEnv(disk_));
    EXPECT_NE(std::find(documented.begin(), documented.end(), r.status), documented.end())
        << kib << " KiB: " << r.status << r.output;
    EXPECT_EQ(r.output, "");
  }
  qvtest::Run({"rm", "-rf", back});
  MakeDirs(back);
  const RunResult r = QvOnSmallDisk(kRoomyKib, false, {zip_, "-unpackage" + back}, RunEnv(disk_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(Unstamped(back), Unstamped(reference));
}

TEST_F(HostileDisk, ReportOnAFullDiskIsUnknownFailure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});  // one warning
  const std::string report = disk_ + "/report.xml";
  const RunResult r = QvOnSmallDisk(kTinyKib, true, {project_, "-check" + report}, RunEnv(temp_));
  EXPECT_EQ(r.status, Status(-999)) << r.output;
  EXPECT_EQ(r.output, "");
}

}  // namespace
}  // namespace qvtest
