// Another user plants the fixed names of the shared temporary folder before a run: as links, as
// folders of their own or that anyone may write, as files others may write, as pipes.  Every run
// that uses the name ends with -3 before it extracts, writes or removes anything, and what the
// links point to keeps exactly what it held; a run that does not use the name is not disturbed.  A
// killed probe's leftovers cannot turn a plain archive into a package.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

constexpr uid_t kOtherUser = 65534;

enum Way { kOpenPackage, kOpenPlain, kPackage };

// The fixed names and the runs that use each.
const std::pair<const char*, std::vector<Way>> kNames[] = {
    {"chktemp", {kOpenPackage, kOpenPlain}},
    {"chktemp.lock", {kOpenPackage, kOpenPlain}},
    {"unzip", {kOpenPackage}},
    {"unzip.lock", {kOpenPackage}},
    {"conv", {kOpenPackage}},
    {"QvConv", {kPackage}},
};

class HostileTemp : public BlackBoxTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(Package(kSample).status, 0);
    WriteFile(scratch_.Sub("plain/dir/file.txt"), "plain");
    ZipFolderContents(scratch_.Sub("plain"), plain_);
    WriteFile(victim_ + "/keep.txt", "keep"), WriteFile(victim_file_, "victim");
  }

  // The kind and inode of what stands under a name, to see that it was left alone.
  std::string Identity(const std::string& path) {
    struct stat st;
    return ::lstat(path.c_str(), &st) ? "none" : std::to_string(st.st_mode ^ st.st_ino << 16);
  }

  // Runs one way with a fresh destination holding old.txt; the exit status.
  int Start(Way run) {
    RemoveAll(dest_), RemoveAll(zip2_);
    WriteFile(dest_ + "/old.txt", "old");
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

  std::string plain_ = scratch_.Sub("plain.zip"), zip2_ = scratch_.Sub("again.zip"),
              dest_ = scratch_.Sub("dest");
  std::string victim_ = scratch_.Sub("victim"), victim_file_ = scratch_.Sub("victim.txt");
  std::string dangling_ = scratch_.Sub("nothing_yet");
};

TEST_F(HostileTemp, PlantedNamesEndTheRunsThatUseThemAndTouchNothing) {
  const char *victim = victim_.c_str(), *file = victim_file_.c_str();
  const std::pair<const char*, std::function<bool(const char*)>> plants[] = {
      {"link to a folder", [&](const char* at) { return ::symlink(victim, at) == 0; }},
      {"link to a file", [&](const char* at) { return ::symlink(file, at) == 0; }},
      {"dangling link", [&](const char* at) { return ::symlink(dangling_.c_str(), at) == 0; }},
      {"hard link to a file", [&](const char* at) { return ::link(file, at) == 0; }},
      {"folder anyone may write",
       [](const char* at) { return ::mkdir(at, 0700) == 0 && ::chmod(at, 0777) == 0; }},
      {"file the group may write",
       [](const char* at) { return ::close(::creat(at, 0600)) == 0 && ::chmod(at, 0620) == 0; }},
      {"pipe", [](const char* at) { return ::mkfifo(at, 0600) == 0; }},
      {"another user's folder",  // only root can make one
       [](const char* at) {
         return ::geteuid() != 0 || (::mkdir(at, 0755) == 0 && ::chown(at, kOtherUser, -1) == 0);
       }},
  };
  for (const auto& [name, users] : kNames) {
    for (const auto& [what, plant] : plants) {
      for (const Way run : {kOpenPackage, kOpenPlain, kPackage}) {
        const std::string at = temp_ + "/" + name;
        RemoveAll(temp_), MakeDirs(temp_);
        ASSERT_TRUE(plant(at.c_str())) << name;
        const std::string planted = Identity(at);
        const bool used = std::find(users.begin(), users.end(), run) != users.end();
        const std::string where =
            std::string(name) + " as " + what + ", run " + std::to_string(run);
        if (planted == "none") continue;  // not made here
        EXPECT_EQ(Start(run), used ? Status(-3) : 0) << where;
        EXPECT_TRUE(used ? ListDir(dest_) == std::vector<std::string>{"old.txt"} && !Exists(zip2_)
                         : Delivered(run))
            << where;
        EXPECT_EQ(Identity(at), planted) << where;
        EXPECT_EQ(Contents(victim_), std::vector<std::string>{"keep.txt=keep"}) << where;
        EXPECT_EQ(ReadFile(victim_file_), "victim") << where;
        EXPECT_FALSE(Exists(dangling_)) << where;
        EXPECT_TRUE(!IsDir(at) || std::filesystem::is_symlink(at) || ListDir(at).empty()) << where;
      }
    }
  }
}

// The probe folder is not cleared before a probe: a marker that a killed probe left there makes
// the next plain archive a package, which then has no documents (-300; its unzip folder stays, as
// a failed run's does).  The probe removes everything afterwards, names that are not UTF-8 and
// locked folders included, so the run after that is right again.
TEST_F(HostileTemp, KilledProbesLeftoversCountOnceAndAreThenRemoved) {
  WriteFile(temp_ + "/chktemp/QvFormat/QvS.xml", "<QvS/>");
  WriteFile(temp_ + "/chktemp/QvFormat/QvT/\xff\xfe.xml", "");
  ::chmod((temp_ + "/chktemp/QvFormat/QvT").c_str(), 0500);
  ASSERT_EQ(::chmod((temp_ + "/chktemp").c_str(), 0700), 0);
  EXPECT_EQ(Start(kOpenPlain), Status(-300));
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
  EXPECT_EQ(Start(kOpenPlain), 0);
  EXPECT_TRUE(Delivered(kOpenPlain));
  EXPECT_EQ(ReadFile(dest_ + "/dir/file.txt"), "plain");
  EXPECT_FALSE(Exists(temp_ + "/chktemp"));
}

}  // namespace
}  // namespace qvtest
