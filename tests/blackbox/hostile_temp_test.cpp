// Another user of the machine plants the fixed names of the shared temporary folder before a run:
// as links to the user's own folder or file, as dangling links, as folders of their own.  Every run
// that uses the name ends with -3 before it extracts, writes or removes anything, and what the
// links point to keeps exactly what it held; a run that does not use the name is not disturbed.  A
// killed probe's leftovers cannot turn a plain archive into a package.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

constexpr uid_t kOtherUser = 65534;

enum Way { kOpenPackage, kOpenPlain, kPackage };

struct FixedName {
  const char* name;
  std::vector<Way> users;  // the runs that use the name
};

const FixedName kNames[] = {
    {"chktemp", {kOpenPackage, kOpenPlain}},
    {"chktemp.lock", {kOpenPackage, kOpenPlain}},
    {"unzip", {kOpenPackage}},
    {"unzip.lock", {kOpenPackage}},
    {"conv", {kOpenPackage}},
    {"QvConv", {kPackage}},
};

enum Plant { kLinkToFolder, kLinkToFile, kDangling, kOtherUsersFolder, kFolderAnyoneWrites };
const char* const kPlantNames[] = {"link to a folder", "link to a file", "dangling link",
                                   "another user's folder", "folder anyone may write"};

class HostileTemp : public BlackBoxTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(Package(kSample).status, 0);
    WriteFile(scratch_.Sub("plain/dir/file.txt"), "plain");
    ZipFolderContents(scratch_.Sub("plain"), plain_);
    WriteFile(victim_ + "/keep.txt", "keep");
    WriteFile(victim_file_, "victim");
  }

  bool Plants(Plant plant, const std::string& at) {
    const std::string targets[] = {victim_, victim_file_, dangling_};  // of the three links
    if (plant <= kDangling) return ::symlink(targets[plant].c_str(), at.c_str()) == 0;
    if (plant == kOtherUsersFolder)
      return ::mkdir(at.c_str(), 0755) == 0 && ::chown(at.c_str(), kOtherUser, -1) == 0;
    return ::mkdir(at.c_str(), 0700) == 0 && ::chmod(at.c_str(), 0777) == 0;
  }

  std::string Identity(const std::string& path) {
    struct stat st;
    return ::lstat(path.c_str(), &st) != 0
               ? "none"
               : std::to_string(st.st_mode) + "/" + std::to_string(st.st_ino);
  }

  // Runs one way with a fresh destination holding old.txt; the exit status.
  int Start(Way run) {
    RemoveAll(dest_);
    WriteFile(dest_ + "/old.txt", "old");
    RemoveAll(zip2_);
    return (run == kPackage ? RunQv({kSample, "-package" + zip2_}, RunEnv(temp_))
                            : Unpackage(run == kOpenPlain ? plain_ : zip_, dest_))
        .status;
  }
  // The run's result is in place.
  bool Delivered(Way run) {
    if (run == kPackage) return Exists(zip2_);
    return run == kOpenPlain ? ListDir(dest_) == std::vector<std::string>{"dir/"}
                             : Exists(dest_ + "/old.txt") && FilesBelow(dest_).size() > 10;
  }
  bool Untouched() {
    return ListDir(dest_) == std::vector<std::string>{"old.txt"} && !Exists(zip2_);
  }

  std::string plain_ = scratch_.Sub("plain.zip"), zip2_ = scratch_.Sub("again.zip"),
              dest_ = scratch_.Sub("dest");
  std::string victim_ = scratch_.Sub("victim"), victim_file_ = scratch_.Sub("victim.txt");
  std::string dangling_ = scratch_.Sub("nothing_yet");
};

