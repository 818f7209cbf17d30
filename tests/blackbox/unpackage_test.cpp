// Opening plain archives with -unpackage: the destination is emptied and receives the archive's
// entries; what is no archive leaves no destination.
#include <sys/stat.h>

#include <string>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class Unpackage : public BlackBoxTest {
 protected:
  int Open(const std::string& zip) { return BlackBoxTest::Unpackage(zip, dest_).status; }
  std::string PlainZip(const std::string& name, const std::string& inner) {
    WriteFile(scratch_.Sub("src_" + name + "/" + inner), name);
    ZipFolderContents(scratch_.Sub("src_" + name), scratch_.Sub(name));
    return scratch_.Sub(name);
  }

  std::string dest_ = scratch_.Sub("dest");
};

TEST_F(Unpackage, PlainArchiveReplacesTheDestinationContent) {
  WriteFile(dest_ + "/old/stale.txt", "stale");
  EXPECT_EQ(Open(PlainZip("a.zip", "dir/file.txt")), 0);
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"dir/"});  // old/ is gone
  EXPECT_EQ(ReadFile(dest_ + "/dir/file.txt"), "a.zip");

  // A folder QvFormat without QvS.xml is a plain archive too.
  EXPECT_EQ(Open(PlainZip("b.zip", "QvFormat/QvT/TM1.xml")), 0);
  EXPECT_EQ(ReadFile(dest_ + "/QvFormat/QvT/TM1.xml"), "b.zip");
  EXPECT_FALSE(Exists(dest_ + "/dir"));
}

TEST_F(Unpackage, NoArchiveLeavesNoDestination) {
  WriteFile(scratch_.Sub("not.zip"), "this is no archive");
  WriteFile(dest_ + "/old.txt", "old");
  EXPECT_EQ(Open(scratch_.Sub("not.zip")), 0);
  EXPECT_FALSE(Exists(dest_));
  EXPECT_EQ(Open(scratch_.Sub("missing.zip")), 0);
  EXPECT_FALSE(Exists(dest_));
}

// Windows empties the current folder given as the destination, as far as it can: the folder itself
// is in use and stays.
TEST_F(Unpackage, TheCurrentFolderAsDestinationIsEmptied) {
  const std::string zip = PlainZip("a.zip", "new.txt");
  WriteFile(dest_ + "/old/stale.txt", "stale");
  const RunResult run = qvtest::Run({"sh", "-c", "cd \"$1\" && exec \"$2\" \"$3\" -unpackage.", "sh",
                             dest_, QV_BINARY, zip},
                            RunEnv(temp_));
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(ListDir(dest_), std::vector<std::string>{"new.txt"});

  // The folder above: emptied in the order of a listing on Windows until the removal reaches the
  // current folder, which it empties and where it stops.
  for (const char* name : {"z1", "a1", "Y2", "b1", "y1", "Z2"}) WriteFile(dest_ + "/" + name, "x");
  WriteFile(dest_ + "/inner/x", "x");
  const RunResult up = qvtest::Run({"sh", "-c", "cd \"$1\" && exec \"$2\" \"$3\" -unpackage..",
                                    "sh", dest_ + "/inner", QV_BINARY, zip},
                                   RunEnv(temp_));
  EXPECT_EQ(up.status, 0) << up.output;
  EXPECT_EQ(ListDir(dest_), (std::vector<std::string>{"Y2", "Z2", "inner/", "new.txt", "y1", "z1"}));
  EXPECT_TRUE(ListDir(dest_ + "/inner").empty());

  // A destination typed in another case than the folder there is made again as typed.
  const std::string typed = scratch_.Sub("plaincase");
  MakeDirs(scratch_.Sub("PlainCase"));
  EXPECT_EQ(BlackBoxTest::Unpackage(zip, typed).status, 0);
  EXPECT_TRUE(Exists(typed + "/new.txt"));
  EXPECT_FALSE(Exists(scratch_.Sub("PlainCase")));
}

// The archive tool makes the folder it extracts into, with what leads to it: a probe into a
// temporary folder that does not exist yet makes it.
TEST_F(Unpackage, AMissingTemporaryFolderIsMadeByTheProbe) {
  const std::string zip = PlainZip("a.zip", "file.txt");
  const RunResult run = RunQv({zip, "-unpackage" + dest_}, RunEnv(scratch_.Sub("no/such/tmp")));
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(ReadFile(dest_ + "/file.txt"), "a.zip");
}

// The tool is looked for as Windows looks for a program named without a folder: beside this
// program first, then in the current folder, then on the search path.
TEST_F(Unpackage, TheToolBesideTheProgramComesFirst) {
  const std::string bin = scratch_.Sub("bin"), here = scratch_.Sub("here");
  MakeDirs(bin), MakeDirs(here);
  ASSERT_EQ(qvtest::Run({"cp", QV_BINARY, bin + "/qvConvApp"}).status, 0);
  for (const std::string& folder : {bin, here}) {
    WriteFile(folder + "/7za", "#!/bin/sh\necho \"$@\" >>\"" + folder + "/calls\"\n");
    ::chmod((folder + "/7za").c_str(), 0755);
  }
  const std::string zip = PlainZip("a.zip", "file.txt");
  const auto open_from = [&](const std::string& program) {
    return qvtest::Run({"sh", "-c", "cd \"$1\" && exec \"$2\" \"$3\" -unpackage\"$4\"", "sh", here,
                program, zip, dest_},
               RunEnv(temp_));
  };
  EXPECT_EQ(open_from(bin + "/qvConvApp").status, 0);
  EXPECT_TRUE(Exists(bin + "/calls"));
  EXPECT_FALSE(Exists(here + "/calls"));
  EXPECT_EQ(open_from(QV_BINARY).status, 0);
  EXPECT_TRUE(Exists(here + "/calls"));
}

}  // namespace
}  // namespace qvtest
