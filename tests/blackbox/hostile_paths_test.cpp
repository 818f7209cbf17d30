// Paths that strain the program: folders deeper than the old 260-character
// limit and than the system's 4,096, Japanese names everywhere, and a report
// that cannot be written.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

const std::string kSample = std::string(QV_SOURCE_DIR) + "/examples/sample";

// The files of a project read back, with the time stamps of their names
// replaced, so that two runs compare.
std::vector<std::string> Unstamped(const std::string& folder) {
  std::vector<std::string> out;
  for (const std::string& file : FilesBelow(folder)) out.push_back(ReplaceStamps(file, "S"));
  std::sort(out.begin(), out.end());
  return out;
}

// A chain of folders below `base` whose full path is longer than `length`
// bytes, made one step at a time relative to an open folder, so that no
// single call sees a path longer than the system allows.  Each step is a
// Japanese name of about 180 bytes.
std::string MakeDeepFolder(const std::string& base, std::size_t length) {
  std::string path = base;
  int folder = open(base.c_str(), O_RDONLY | O_DIRECTORY);
  EXPECT_GE(folder, 0);
  for (int i = 0; path.size() <= length; ++i) {
    const std::string name = "とても長いフォルダの名前_" + std::string(140, 'x') + std::to_string(i);
    EXPECT_EQ(mkdirat(folder, name.c_str(), 0755), 0) << name;
    const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    EXPECT_GE(next, 0);
    close(folder);
    folder = next;
    path += "/" + name;
  }
  close(folder);
  return path;
}

// Opens the absolute `path` one folder at a time; -1 when a step is missing.
int OpenDeep(const std::string& path) {
  int folder = open("/", O_RDONLY | O_DIRECTORY);
  std::size_t start = 1;
  while (folder >= 0 && start < path.size()) {
    std::size_t end = path.find('/', start);
    if (end == std::string::npos) end = path.size();
    const int next = openat(folder, path.substr(start, end - start).c_str(), O_RDONLY | O_DIRECTORY);
    close(folder);
    folder = next;
    start = end + 1;
  }
  return folder;
}

// Copies the tree `source` (a short path) into the folder open as `target`.
void CopyInto(const std::string& source, int target) {
  for (const std::string& entry : ListDir(source)) {
    if (entry.back() == '/') {
      const std::string name = entry.substr(0, entry.size() - 1);
      ASSERT_EQ(mkdirat(target, name.c_str(), 0755), 0);
      const int sub = openat(target, name.c_str(), O_RDONLY | O_DIRECTORY);
      CopyInto(source + "/" + name, sub);
      close(sub);
    } else {
      const std::string bytes = ReadFile(source + "/" + entry);
      const int file = openat(target, entry.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      ASSERT_GE(file, 0);
      ASSERT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
      close(file);
    }
  }
}

// Lists the files below the deep folder `path` by copying them out to a
// short scratch path first.
std::vector<std::string> DeepFiles(const std::string& path, const std::string& copy) {
  const int folder = OpenDeep(path);
  if (folder < 0) return {};
  // The folder reached through our open descriptor: no long path on the way.
  const std::string via = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(folder);
  RunResult r = qvtest::Run({"cp", "-r", via + "/.", copy});
  close(folder);
  if (r.status != 0) return {};
  return Unstamped(copy);
}

class HostilePaths : public BlackBoxTest {
 protected:
  // The sample converted and opened again in short folders: what a long
  // path must give as well.
  void Reference(std::vector<std::string>* members, std::vector<std::string>* project) {
    const std::string zip = scratch_.Sub("reference.zip");
    ASSERT_EQ(RunQv({kSample, "-package" + zip}, RunEnv(temp_)).status, 0);
    *members = ZipMembers(zip);
    const std::string back = scratch_.Sub("reference");
    MakeDirs(back);
    ASSERT_EQ(RunQv({zip, "-unpackage" + back}, RunEnv(temp_)).status, 0);
    *project = Unstamped(back);
  }
};

TEST_F(HostilePaths, JapaneseNamesAndPathsBeyond260Characters) {
  std::vector<std::string> members, project;
  Reference(&members, &project);

  std::string deep = scratch_.Sub("案件");
  for (int i = 0; deep.size() < 900; ++i) deep += "/春のキャンペーン用の長いフォルダ名_" + std::to_string(i);
  MakeDirs(deep);
  ASSERT_EQ(qvtest::Run({"cp", "-r", kSample, deep + "/サンプル"}).status, 0);

  const std::string zip = deep + "/パッケージ.zip";
  RunResult r = RunQv({deep + "/サンプル", "-package" + zip}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip), members);

  const std::string back = deep + "/戻り先";
  MakeDirs(back);
  r = RunQv({zip, "-unpackage" + back}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(Unstamped(back), project);

  // The same run with the temporary folder itself deep and Japanese.
  const std::string temp = deep + "/一時";
  const std::string zip2 = scratch_.Sub("二つ目.zip");
  r = RunQv({deep + "/サンプル", "-package" + zip2}, RunEnv(temp));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip2), members);
}

// A project, a package and a destination whose full paths are longer than
// the 4,096 bytes that one system call takes.
TEST_F(HostilePaths, PathsBeyond4096Characters) {
  std::vector<std::string> members, project;
  Reference(&members, &project);

  const std::string deep = MakeDeepFolder(scratch_.path(), 4200);
  ASSERT_GT(deep.size(), 4096u);
  {
    const int folder = OpenDeep(deep);
    ASSERT_GE(folder, 0);
    ASSERT_EQ(mkdirat(folder, "sample", 0755), 0);
    const int sample = openat(folder, "sample", O_RDONLY | O_DIRECTORY);
    CopyInto(kSample, sample);
    ASSERT_EQ(mkdirat(folder, "back", 0755), 0);
    close(sample);
    close(folder);
  }

  const std::string zip = scratch_.Sub("deep.zip");
  RunResult r = RunQv({deep + "/sample", "-package" + zip}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip), members);

  r = RunQv({zip, "-unpackage" + deep + "/back"}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string copy = scratch_.Sub("copy");
  MakeDirs(copy);
  EXPECT_EQ(DeepFiles(deep + "/back", copy), project);
}

TEST_F(HostilePaths, ReportOnAFullDeviceIs502) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});  // one warning
  RunResult r = RunQv({project_, "-check/dev/full"}, RunEnv(temp_));
  EXPECT_EQ(r.status, Status(-502)) << r.output;
  EXPECT_EQ(r.output, "");
}

}  // namespace
}  // namespace qvtest
