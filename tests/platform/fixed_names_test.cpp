// Fixed names in a shared folder (private folders and lock files): whatever someone planted under
// the name beforehand is refused and left exactly as it was, and so is what it points to; a free
// name is made ours alone.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_lock.h"
#include "platform/private_folder.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::ScratchDir;
using qvtest::U16;
using qvtest::U8;

class FixedNames : public testing::Test {
 protected:
  FixedNames() {
    qvtest::MakeDirs(shared_);
    qvtest::WriteFile(victim_ + "/keep.txt", "keep");
    qvtest::WriteFile(victim_file_, "victim");
  }

  bool VictimIntact() {
    return qvtest::ListDir(victim_) == std::vector<std::string>{"keep.txt"} &&
           qvtest::ReadFile(victim_ + "/keep.txt") == "keep" &&
           qvtest::ReadFile(victim_file_) == "victim" && !qvtest::Exists(scratch_.Sub("missing"));
  }

  // The kind and inode of what stands under a name, to see that it was left alone.
  std::string Identity(const std::string& path) {
    struct stat st;
    if (::lstat(path.c_str(), &st) != 0) return "none";
    return std::to_string(st.st_mode) + ":" + std::to_string(st.st_ino) + ":" +
           std::to_string(st.st_uid);
  }

  ScratchDir scratch_;
  std::string shared_ = scratch_.Sub("shared"), victim_ = scratch_.Sub("victim");
  std::string victim_file_ = scratch_.Sub("victim.txt"), name_ = shared_ + "/fixed";
};

bool Made(int result) { return result == 0; }

// Links to a folder or file and folders that others may write, planted before whole runs:
// tests/blackbox/hostile_temp_test.cpp.
TEST_F(FixedNames, PlantedNamesAreRefusedAndLeftAlone) {
  const char *at = name_.c_str(), *file = victim_file_.c_str();
  const std::string dangling = victim_ + "/../missing";
  const struct {
    const char* what;
    std::function<bool()> plant;
    bool folder_ready = false, lock_ready = false;
  } plantings[] = {
      {"own folder", [&] { return Made(::mkdir(at, 0755)); }, true},
      {"own file", [&] { return Made(::close(::creat(at, 0644))); }, false, true},
      {"dangling link", [&] { return Made(::symlink(dangling.c_str(), at)); }},
      {"hard link to a file", [&] { return Made(::link(file, at)); }},
      {"file writable by the group",
       [&] { return Made(::close(::creat(at, 0600))) && Made(::chmod(at, 0620)); }},
      {"pipe", [&] { return Made(::mkfifo(at, 0600)); }},
  };
  const SharedFolder shared(U16(shared_));
  ASSERT_EQ(shared.status(), FixedName::kReady);
  for (const auto& p : plantings) {
    for (const bool as_lock : {false, true}) {
      ASSERT_TRUE(p.plant()) << p.what;
      const std::string before = Identity(name_);
      const bool ready = as_lock ? p.lock_ready : p.folder_ready;
      if (as_lock) {
        const FileLock lock(shared, u"fixed");
        EXPECT_EQ(lock.status(), ready ? FixedName::kReady : FixedName::kUnsafe) << p.what;
      } else {
        PrivateFolder folder(shared, u"fixed");
        EXPECT_EQ(folder.status(), ready ? FixedName::kReady : FixedName::kUnsafe) << p.what;
        EXPECT_EQ(folder.ChildPath().empty(), !ready) << p.what;
        EXPECT_EQ(folder.Empty(), ready) << p.what;
      }
      // A lock that was had takes its file with it; anything refused stays as it was.
      EXPECT_EQ(Identity(name_), ready && as_lock ? "none" : before)
          << p.what << (as_lock ? " lock" : "");
      EXPECT_TRUE(VictimIntact()) << p.what;
      qvtest::RemoveAll(name_);
    }
  }
}

