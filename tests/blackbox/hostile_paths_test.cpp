// Paths that strain the program: folders deeper than the old 260-character limit and than the
// system's 4,096, Japanese names everywhere, and a report that cannot be written.
#include <fcntl.h>
#include <unistd.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

// Extends `path` by Japanese folders of about 180 bytes each until it is longer than `length`, made
// one step at a time from an open folder, as no single call takes so long a path.  The last stays
// open.
int MakeDeepFolder(std::string& path, std::size_t length) {
  int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; folder >= 0 && path.size() <= length; ++i) {
    const std::string name =
        "とても長いフォルダの名前_" + std::string(140, 'x') + std::to_string(i);
    mkdirat(folder, name.c_str(), 0755);
    const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    close(folder);
    folder = next;
    path += "/" + name;
  }
  return folder;
}

class HostilePaths : public BlackBoxTest {};

// Each run in long or Japanese paths gives what the sample gives in short folders.
TEST_F(HostilePaths, JapaneseNamesAndPathsBeyond260And4096Characters) {
  ASSERT_EQ(Package(kSample).status, 0);
  ASSERT_EQ(UnpackageTo(zip_, scratch_.Sub("reference")).status, 0);
  const std::vector<std::string> members = ZipMembers(zip_),
                                 project = Unstamped(scratch_.Sub("reference"));
  // Packs `input` into `zip` and opens that into `back`, with the temporary folder `temp`.
  auto there_and_back = [&](const std::string& input, const std::string& zip,
                            const std::string& back, const std::string& temp) {
    RunResult r = RunQv({input, "-package" + zip}, RunEnv(temp));
    EXPECT_EQ(r.status, 0) << r.output;
    EXPECT_EQ(ZipMembers(zip), members) << zip;
    r = RunQv({zip, "-unpackage" + back}, RunEnv(temp));
    EXPECT_EQ(r.status, 0) << r.output;
  };
  std::string deep = scratch_.Sub("案件");
  for (int i = 0; deep.size() < 900; ++i)
    deep += "/春のキャンペーン用の長いフォルダ名_" + std::to_string(i);
  MakeDirs(deep + "/戻り先");
  ASSERT_EQ(RunProgram({"cp", "-r", kSample, deep + "/サンプル"}).status, 0);
  there_and_back(deep + "/サンプル", deep + "/パッケージ.zip", deep + "/戻り先", temp_);
  EXPECT_EQ(Unstamped(deep + "/戻り先"), project);
  // The same with the temporary folder itself deep and Japanese.
  MakeDirs(scratch_.Sub("二つ目"));
  there_and_back(deep + "/サンプル", scratch_.Sub("二つ目.zip"), scratch_.Sub("二つ目"),
                 deep + "/一時");
  EXPECT_EQ(Unstamped(scratch_.Sub("二つ目")), project);

  // A project and a destination whose full paths are longer than the 4,096 bytes one system call
  // takes, reached here through our open descriptor: no long path on the way.
  std::string deeper = scratch_.path();
  const int folder = MakeDeepFolder(deeper, 4200);
  ASSERT_GE(folder, 0);
  ASSERT_GT(deeper.size(), 4096u);
  const std::string via = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(folder);
  ASSERT_EQ(RunProgram({"cp", "-r", kSample, via + "/sample"}).status, 0);
  MakeDirs(via + "/back");
  there_and_back(deeper + "/sample", scratch_.Sub("deep.zip"), deeper + "/back", temp_);
  ASSERT_EQ(RunProgram({"cp", "-r", via + "/back", scratch_.Sub("copy")}).status, 0);
  EXPECT_EQ(Unstamped(scratch_.Sub("copy")), project);
  close(folder);
}

// A report that cannot be made or written fails in the XML library's own file layer, which no step
// turns into a code: unknown failure.
TEST_F(HostilePaths, ReportThatCannotBeWrittenIsUnknownFailure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});  // one warning
  for (const std::string& report : {std::string("/dev/full"), scratch_.Sub("missing/report.xml")}) {
    const RunResult r = RunQv({project_, "-check" + report}, RunEnv(temp_));
    EXPECT_EQ(r.status, Status(-999)) << report << r.output;
    EXPECT_EQ(r.output, "");
  }
}

}  // namespace
}  // namespace qvtest
