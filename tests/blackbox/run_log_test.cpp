// The run's log (-log<path>): the losses that end with no code, the file behind each failure code,
// a whole account, and a log that cannot be written, which must change nothing of the run.

#include <sys/stat.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

class RunLog : public BlackBoxTest {
 protected:
  void SetUp() override { BuildCleanProject(p_); }

  // Runs with -log, expects `status` and no output, and gives the log.
  std::string Logged(std::vector<std::string> args, int status, std::vector<std::string> env = {}) {
    RemoveAll(log_);
    args.push_back("-log" + log_);
    const RunResult r = RunQv(args, env.empty() ? RunEnv(temp_) : env);
    EXPECT_EQ(r.status, status) << r.output;
    EXPECT_EQ(r.output, "");
    return Exists(log_) ? ReadFile(log_) : "";
  }
  std::string PackageLog(int status) { return Logged({project_, "-package" + zip_}, status); }
  // A project path as the program joins it: with backslashes, as on Windows.
  std::string Path(const std::string& relative) {
    return Quoted(project_ + "\\" + Replaced(relative, "/", "\\"));
  }

  std::string log_ = scratch_.Sub("run.log"), back_ = scratch_.Sub("back");
};

#define EXPECT_LOGGED(log, text) EXPECT_NE((log).find(text), std::string::npos) << (log)

// Each loss that the format passes over with exit code 0 is named, with its file.
TEST_F(RunLog, LossesWithoutACodeAreNamed) {
  RemoveAll(p_.Path("TimeTable_weekend.csv"));
  RemoveAll(p_.Path("contents/photo.jpeg"));
  std::string log = PackageLog(0);
  EXPECT_LOGGED(log, "time table " + Path("TimeTable_weekend.csv") +
                         " named by the schedule cannot be opened: skipped");
  EXPECT_LOGGED(
      log, "content file " + Path("contents/photo.jpeg") + " is missing: left out of the package");
  EXPECT_EQ(ExitLine(log), "exit 0: finished");

  // A line over 1,023 bytes ends the read of its file.
  const std::string schedule = ReadFile(p_.Path("Schedule.csv"));
  const auto line = std::count(schedule.begin(), schedule.end(), '\n') + 1;
  WriteFile(p_.Path("Schedule.csv"), schedule + std::string(1100, 'x') + "\r\n");
  EXPECT_LOGGED(PackageLog(0),
                "line " + std::to_string(line) + " of " + Path("Schedule.csv") +
                    " is longer than 1,023 bytes: the read of the file ends before it");

  // A telop that cannot be opened stops the check: 0, nothing delivered (the outcome table).
  RemoveAll(p_.Path("contents/お知らせ.tlp"));
  log = PackageLog(0);
  EXPECT_LOGGED(log, "telop " + Path("contents/お知らせ.tlp") + " cannot be opened");
  EXPECT_LOGGED(ExitLine(log), "exit 0: stopped early, a check failed unexpectedly, at check ");

  WriteFile(scratch_.Sub("not.zip"), "this is no archive");
  EXPECT_LOGGED(Logged({scratch_.Sub("not.zip"), "-unpackage" + back_}, 0),
                "the archive " + Quoted(scratch_.Sub("not.zip")) +
                    " could not be extracted whole: the archive tool ended with status 2");
}