TEST_F(HostileTemp, PlantedNamesEndTheRunsThatUseThemAndTouchNothing) {
  for (const FixedName& fixed : kNames) {
    for (const Plant plant :
         {kLinkToFolder, kLinkToFile, kDangling, kOtherUsersFolder, kFolderAnyoneWrites}) {
      if (plant == kOtherUsersFolder && ::geteuid() != 0) continue;  // only root can make one
      for (const Way run : {kOpenPackage, kOpenPlain, kPackage}) {
        const std::string at = temp_ + "/" + fixed.name;
        RemoveAll(temp_);
        MakeDirs(temp_);
        ASSERT_TRUE(Plants(plant, at)) << fixed.name;
        const std::string planted = Identity(at);
        const bool used =
            std::find(fixed.users.begin(), fixed.users.end(), run) != fixed.users.end();
        const std::string where =
            std::string(fixed.name) + " as " + kPlantNames[plant] + ", run " + std::to_string(run);

        EXPECT_EQ(Start(run), used ? Status(-3) : 0) << where;
        EXPECT_TRUE(used ? Untouched() : Delivered(run)) << where;
        EXPECT_EQ(Identity(at), planted) << where;
        EXPECT_EQ(ListDir(victim_), std::vector<std::string>{"keep.txt"}) << where;
        EXPECT_EQ(ReadFile(victim_ + "/keep.txt"), "keep") << where;
        EXPECT_EQ(ReadFile(victim_file_), "victim") << where;
        EXPECT_FALSE(Exists(dangling_)) << where;
        if (plant == kOtherUsersFolder || plant == kFolderAnyoneWrites) {
          EXPECT_TRUE(ListDir(at).empty()) << where;
        }
      }
    }
  }
}

// The same as it happens between two users: the program runs as an unprivileged user, and the
// folder that stands under a fixed name is root's.
TEST_F(HostileTemp, AnUnprivilegedRunRefusesRootsFolder) {
  if (::geteuid() != 0 || qvtest::Run({"setpriv", "--version"}).status != 0)
    GTEST_SKIP() << "needs root and setpriv";
  ASSERT_EQ(::chmod(scratch_.path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(temp_.c_str(), 01777), 0);
  MakeDirs(dest_);
  ASSERT_EQ(::chown(dest_.c_str(), kOtherUser, kOtherUser), 0);
  auto open_as_other = [&] {
    return qvtest::Run({"setpriv", "--reuid=" + std::to_string(kOtherUser),
                        "--regid=" + std::to_string(kOtherUser), "--clear-groups", QV_BINARY,
                        plain_, "-unpackage" + dest_},
                       RunEnv(temp_));
  };
  EXPECT_EQ(open_as_other().status, 0);
  EXPECT_EQ(ReadFile(dest_ + "/dir/file.txt"), "plain");
  MakeDirs(temp_ + "/chktemp");
  WriteFile(dest_ + "/old.txt", "old");
  EXPECT_EQ(open_as_other().status, Status(-3));
  EXPECT_TRUE(Exists(dest_ + "/old.txt"));
  EXPECT_TRUE(ListDir(temp_ + "/chktemp").empty());
}

// The probe folder is not cleared before a probe: a marker that a killed probe left there makes
// the next plain archive a package, which then has no documents (-300). The probe removes
// everything afterwards, names that are not UTF-8 and locked folders included, so the run after
// that is right again.
TEST_F(HostileTemp, KilledProbesLeftoversCountOnceAndAreThenRemoved) {
  WriteFile(temp_ + "/chktemp/QvFormat/QvS.xml", "<QvS/>");
  WriteFile(temp_ + "/chktemp/QvFormat/QvT/\xff\xfe.xml", "");
  ::chmod((temp_ + "/chktemp/QvFormat/QvT").c_str(), 0500);
  ASSERT_EQ(::chmod((temp_ + "/chktemp").c_str(), 0700), 0);
  EXPECT_EQ(Start(kOpenPlain), Status(-300));  // its unzip folder stays, as a failed run's does
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
  EXPECT_EQ(Start(kOpenPlain), 0);
  EXPECT_TRUE(Delivered(kOpenPlain));
  EXPECT_EQ(ReadFile(dest_ + "/dir/file.txt"), "plain");
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
}

}  // namespace
}  // namespace qvtest
