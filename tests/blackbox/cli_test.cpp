// The command line at the process boundary: every refusal is status 255 (-1), prints nothing and
// touches nothing; values may be quoted, options come in any order, and an empty argument ends the
// line.  A plain archive opened with -unpackage replaces what the destination held; what is no
// archive leaves no destination.

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
    EXPECT_EQ(result.output, "");
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
  for (const auto& args : refused) EXPECT_EQ(Qv(args), 255) << testing::PrintToString(args);
  EXPECT_TRUE(ListDir(temp_).empty());
  EXPECT_TRUE(ListDir(project_).empty());
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"keep.txt"});
}

TEST_F(Cli, AcceptedFormsOfTheCommandLine) {
  WriteFile(dest_ + "/old/stale.txt", "stale");
  auto opened = [&] {
    return ListDir(dest_) == std::vector<std::string>{"dir/"} &&
           ReadFile(dest_ + "/dir/a.txt") == "a" && (RemoveAll(dest_), true);
  };
  // Any four region fields, quotes, free order; a destination that is not there is made.
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

  // What is no archive, or is missing, leaves no destination.
  for (const std::string& not_zip : {scratch_.Sub("ok.xml"), scratch_.Sub("missing.zip")}) {
    WriteFile(dest_ + "/old.txt", "old");
    EXPECT_EQ(Qv({not_zip, "-unpackage" + dest_}), 0) << not_zip;
    EXPECT_FALSE(Exists(dest_)) << not_zip;
  }
}

}  // namespace
}  // namespace qvtest
