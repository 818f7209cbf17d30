// The command line at the process boundary: every refusal is status 255 (-1), prints nothing and
// touches nothing; quotes, any order, an empty argument ends the line; plain archives opened with
// -unpackage, also into the current folder; where the archive tool and the temporary folder come
// from.  Runs through a parameter file: the dispatch cells the command line cannot reach.
#include <sys/stat.h>

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
  EXPECT_TRUE(ListDir(temp_).empty() && ListDir(project_).empty());
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

// Runs `program` with the current folder `folder` on the archive `zip` into `destination`.
int OpenFrom(const std::string& folder, const std::string& program, const std::string& zip,
             const std::string& destination, const std::vector<std::string>& env) {
  return RunProgram({"sh", "-c", "cd \"$1\" && exec \"$2\" \"$3\" -unpackage\"$4\"", "sh", folder,
                     program, zip, destination},
                    env)
      .status;
}

// Windows empties the current folder given as the destination, as far as it can: the folder itself
// is in use and stays.  Given the folder above, the removal goes in the order of a listing on
// Windows until it reaches the current folder, which it empties and where it stops.  A destination
// typed in another case than the folder there is made again as typed.
TEST_F(Cli, CurrentFolderAndFolderTypedInAnotherCase) {
  WriteFile(scratch_.Sub("src/new.txt"), "new");
  ZipFolderContents(scratch_.Sub("src"), scratch_.Sub("new.zip"));
  WriteFile(dest_ + "/old/stale.txt", "stale");
  EXPECT_EQ(OpenFrom(dest_, QV_BINARY, scratch_.Sub("new.zip"), ".", RunEnv(temp_)), 0);
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"new.txt"});
  for (const char* name : {"z1", "a1", "Y2", "b1", "y1", "Z2", "inner/x"})
    WriteFile(dest_ + "/" + name, "x");
  EXPECT_EQ(OpenFrom(dest_ + "/inner", QV_BINARY, scratch_.Sub("new.zip"), "..\\", RunEnv(temp_)),
            0);
  EXPECT_EQ(ListDir(dest_),
            (std::vector<std::string>{"Y2", "Z2", "inner/", "new.txt", "y1", "z1"}));
  EXPECT_TRUE(ListDir(dest_ + "/inner").empty());

  MakeDirs(scratch_.Sub("PlainCase"));
  EXPECT_EQ(Qv({scratch_.Sub("new.zip"), "-unpackage" + scratch_.Sub("plaincase")}), 0);
  EXPECT_TRUE(Exists(scratch_.Sub("plaincase/new.txt")) && !Exists(scratch_.Sub("PlainCase")));
}

// The archive tool is looked for as Windows looks for a program named without a folder: beside
// this program first, then in the current folder, then on the search path.  The probe makes a
// temporary folder that is not there yet, as the tool makes the folder it extracts into.
TEST_F(Cli, TheToolAndTheTemporaryFolder) {
  const std::string bin = scratch_.Sub("bin"), here = scratch_.Sub("here");
  MakeDirs(here);
  ASSERT_EQ(RunProgram({"cp", QV_BINARY, (MakeDirs(bin), bin + "/qvConvApp")}).status, 0);
  for (const std::string& folder : {bin, here}) {
    WriteFile(folder + "/7za", "#!/bin/sh\necho \"$@\" >>\"" + folder + "/calls\"\n");
    ::chmod((folder + "/7za").c_str(), 0755);
  }
  EXPECT_EQ(OpenFrom(here, bin + "/qvConvApp", zip_, dest_, RunEnv(temp_)), 0);
  EXPECT_TRUE(Exists(bin + "/calls") && !Exists(here + "/calls"));
  EXPECT_EQ(OpenFrom(here, QV_BINARY, zip_, dest_, RunEnv(temp_)), 0);
  EXPECT_TRUE(Exists(here + "/calls"));

  EXPECT_EQ(RunQv({zip_, "-unpackage" + dest_}, {"TMPDIR=" + scratch_.Sub("no/such/tmp")}).status,
            0);
  EXPECT_EQ(ReadFile(dest_ + "/dir/a.txt"), "a");

  // An archive that is a pipe would hold the tool, and the run, until someone wrote it.
  ASSERT_EQ(::mkfifo(scratch_.Sub("pipe.zip").c_str(), 0600), 0);
  EXPECT_EQ(Qv({scratch_.Sub("pipe.zip"), "-unpackage" + dest_}), 0);
  EXPECT_FALSE(Exists(dest_));
}

const char* const kDocuments[] = {"QvS.xml",         "QvT/TM1.xml",     "QvT/TM2.xml",
                                  "QvP/PG1/PG1.xml", "QvP/PG1/PL1.xml", "QvP/PG2/PG2.xml",
                                  "QvP/PG2/PL1.xml", "QvP/PG2/PL2.xml"};