// Every failure code that a package or the command line can cause names what decided it.  Those
// of a project: the outcome table of the conversion tests.
TEST_F(RunLog, EachFailureCodeNamesWhatDecidedIt) {
  EXPECT_EQ(ExitLine(Logged({project_, "-package" + zip_, "-x"}, Status(-1))),
            "exit -1: bad command line: the argument \"-x\"");
  EXPECT_EQ(ExitLine(Logged({project_, "-package" + zip_, "-td1,2"}, Status(-1))),
            "exit -1: bad command line: the region \"1,2\"");

  // A package without its time table document; then no place for the work folder.
  ASSERT_EQ(Package(kSample).status, 0);
  Unzip(zip_, scratch_.Sub("pkg"));
  RemoveAll(scratch_.Sub("pkg/QvFormat/QvT/TM1.xml"));
  ZipFolderContents(scratch_.Sub("pkg"), scratch_.Sub("broken.zip"));
  MakeDirs(back_);
  EXPECT_EQ(
      ExitLine(Logged({scratch_.Sub("broken.zip"), "-unpackage" + back_}, Status(-300))),
      "exit -300: cannot read the XML document " + Quoted(temp_ + "/unzip/QvFormat/QvT/TM1.xml"));
  RemoveAll(temp_ + "/conv");
  WriteFile(temp_ + "/conv", "a file where the folder belongs");
  EXPECT_LOGGED(ExitLine(Logged({zip_, "-unpackage" + back_}, Status(-3))),
                "exit -3: cannot create \"" + temp_ + "/conv");
  RemoveAll(temp_ + "/conv");

  // Without the archive tool; the destination is kept.
  MakeDirs(scratch_.Sub("no_tools"));
  const std::vector<std::string> no_tool{"TMPDIR=" + temp_, "LC_ALL=C",
                                         "PATH=" + scratch_.Sub("no_tools")};
  EXPECT_EQ(ExitLine(Logged({kSample, "-package" + zip_}, Status(-401), no_tool)),
            "exit -401: cannot pack (the archive tool did not start) into " + Quoted(zip_));
  WriteFile(back_ + "/keep.txt", "keep");
  EXPECT_EQ(ExitLine(Logged({zip_, "-unpackage" + back_}, Status(-402), no_tool)),
            "exit -402: cannot unpack (the archive tool did not start): " + Quoted(zip_));
  EXPECT_EQ(ListDir(back_), std::vector<std::string>{"keep.txt"});
}

// A whole account: start, steps, delivery, exit; a second run appends to it.
TEST_F(RunLog, AccountOfAConversionAndAWayBack) {
  std::string log = PackageLog(0);
  EXPECT_EQ(log.rfind("[", 0), 0u);
  for (const std::string& step :
       {std::string("] start "),
        Quoted(project_) + " " + Quoted("-package" + zip_) + " " + Quoted("-log" + log_) + "\n",
        "check " + Path("Schedule.csv"), "read " + Path("Schedule.csv"),
        "copy " + Path("contents/オープニング.mp4"),
        "deliver " + Quoted(zip_ + ".partial") + " to " + Quoted(zip_)})
    EXPECT_LOGGED(log, step);
  MakeDirs(back_);
  ASSERT_EQ(RunQv({zip_, "-unpackage" + back_, "-log" + log_}, RunEnv(temp_)).status, 0);
  log = ReadFile(log_);
  EXPECT_LOGGED(log, "exit 0: finished\n[");  // the first run's last line, then the second's
  // A folder new to the destination is delivered whole, by one move.
  EXPECT_LOGGED(log, " to " + Quoted(back_ + "/contents") + "\n");
  EXPECT_EQ(ExitLine(log), "exit 0: finished");
}

// A log that cannot be opened or written (a full device, a folder, a pipe that nobody reads, which
// must not block): the run ends exactly as without a log.
TEST_F(RunLog, UnwritableLogChangesNothing) {
  ASSERT_EQ(Package(kSample).status, 0);
  const std::vector<std::string> members = ZipMembers(zip_);
  RemoveAll(p_.Path("Program_ads/program.csv"));
  ASSERT_EQ(::mkfifo(scratch_.Sub("fifo").c_str(), 0600), 0);
  const std::pair<std::vector<std::string>, int> runs[] = {
      {{kSample, "-package" + scratch_.Sub("a.zip")}, 0},
      {{project_, "-package" + scratch_.Sub("b.zip")}, Status(-101)},
      {{zip_, "-unpackage" + back_}, 0}};
  for (const std::string& log : {std::string("/dev/full"), scratch_.path(), scratch_.Sub("fifo")}) {
    RemoveAll(scratch_.Sub("a.zip"));
    for (auto [args, status] : runs) {
      RemoveAll(back_), MakeDirs(back_);
      args.push_back("-log" + log);
      EXPECT_EQ(RunQv(args, RunEnv(temp_)).status, status) << log << " " << args[1];
    }
    EXPECT_EQ(ZipMembers(scratch_.Sub("a.zip")), members) << log;
    EXPECT_FALSE(Exists(scratch_.Sub("b.zip")));
    EXPECT_EQ(FilesBelow(back_).size(), 31u) << log;
  }
  EXPECT_EQ(WorkFolders(temp_).size(), 3u);  // the failed conversion of each log
}

}  // namespace
}  // namespace qvtest
