// The command line at the process boundary: every refusal is status 255 (-1) and touches nothing;
// values may be quoted, options come in any order, and an empty argument ends the line.
#include <string>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class Cli : public BlackBoxTest {
 protected:
  Cli() {
    WriteFile(scratch_.Sub("plain/dir/a.txt"), "a");
    ZipFolderContents(scratch_.Sub("plain"), zip_);
    WriteFile(scratch_.Sub("ok.xml"), "<QvConvParameter version='1.0'/>");
  }
  int Qv(const std::vector<std::string>& args) {
    const RunResult result = RunQv(args, RunEnv(temp_));
    EXPECT_EQ(result.output, "");  // nothing is printed
    return result.status;
  }

  std::string dest_ = scratch_.Sub("dest");
};

TEST_F(Cli, RefusedCommandLinesAre255AndTouchNothing) {
  WriteFile(dest_ + "/keep.txt", "keep");
  const std::vector<std::vector<std::string>> refused = {
      {},
      {project_},  // no output
      {project_, "-package"},
      {project_, "other", "-packagex.zip"},
      {project_, "-param" + scratch_.Sub("ok.xml")},  // a valid file is no output
      {zip_, "-unpackage" + dest_, "-td1,2,3"},       // before the archive is opened
      {"", zip_, "-unpackage" + dest_},               // nothing left: no input
      {zip_, "-unpackage''", "-check''"},             // a check run has no destination
  };
  for (const auto& args : refused) {
    std::string line;
    for (const auto& a : args) line += " [" + a + "]";
    EXPECT_EQ(Qv(args), 255) << line;
  }
  EXPECT_TRUE(ListDir(temp_).empty());
  EXPECT_TRUE(ListDir(project_).empty());
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"keep.txt"});
}

TEST_F(Cli, AcceptedFormsOfTheCommandLine) {
  auto opened = [&] { return ReadFile(dest_ + "/dir/a.txt") == "a" && (RemoveAll(dest_), true); };
  // Any four region fields, quotes, free order.
  EXPECT_EQ(Qv({"-tdx,y,z,w", "-unpackage'" + dest_ + " \"", zip_}), 0);
  EXPECT_TRUE(opened());
  EXPECT_EQ(Qv({zip_, "-unpackage" + dest_, "", "-unknown", "second"}), 0);
  EXPECT_TRUE(opened());
  // The program's name and 98 arguments fill the table exactly; one more is refused.
  std::vector<std::string> args = {zip_};
  while (args.size() < 98) args.push_back("-unpackage" + dest_);
  EXPECT_EQ(Qv(args), 0);
  EXPECT_TRUE(opened());
  args.push_back("-unpackage" + dest_);
  EXPECT_EQ(Qv(args), 255);
  EXPECT_FALSE(Exists(dest_));
}

}  // namespace
}  // namespace qvtest
