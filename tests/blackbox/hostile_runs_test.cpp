// Several qvConvApp processes started at once in one temporary folder:
// conversions, checks and openings of different packages.  The fixed folders
// of the temporary folder are shared, so the runs take turns on them; each
// must give exactly what it gives alone.
#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const std::string kSample = std::string(QV_SOURCE_DIR) + "/examples/sample";

std::vector<std::string> Unstamped(const std::string& folder) {
  std::vector<std::string> out;
  for (const std::string& file : FilesBelow(folder)) out.push_back(ReplaceStamps(file, "S"));
  std::sort(out.begin(), out.end());
  return out;
}

class HostileRuns : public BlackBoxTest {};

TEST_F(HostileRuns, ConversionsChecksAndOpeningsSideBySide) {
  constexpr int kEach = 3;
  // Each run has a project of its own: the sample with a telop of its own
  // text, so that a package holding another run's files shows.
  std::vector<std::string> projects;
  for (int i = 0; i < kEach; ++i) {
    const std::string project = scratch_.Sub("project" + std::to_string(i));
    ASSERT_EQ(qvtest::Run({"cp", "-r", kSample, project}).status, 0);
    WriteFile(project + "/contents/お知らせ.tlp",
              Cp932(TelopText(48, 0, {"run " + std::to_string(i)})));
    projects.push_back(project);
  }
  // Packages to open, made one at a time beforehand.
  std::vector<std::string> packages;
  for (int i = 0; i < kEach; ++i) {
    const std::string zip = scratch_.Sub("in" + std::to_string(i) + ".zip");
    ASSERT_EQ(RunQv({projects[i], "-package" + zip}, RunEnv(temp_)).status, 0);
    packages.push_back(zip);
  }
  const std::vector<std::string> members = ZipMembers(packages[0]);
  const std::string alone = scratch_.Sub("alone");
  MakeDirs(alone);
  ASSERT_EQ(RunQv({packages[0], "-unpackage" + alone}, RunEnv(temp_)).status, 0);
  const std::vector<std::string> project_files = Unstamped(alone);

  // A project whose check finds a warning, checked side by side as well.
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});

  std::vector<int> convert(kEach, -1), opened(kEach, -1);
  int check = -1;
  std::vector<std::thread> runs;
  for (int i = 0; i < kEach; ++i) {
    runs.emplace_back([&, i] {
      convert[i] = RunQv({projects[i], "-package" + scratch_.Sub("out" + std::to_string(i) + ".zip")},
                         RunEnv(temp_)).status;
    });
    runs.emplace_back([&, i] {
      const std::string back = scratch_.Sub("back" + std::to_string(i));
      MakeDirs(back);
      opened[i] = RunQv({packages[i], "-unpackage" + back}, RunEnv(temp_)).status;
    });
  }
  runs.emplace_back([&] { check = RunQv({project_, "-check" + report_}, RunEnv(temp_)).status; });
  for (std::thread& run : runs) run.join();

  for (int i = 0; i < kEach; ++i) {
    const std::string n = std::to_string(i);
    EXPECT_EQ(convert[i], 0) << i;
    const std::string out = scratch_.Sub("out" + n + ".zip");
    EXPECT_EQ(ZipMembers(out), members) << i;
    const std::string extracted = scratch_.Sub("x" + n);
    MakeDirs(extracted);
    Unzip(out, extracted);
    EXPECT_NE(ReadFile(extracted + "/QvFormat/QvC/CT5.tlp").find("run " + n), std::string::npos)
        << i << ": the package holds another run's telop";

    EXPECT_EQ(opened[i], 0) << i;
    const std::string back = scratch_.Sub("back" + n);
    EXPECT_EQ(Unstamped(back), project_files) << i;
    bool own_telop = false;
    for (const std::string& file : FilesBelow(back + "/contents")) {
      if (file.size() > 4 && file.substr(file.size() - 4) == ".tlp") {
        own_telop = ReadFile(back + "/contents/" + file).find("run " + n) != std::string::npos;
      }
    }
    EXPECT_TRUE(own_telop) << i << ": the project holds another package's telop";
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
