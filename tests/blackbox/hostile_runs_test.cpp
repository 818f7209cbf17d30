// Runs that strain the program, each giving what the sample gives in short folders on its own:
// folders deeper than the old 260-character limit and than the system's 4,096, Japanese names
// everywhere; several processes at once in one temporary folder, taking turns on its fixed
// folders.  A report that cannot be written.  (A full disk: tests/app/run_options_test.cpp.)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class HostileRuns : public BlackBoxTest {
 protected:
  // The sample packed into zip_ and opened: its members, and the project's files.
  void SetUp() override {
    ASSERT_EQ(Package(kSample).status, 0);
    ASSERT_EQ(UnpackageTo(zip_, scratch_.Sub("reference")).status, 0);
    members_ = ZipMembers(zip_), project_files_ = Unstamped(scratch_.Sub("reference"));
  }
  // Packs `input` into `zip` and opens that into `back`, with the temporary folder `temp`.
  void ThereAndBack(const std::string& input, const std::string& zip, const std::string& back,
                    const std::string& temp) {
    EXPECT_EQ(RunQv({input, "-package" + zip}, RunEnv(temp)).status, 0) << input;
    EXPECT_EQ(ZipMembers(zip), members_) << zip;
    EXPECT_EQ(RunQv({zip, "-unpackage" + back}, RunEnv(temp)).status, 0) << zip;
  }

  std::vector<std::string> members_, project_files_;
};

// Extends `path` by Japanese folders of about 180 bytes each until it is longer than `length`, made
// one step at a time from an open folder, as no single call takes so long a path.  The last stays
// open.
int MakeDeepFolder(std::string& path, std::size_t length) {
  int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; folder >= 0 && path.size() <= length; ++i) {
    const std::string name = "長いフォルダの名前_" + std::string(140, 'x') + std::to_string(i);
    mkdirat(folder, name.c_str(), 0755);
    const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    close(folder), folder = next, path += "/" + name;
  }
  return folder;
}

TEST_F(HostileRuns, JapaneseNamesAndPathsBeyond260And4096Characters) {
  std::string deep = scratch_.Sub("案件");
  for (int i = 0; deep.size() < 900; ++i)
    deep += "/春のキャンペーン用の長いフォルダ名_" + std::to_string(i);
  MakeDirs(deep + "/戻り先");
  ASSERT_EQ(RunProgram({"cp", "-r", kSample, deep + "/サンプル"}).status, 0);
  ThereAndBack(deep + "/サンプル", deep + "/パッケージ.zip", deep + "/戻り先", temp_);
  EXPECT_EQ(Unstamped(deep + "/戻り先"), project_files_);
  // The same with the temporary folder itself deep and Japanese.
  MakeDirs(scratch_.Sub("二つ目"));
  ThereAndBack(deep + "/サンプル", scratch_.Sub("二つ目.zip"), scratch_.Sub("二つ目"),
               deep + "/一時");
  EXPECT_EQ(Unstamped(scratch_.Sub("二つ目")), project_files_);

  // A project and a destination whose full paths are longer than the 4,096 bytes one system call
  // takes, reached here through our open descriptor: no long path on the way.
  std::string deeper = scratch_.path();
  const int folder = MakeDeepFolder(deeper, 4200);
  ASSERT_GE(folder, 0);
  ASSERT_GT(deeper.size(), 4096u);
  const std::string via = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(folder);
  ASSERT_EQ(RunProgram({"cp", "-r", kSample, via + "/sample"}).status, 0);
  MakeDirs(via + "/back");
  ThereAndBack(deeper + "/sample", scratch_.Sub("deep.zip"), deeper + "/back", temp_);
  ASSERT_EQ(RunProgram({"cp", "-r", via + "/back", scratch_.Sub("copy")}).status, 0);
  EXPECT_EQ(Unstamped(scratch_.Sub("copy")), project_files_);
  close(folder);
}

// Conversions, checks and openings of different packages side by side: each run packs the sample
// with a telop of its own text, so that another run's files show; the packages to open are made
// one at a time beforehand.
TEST_F(HostileRuns, ConversionsChecksAndOpeningsSideBySide) {
  constexpr int kEach = 3;
  auto sub = [&](const std::string& name, int i) { return scratch_.Sub(name + std::to_string(i)); };
  auto zip = [&](const std::string& name, int i) { return sub(name, i) + ".zip"; };
  for (int i = 0; i < kEach; ++i) {
    ASSERT_EQ(RunProgram({"cp", "-r", kSample, sub("project", i)}).status, 0);
    WriteFile(sub("project", i) + "/contents/お知らせ.tlp",
              Cp932(TelopText(48, 0, {"run " + std::to_string(i)})));
    ASSERT_EQ(RunQv({sub("project", i), "-package" + zip("in", i)}, RunEnv(temp_)).status, 0);
    MakeDirs(sub("back", i));
  }
  // A project whose check finds a warning, checked side by side as well.
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});

  std::vector<int> convert(kEach, -1), opened(kEach, -1);
  int check = -1;
  std::vector<std::thread> runs;
  for (int i = 0; i < kEach; ++i) {
    runs.emplace_back([&, i] {
      convert[i] = RunQv({sub("project", i), "-package" + zip("out", i)}, RunEnv(temp_)).status;
    });
    runs.emplace_back([&, i] { opened[i] = Unpackage(zip("in", i), sub("back", i)).status; });
  }
  runs.emplace_back([&] { check = Check().status; });
  for (std::thread& run : runs) run.join();

  for (int i = 0; i < kEach; ++i) {
    const std::string own = "run " + std::to_string(i);
    EXPECT_EQ(convert[i], 0) << i;
    EXPECT_EQ(ZipMembers(zip("out", i)), members_) << i;
    Unzip(zip("out", i), sub("x", i));
    EXPECT_NE(ReadFile(sub("x", i) + "/QvFormat/QvC/CT5.tlp").find(own), std::string::npos)
        << i << ": the package holds another run's telop";
    EXPECT_EQ(opened[i], 0) << i;
    EXPECT_EQ(Unstamped(sub("back", i)), project_files_) << i;
    int own_telops = 0;
    for (const std::string& file : Contents(sub("back", i) + "/contents"))
      own_telops += file.find(".tlp=") != std::string::npos && file.find(own) != std::string::npos;
    EXPECT_EQ(own_telops, 1) << i << ": the project holds another package's telop";
  }
  EXPECT_TRUE(check == 1 && Exists(report_));
  // What the runs leave: no work folder, no opened package, no probe folder.
  EXPECT_TRUE(WorkFolders(temp_).empty());
  EXPECT_FALSE(Exists(temp_ + "/chktemp") || Exists(temp_ + "/unzip"));
}

// A report that cannot be made or written fails in the XML library's own file layer, which no step
// turns into a code: unknown failure.
TEST_F(HostileRuns, ReportThatCannotBeWrittenIsUnknownFailure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});  // one warning
  ASSERT_EQ(::mkfifo(scratch_.Sub("pipe.xml").c_str(), 0600), 0);  // nobody reads it
  for (const std::string& report : {std::string("/dev/full"), scratch_.Sub("missing/report.xml"),
                                    scratch_.Sub("pipe.xml")})
    EXPECT_EQ(RunQv({project_, "-check" + report}, RunEnv(temp_)).status, Status(-999)) << report;
}

}  // namespace
}  // namespace qvtest
