// Several qvConvApp processes started at once in one temporary folder: conversions, checks and
// openings of different packages.  They take turns on its fixed folders; each must give exactly
// what it gives alone.
#include <thread>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

class HostileRuns : public BlackBoxTest {};

TEST_F(HostileRuns, ConversionsChecksAndOpeningsSideBySide) {
  constexpr int kEach = 3;
  auto sub = [&](const std::string& name, int i) { return scratch_.Sub(name + std::to_string(i)); };
  auto zip = [&](const std::string& name, int i) { return sub(name, i) + ".zip"; };
  // Each run packs the sample with a telop of its own text, so that another run's files show; the
  // packages to open are made one at a time beforehand.
  for (int i = 0; i < kEach; ++i) {
    ASSERT_EQ(RunProgram({"cp", "-r", kSample, sub("project", i)}).status, 0);
    WriteFile(sub("project", i) + "/contents/お知らせ.tlp",
              Cp932(TelopText(48, 0, {"run " + std::to_string(i)})));
    ASSERT_EQ(RunQv({sub("project", i), "-package" + zip("in", i)}, RunEnv(temp_)).status, 0);
    MakeDirs(sub("back", i));
  }
  const std::vector<std::string> members = ZipMembers(zip("in", 0));
  MakeDirs(scratch_.Sub("alone"));
  ASSERT_EQ(Unpackage(zip("in", 0), scratch_.Sub("alone")).status, 0);
  const std::vector<std::string> project_files = Unstamped(scratch_.Sub("alone"));
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
    EXPECT_EQ(ZipMembers(zip("out", i)), members) << i;
    Unzip(zip("out", i), sub("x", i));
    EXPECT_NE(ReadFile(sub("x", i) + "/QvFormat/QvC/CT5.tlp").find(own), std::string::npos)
        << i << ": the package holds another run's telop";
    EXPECT_EQ(opened[i], 0) << i;
    EXPECT_EQ(Unstamped(sub("back", i)), project_files) << i;
    int own_telops = 0;
    for (const std::string& file : FilesBelow(sub("back", i) + "/contents"))
      own_telops += file.ends_with(".tlp") &&
                    ReadFile(sub("back", i) + "/contents/" + file).find(own) != own.npos;
    EXPECT_EQ(own_telops, 1) << i << ": the project holds another package's telop";
  }
  EXPECT_EQ(check, 1);
  EXPECT_TRUE(Exists(report_));
  // What the runs leave: no work folder, no opened package, no probe folder.
  EXPECT_TRUE(WorkFolders(temp_).empty());
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
  EXPECT_FALSE(Exists(temp_ + "/unzip"));
}

}  // namespace
}  // namespace qvtest
