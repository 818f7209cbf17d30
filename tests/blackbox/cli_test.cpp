// The command line as a caller sees it: every refusal is status 255 (-1),
// values may be quoted, an empty argument ends the line, and nothing is
// touched before the whole line has been read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using qvtest::RunQv;
using qvtest::Status;

class Cli : public testing::Test {
 protected:
  Cli() {
    qvtest::MakeDirs(Tmp());
    qvtest::WriteFile(scratch_.Sub("plain/dir/a.txt"), "a");
    qvtest::ZipFolderContents(scratch_.Sub("plain"), Zip());
  }
  std::string Tmp() const { return scratch_.Sub("tmp"); }
  std::string Zip() const { return scratch_.Sub("plain.zip"); }
  std::vector<std::string> Env() const { return {"TMPDIR=" + Tmp()}; }
  int Qv(const std::vector<std::string>& args) const {
    const qvtest::RunResult result = RunQv(args, Env());
    EXPECT_TRUE(result.output.empty()) << result.output;  // nothing is printed
    return result.status;
  }

  qvtest::ScratchDir scratch_;
};

TEST_F(Cli, BadCommandLinesAre255AndTouchNothing) {
  const std::string project = scratch_.Sub("project");
  qvtest::MakeDirs(project);
  // The option loop itself is covered by unit tests; these are the cases
  // that matter at the process boundary.
  const std::vector<std::vector<std::string>> refused = {
      {},
      {project},                                 // no output
      {project, "-package"},                     // no value
      {project, "other", "-packagex.zip"},
      {project, "-checkb.xml", "-packagea.zip"},
      {project, "-packagea.zip", "-td(1,2,3,4,5)"},
      {project, "-packagea.zip", "-"},
  };
  for (const auto& args : refused) {
    std::string line;
    for (const auto& a : args) line += " [" + a + "]";
    EXPECT_EQ(Qv(args), 255) << line;
  }
  EXPECT_TRUE(qvtest::ListDir(Tmp()).empty());
  EXPECT_TRUE(qvtest::ListDir(project).empty());
}

TEST_F(Cli, RegionIsCheckedBeforeAnArchiveIsOpened) {
  const std::string dest = scratch_.Sub("dest");
  qvtest::WriteFile(dest + "/keep.txt", "keep");
  EXPECT_EQ(Qv({Zip(), "-unpackage" + dest, "-td1,2,3"}), 255);
  EXPECT_EQ(qvtest::ReadFile(dest + "/keep.txt"), "keep");

  // Any four fields will do; they need not be numbers or in parentheses.
  EXPECT_EQ(Qv({"-tdx,y,z,w", "-unpackage'" + dest + " \"", Zip()}), 0);  // quotes, free order
  EXPECT_EQ(qvtest::ReadFile(dest + "/dir/a.txt"), "a");
}

TEST_F(Cli, EmptyArgumentEndsTheCommandLine) {
  const std::string dest = scratch_.Sub("dest");
  EXPECT_EQ(Qv({Zip(), "-unpackage" + dest, "", "-unknown", "second"}), 0);
  EXPECT_EQ(qvtest::ReadFile(dest + "/dir/a.txt"), "a");
  EXPECT_EQ(Qv({"", Zip(), "-unpackage" + dest}), 255);  // nothing left: no input
}

TEST_F(Cli, MoreArgumentsThanTheTableHoldsAre255) {
  const std::string dest = scratch_.Sub("dest");
  // The program's name and 98 arguments fill the table exactly.
  std::vector<std::string> args = {Zip()};
  while (args.size() < 98) args.push_back("-unpackage" + dest);
  EXPECT_EQ(Qv(args), 0);
  EXPECT_EQ(qvtest::ReadFile(dest + "/dir/a.txt"), "a");

  qvtest::RemoveAll(dest);
  args.push_back("-unpackage" + dest);
  EXPECT_EQ(Qv(args), 255);
  EXPECT_FALSE(qvtest::Exists(dest));
}

TEST_F(Cli, ParameterFileIsReadBeforeTheRun) {
  const std::string project = scratch_.Sub("project");
  qvtest::MakeDirs(project);
  const std::string out = "-package" + scratch_.Sub("out.zip");

  EXPECT_EQ(Qv({project, out, "-param" + scratch_.Sub("missing.xml")}), Status(-300));

  qvtest::WriteFile(scratch_.Sub("root.xml"), "<Parameter/>");
  EXPECT_EQ(Qv({project, out, "-param" + scratch_.Sub("root.xml")}), Status(-201));

  qvtest::WriteFile(scratch_.Sub("format.xml"),
                    "<QvConvParameter><Output format='application/x-qvf '/></QvConvParameter>");
  EXPECT_EQ(Qv({project, out, "-param'" + scratch_.Sub("format.xml") + "'"}), Status(-201));

  // A valid file changes nothing that the command line checks.
  qvtest::WriteFile(scratch_.Sub("ok.xml"), "<QvConvParameter version='1.0'/>");
  EXPECT_EQ(Qv({project, "-param" + scratch_.Sub("ok.xml")}), 255);  // still no output
  EXPECT_FALSE(qvtest::Exists(scratch_.Sub("out.zip")));
}

}  // namespace
