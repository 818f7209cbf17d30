// Paths that strain the program: folders deeper than the old 260-character limit and than the
// system's 4,096, Japanese names everywhere, and a report that cannot be written.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

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
  const std::string reference_zip = scratch_.Sub("reference.zip"),
                    reference = scratch_.Sub("reference");
  ASSERT_EQ(RunQv({kSample, "-package" + reference_zip}, RunEnv(temp_)).status, 0);
  MakeDirs(reference);
  ASSERT_EQ(Unpackage(reference_zip, reference).status, 0);
  const std::vector<std::string> members = ZipMembers(reference_zip),
                                 project = Unstamped(reference);

  std::string deep = scratch_.Sub("案件");
  for (int i = 0; deep.size() < 900; ++i)
    deep += "/春のキャンペーン用の長いフォルダ名_" + std::to_string(i);
  const std::string zip = deep + "/パッケージ.zip", back = deep + "/戻り先",
                    zip2 = scratch_.Sub("二つ目.zip");
  MakeDirs(back);
  ASSERT_EQ(qvtest::Run({"cp", "-r", kSample, deep + "/サンプル"}).status, 0);
  RunResult r = RunQv({deep + "/サンプル", "-package" + zip}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip), members);
  r = Unpackage(zip, back);
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(Unstamped(back), project);
  // The same with the temporary folder itself deep and Japanese.
  r = RunQv({deep + "/サンプル", "-package" + zip2}, RunEnv(deep + "/一時"));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip2), members);

  // A project and a destination whose full paths are longer than the 4,096 bytes one system call
  // takes.
  std::string deeper = scratch_.path();
  const int folder = MakeDeepFolder(deeper, 4200);
  ASSERT_GE(folder, 0);
  ASSERT_GT(deeper.size(), 4096u);
  // The deep folder reached through our open descriptor: no long path on the way.
  const std::string via = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(folder);
  ASSERT_EQ(qvtest::Run({"cp", "-r", kSample, via + "/sample"}).status, 0);
  MakeDirs(via + "/back");
  r = RunQv({deeper + "/sample", "-package" + zip_}, RunEnv(temp_));
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(ZipMembers(zip_), members);
  r = Unpackage(zip_, deeper + "/back");
  ASSERT_EQ(r.status, 0) << r.output;
  const std::string copy = scratch_.Sub("copy");
  ASSERT_EQ(qvtest::Run({"cp", "-r", via + "/back", copy}).status, 0);
  EXPECT_EQ(Unstamped(copy), project);
  close(folder);
}

// A report that cannot be made or written fails in the XML library's own file
// layer, which no step turns into a code: unknown failure.
TEST_F(HostilePaths, ReportThatCannotBeWrittenIsUnknownFailure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry(DateFromToday(-1), "TimeTable_a.csv")});  // one warning
  for (const std::string& report : {std::string("/dev/full"), scratch_.Sub("missing/report.xml")}) {
    MakeDirs(temp_);
    RunResult r = RunQv({project_, "-check" + report}, RunEnv(temp_));
    EXPECT_EQ(r.status, Status(-999)) << report << r.output;
    EXPECT_EQ(r.output, "");
  }
}

}  // namespace
}  // namespace qvtest