std::string Parameters(const std::string& in, const std::string& out,
                       const std::string& extra = "") {
  return "<QvConvParameter version=\"1.0\"><Input format=\"application/" + in +
         "\"/><Output format=\"application/" + out + "\" " + extra + "/></QvConvParameter>";
}

class ParameterRuns : public ::testing::Test {
 protected:
  // The bundled sample converted once, and its package opened as the tree "p".
  void SetUp() override { ASSERT_EQ(Rewrite(kSample, "", "p"), 0); }

  // Runs on `input` with -package`output` and, unless empty, the parameters in a file of their own.
  int Qv(const std::string& input, const std::string& params, const std::string& output) {
    const std::string file = dir_.Sub("param" + std::to_string(++files_) + ".xml");
    if (!params.empty()) WriteFile(file, params);
    return RunQv({input, "-package" + output, params.empty() ? "" : "-param" + file}).status;
  }
  // The same into <to>.zip, opened in the folder `to`.
  int Rewrite(const std::string& input, const std::string& params, const std::string& to) {
    const int status = Qv(input, params, dir_.Sub(to + ".zip"));
    if (status == 0) Unzip(dir_.Sub(to + ".zip"), dir_.Sub(to));
    return status;
  }
  std::string Tree(const std::string& tree) { return dir_.Sub(tree) + "/QvFormat/"; }
  std::string Doc(const std::string& tree, const std::string& name) {
    return ReadFile(Tree(tree) + name);
  }

  ScratchDir dir_;
  int files_ = 0;
};

TEST_F(ParameterRuns, CompactToDebugAndBackGivesTheDocumentsItStartedFrom) {
  ASSERT_EQ(Rewrite(Tree("p"), Parameters("x-qvf", "x-qvf"), "same"), 0);
  ASSERT_EQ(Rewrite(Tree("same"), Parameters("x-qvf", "x-qvf-debug"), "debug"), 0);
  ASSERT_EQ(Rewrite(Tree("debug"), Parameters("x-qvf-debug", "x-qvf"), "back"), 0);
  for (const char* name : kDocuments) EXPECT_EQ(Doc("back", name), Doc("same", name)) << name;
  // The debug documents are indented and speak the debug vocabulary.
  const std::string schedule = Doc("debug", "QvS.xml");
  EXPECT_NE(schedule.find("<quorvane_data"), std::string::npos);
  EXPECT_NE(schedule.find("\n  <schedule_list"), std::string::npos);
  // Content files come along byte for byte, telops included.
  for (const char* file : {"QvC/CT1.png", "QvC/CT3.mp4", "QvC/CT5.tlp"})
    EXPECT_EQ(Doc("debug", file), Doc("p", file)) << file;
  // A project converts straight into debug documents.
  ASSERT_EQ(Rewrite(kSample, Parameters("x-quorvane", "x-qvf-debug"), "d"), 0);
  EXPECT_NE(Doc("d", "QvP/PG2/PL1.xml").find("\n  <movie"), std::string::npos);
  EXPECT_NE(Doc("d", "QvT/TM1.xml").find("<timetable"), std::string::npos);
}

// Without a package (archive="no") the output is copied: documents into the QvFormat folder the
// caller made (no top folder is made), a project into its folder; the input stays where it is.
TEST_F(ParameterRuns, UnpackedOutputIsCopiedBothWays) {
  const std::string params = Parameters("x-quorvane", "x-qvf", "archive=\"no\"");
  ASSERT_EQ(Qv(kSample, params, dir_.Sub("out") + "/"), 0);
  EXPECT_FALSE(Exists(dir_.Sub("out")));
  MakeDirs(dir_.Sub("out/QvFormat"));
  ASSERT_EQ(Qv(kSample, params, dir_.Sub("out") + "/"), 0);
  for (const char* name : kDocuments) EXPECT_EQ(Doc("out", name), Doc("p", name)) << name;
  EXPECT_TRUE(IsDir(kSample));

  MakeDirs(dir_.Sub("project"));
  const std::string to_project = Parameters("x-qvf", "x-quorvane", "archive=\"no\"");
  ASSERT_EQ(Qv(dir_.Sub("p"), to_project, dir_.Sub("project")), 0);
  EXPECT_FALSE(ListDir(dir_.Sub("project")).empty());
  EXPECT_TRUE(Exists(dir_.Sub("p/QvFormat/QvS.xml")));
}

TEST_F(ParameterRuns, FailuresOfTheTreeAndOfTheFile) {
  const std::string zip = dir_.Sub("x.zip");
  // Without its trailing separator the tree's schedule is not found.
  EXPECT_EQ(Qv(dir_.Sub("p") + "/QvFormat", Parameters("x-qvf", "x-qvf-debug"), zip), Status(-300));
  EXPECT_EQ(RunQv({dir_.Sub("p"), "-package" + zip, "-param" + dir_.Sub("none.xml")}).status,
            Status(-300));
  EXPECT_FALSE(Exists(zip));
}

}  // namespace
}  // namespace qvtest
