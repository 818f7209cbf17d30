// A full disk while a conversion writes its XML documents, on a disk that the
// test fills through the Env: the run ends as an unknown failure and delivers
// nothing; with room the same run packs the sample.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "app/run/run_control.h"
#include "tests/support/fake_env.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

// A disk with `room` bytes whose temporary folder is `temp`.
class SmallDisk : public qvtest::FullDisk {
 public:
  SmallDisk(std::size_t room, const std::string& temp) : FullDisk(room), temp_(qvtest::U16(temp)) {}
  std::u16string TempDirectory() override { return temp_; }

 private:
  std::u16string temp_;
};

TEST(FullDiskDeathTest, XmlDocumentsThatDoNotFitEndAsUnknownFailure) {
  qvtest::ScratchDir scratch;
  const std::string temp = scratch.Sub("temp"), zip = scratch.Sub("out.zip");
  qvtest::MakeDirs(temp);
  ArgumentTable table;
  table.slots[0] = u"qvConvApp";
  table.slots[1] = qvtest::U16(std::string(QV_SOURCE_DIR) + "/examples/sample");
  table.slots[2] = qvtest::U16("-package" + zip);
  auto run_on_disk_of = [&](std::size_t room) {
    SmallDisk disk(room, temp + "/");
    Dispatch(ParseCommandLine(table));
    std::exit(0);
  };
  // The schedule fits, a later document does not.
  EXPECT_EXIT(run_on_disk_of(1024), testing::ExitedWithCode(-999 & 0xff), "");
  EXPECT_FALSE(qvtest::Exists(zip));
  EXPECT_EXIT(run_on_disk_of(1 << 20), testing::ExitedWithCode(0), "");
  EXPECT_TRUE(qvtest::Exists(zip));
}

}  // namespace