TEST_F(FixedNames, FreeFolderNameIsMadeOursAlone) {
  const SharedFolder shared(U16(shared_));
  {
    PrivateFolder folder(shared, u"fixed");
    ASSERT_EQ(folder.status(), FixedName::kReady);
    struct stat st;
    ASSERT_EQ(::stat(name_.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0700u);
    // A child process reaches this very folder, even once its name stands for something else.
    ASSERT_EQ(::rename(name_.c_str(), (name_ + ".moved").c_str()), 0);
    ASSERT_EQ(::symlink(victim_.c_str(), name_.c_str()), 0);
    EXPECT_EQ(qvtest::Run({"sh", "-c", "echo x > \"$0/made\"", U8(folder.ChildPath())}).status, 0);
    EXPECT_EQ(qvtest::ReadFile(name_ + ".moved/made"), "x\n");
    EXPECT_FALSE(folder.Remove());  // the name is no longer ours: neither it nor the link goes
    EXPECT_TRUE(qvtest::Exists(name_ + ".moved"));
    ::unlink(name_.c_str());
    ASSERT_EQ(::rename((name_ + ".moved").c_str(), name_.c_str()), 0);
    EXPECT_TRUE(folder.Remove());
    EXPECT_FALSE(qvtest::Exists(name_));
  }
  EXPECT_TRUE(VictimIntact());
}

// The shared folder may be shared with its sticky bit; anyone may write it without: then it holds
// nothing of ours.
TEST_F(FixedNames, SharedFolderThatAnyoneMayRearrangeIsRefused) {
  const struct {
    mode_t mode;
    FixedName expected;
  } cases[] = {{0755, FixedName::kReady},
               {01777, FixedName::kReady},
               {0770, FixedName::kReady},
               {0777, FixedName::kUnsafe},
               {0703, FixedName::kUnsafe}};
  for (const auto& c : cases) {
    ASSERT_EQ(::chmod(shared_.c_str(), c.mode), 0);
    const SharedFolder shared(U16(shared_));
    EXPECT_EQ(shared.status(), c.expected) << std::oct << c.mode;
    EXPECT_EQ(PrivateFolder(shared, u"fixed").status(), c.expected) << std::oct << c.mode;
    EXPECT_EQ(FileLock(shared, u"fixed.lock").status(), c.expected) << std::oct << c.mode;
    EXPECT_EQ(qvtest::Exists(name_), c.expected == FixedName::kReady);
    qvtest::RemoveAll(name_);
  }
  EXPECT_EQ(SharedFolder(U16(scratch_.Sub("missing"))).status(), FixedName::kUnavailable);
  EXPECT_EQ(PrivateFolder(SharedFolder(U16(scratch_.Sub("missing"))), u"x").status(),
            FixedName::kUnavailable);
}

TEST_F(FixedNames, FreeLockNameIsMadeOursAndExclusiveBetweenProcesses) {
  const SharedFolder shared(U16(shared_));
  const std::string lock_file = shared_ + "/lock";
  {
    FileLock lock(shared, u"lock");
    ASSERT_TRUE(lock.held());
    struct stat st;  // an empty file that only we may write
    ASSERT_EQ(::stat(lock_file.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0600u);
    EXPECT_EQ(st.st_size, 0);
    // flock(1) in another process must not get the lock while we hold it.
    EXPECT_NE(qvtest::Run({"flock", "-n", lock_file, "true"}).status, 0);
  }
  // Let go, the file is gone: nothing is left in the shared folder.
  EXPECT_FALSE(qvtest::Exists(lock_file));

  // A run that waited on a file that its holder (another process) then removed and let go must not
  // count that lock as its own: it takes the file that the name stands for now.
  auto holder = qvtest::Run(
      {"sh", "-c",
       "umask 077; flock \"$0\" sh -c 'touch \"$0.held\"; sleep 0.3; rm \"$0\"' \"$0\" &"
       "while [ ! -e \"$0.held\" ]; do sleep 0.01; done",
       lock_file});
  ASSERT_EQ(holder.status, 0);
  FileLock lock(shared, u"lock");
  ASSERT_TRUE(lock.held());
  EXPECT_TRUE(qvtest::Exists(lock_file));
  EXPECT_NE(qvtest::Run({"flock", "-n", lock_file, "true"}).status, 0);
}

}  // namespace
}  // namespace quorvane::platform
