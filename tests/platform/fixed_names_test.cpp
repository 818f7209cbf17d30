// Fixed names in a shared folder (private folders and lock files): a free name is made ours alone,
// a lock is exclusive between processes, and a shared folder that anyone may rearrange holds
// nothing of ours.  Whatever someone planted under a fixed name before whole runs:
// tests/blackbox/hostile_temp_test.cpp.
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_lock.h"
#include "platform/private_folder.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::Exists, qvtest::ListDir, qvtest::MakeDirs, qvtest::ReadFile, qvtest::RemoveAll;
using qvtest::RunProgram, qvtest::ScratchDir, qvtest::U16, qvtest::U8, qvtest::WriteFile;

class FixedNames : public testing::Test {
 protected:
  FixedNames() { MakeDirs(shared_), WriteFile(victim_ + "/keep.txt", "keep"); }

  ScratchDir scratch_;
  std::string shared_ = scratch_.Sub("shared"), victim_ = scratch_.Sub("victim");
  std::string name_ = shared_ + "/fixed";
};

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
    EXPECT_EQ(RunProgram({"sh", "-c", "echo x > \"$0/made\"", U8(folder.ChildPath())}).status, 0);
    EXPECT_EQ(ReadFile(name_ + ".moved/made"), "x\n");
    EXPECT_FALSE(folder.Remove());  // the name is no longer ours: neither it nor the link goes
    EXPECT_TRUE(Exists(name_ + ".moved"));
    ::unlink(name_.c_str());
    ASSERT_EQ(::rename((name_ + ".moved").c_str(), name_.c_str()), 0);
    EXPECT_TRUE(folder.Remove() && !Exists(name_));
  }
  EXPECT_EQ(ListDir(victim_), std::vector<std::string>{"keep.txt"});
}

// The shared folder may be shared with its sticky bit; anyone may write it without: then it holds
// nothing of ours.
TEST_F(FixedNames, SharedFolderThatAnyoneMayRearrangeIsRefused) {
  const std::pair<mode_t, FixedName> cases[] = {{0755, FixedName::kReady},
                                                {01777, FixedName::kReady},
                                                {0770, FixedName::kReady},
                                                {0777, FixedName::kUnsafe},
                                                {0703, FixedName::kUnsafe}};
  for (const auto& [mode, expected] : cases) {
    ASSERT_EQ(::chmod(shared_.c_str(), mode), 0);
    const SharedFolder shared(U16(shared_));
    EXPECT_EQ(shared.status(), expected) << std::oct << mode;
    EXPECT_EQ(PrivateFolder(shared, u"fixed").status(), expected) << std::oct << mode;
    EXPECT_EQ(FileLock(shared, u"fixed.lock").status(), expected) << std::oct << mode;
    EXPECT_EQ(Exists(name_), expected == FixedName::kReady);
    RemoveAll(name_);
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
    EXPECT_NE(RunProgram({"flock", "-n", lock_file, "true"}).status, 0);
  }
  // Let go, the file is gone: nothing is left in the shared folder.
  EXPECT_FALSE(Exists(lock_file));

  // A run that waited on a file that its holder (another process) then removed and let go must not
  // count that lock as its own: it takes the file that the name stands for now.
  auto holder =
      RunProgram({"sh", "-c",
                  "umask 077; flock \"$0\" sh -c 'touch \"$0.held\"; sleep 0.3; rm \"$0\"' \"$0\" "
                  ">/dev/null 2>&1 & "
                  "while [ ! -e \"$0.held\" ]; do sleep 0.01; done",
                  lock_file});
  ASSERT_EQ(holder.status, 0);
  FileLock lock(shared, u"lock");
  ASSERT_TRUE(lock.held());
  EXPECT_TRUE(Exists(lock_file));
  EXPECT_NE(RunProgram({"flock", "-n", lock_file, "true"}).status, 0);
}

}  // namespace
}  // namespace quorvane::platform
