// The system layer: UTF-8 and UTF-16, files and folders (also what is no file), reads of any
// size, the temporary folder and the user's locale; files delivered whole through a temporary;
// started programs, their output and status; fixed names in a shared folder.  The log file:
// tests/blackbox/run_log_test.cpp; that no program outlives a killed run, and results stay whole:
// bench/kill_test.py (a ctest test).
#include <sys/stat.h>
#include <unistd.h>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/file_system.h"
#include "platform/private_folder.h"
#include "platform/process.h"
#include "platform/system_info.h"
#include "platform/text_codec.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::Exists, qvtest::ListDir, qvtest::MakeDirs, qvtest::RemoveAll, qvtest::RunProgram;
using qvtest::ScratchDir, qvtest::U16, qvtest::U8;

// Code page 932 is checked against the vendor's table in text_codec_test.cpp.
TEST(TextCodec, Utf8AndUtf16BothWays) {
  const std::u16string wide = u"a\u00e9\u3042\U0001F600";
  EXPECT_EQ(Utf8FromUtf16(wide), "a\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80");
  EXPECT_EQ(Utf16FromUtf8(Utf8FromUtf16(wide)), wide);
  EXPECT_EQ(Utf8FromUtf16(std::u16string(1, char16_t(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(Utf16FromUtf8("\xC0\xAFz"), u"\uFFFD\uFFFDz");  // overlong form
  EXPECT_EQ(Utf16FromUtf8("\xE3\x81"), u"\uFFFD\uFFFD");    // cut off
  EXPECT_EQ(Utf16FromUtf16Bytes(std::string("\x42\x30\x41", 3), false), u"\u3042");
  EXPECT_EQ(Utf16FromUtf16Bytes(std::string("\x30\x42", 2), true), u"\u3042");
}

TEST(FileSystem, FoldersFilesAndWhatIsNoFile) {
  qvtest::ScratchDir dir;
  const std::u16string root = U16(dir.path());
  EXPECT_EQ(MakeDirectory(root + u"/x/y"), MakeDirResult::kFailed);  // no parent
  ASSERT_EQ(MakeDirectory(root + u"/b"), MakeDirResult::kCreated);
  ASSERT_TRUE(WriteFile(root + u"/a.csv", "1") && WriteFile(root + U16("/日本.txt"), "2"));
  ::chmod((dir.path() + "/a.csv").c_str(), 0444);
  std::vector<DirEntry> entries;
  ASSERT_TRUE(ListDirectory(root, &entries));
  std::string listed;  // in name order, folders with "/"
  for (const DirEntry& e : entries) listed += qvtest::U8(e.name) + (e.is_directory ? "/ " : " ");
  EXPECT_EQ(listed, "a.csv b/ 日本.txt ");
  EXPECT_FALSE(ListDirectory(root + u"/missing", &entries));
  EXPECT_TRUE(MakeWritable(root + u"/a.csv") && RemoveFile(root + u"/a.csv"));
  EXPECT_FALSE(PathExists(root + u"/a.csv"));
  EXPECT_FALSE(RemoveDirectory(root));  // not empty
  EXPECT_TRUE(RemoveDirectory(root + u"/b"));

  std::string back;
  ASSERT_TRUE(WriteFile(root + u"/f", "new") && WriteFile(root + u"/g", "old contents"));
  ASSERT_TRUE(CopyFile(root + u"/f", root + u"/g") && ReadFile(root + u"/g", &back));
  EXPECT_EQ(back, "new");  // overwritten
  // A read-only file is replaced by no one, as on Windows (these tests may run as root).
  ::chmod((dir.path() + "/g").c_str(), 0444);
  ASSERT_EQ(::symlink("g", (dir.path() + "/to_g").c_str()), 0);
  EXPECT_FALSE(CopyFile(root + u"/f", root + u"/g") || WriteFile(root + u"/G", "other") ||
               CopyFileWhole(root + u"/f", root + u"/g") || WriteFile(root + u"/to_g", "link"));
  EXPECT_TRUE(ReadFile(root + u"/g", &back) && back == "new");
  EXPECT_FALSE(ReadFile(root + u"/missing", &back));
  EXPECT_FALSE(ReadFile(root, &back));  // a folder
  ASSERT_EQ(::mkfifo((dir.path() + "/pipe").c_str(), 0600), 0);
  EXPECT_FALSE(ReadFile(root + u"/pipe", &back));  // must not block
  EXPECT_FALSE(CopyFile(root + u"/pipe", root + u"/h"));
  EXPECT_FALSE(WriteFile(u"/dev/full", "no room"));
  EXPECT_FALSE(WriteFile(root + u"/no/such/folder", "x"));
}

// Reads are sized by the file: sizes around the first read and its growth, prefixes shorter and
// longer than the file, and a file that a later writer made longer.
TEST(FileSystem, WholeFilesAndPrefixesOfAnySize) {
  qvtest::ScratchDir dir;
  const std::u16string f = U16(dir.Sub("f"));
  std::string back;
  for (std::size_t size : {0u, 1u, 2u, 65535u, 65536u, 65537u, 131073u, 1000000u}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    ASSERT_TRUE(WriteFile(f, bytes) && ReadFile(f, &back));
    EXPECT_EQ(back, bytes) << size;
    for (std::size_t limit : {std::size_t{0}, std::size_t{1}, size, size + 1, size / 2}) {
      ASSERT_TRUE(ReadFilePrefix(f, limit, &back));
      EXPECT_EQ(back, bytes.substr(0, limit)) << size << " " << limit;
    }
  }
  ASSERT_TRUE(WriteFile(f, "short"));
  OutputFile more;  // truncates and rewrites
  ASSERT_TRUE(more.Open(f));
  more.Append(std::string(70000, 'y'));
  ASSERT_TRUE(more.Close() && ReadFile(f, &back));
  EXPECT_EQ(back, std::string(70000, 'y'));
}

// The name of a new identifier: tests/workspace/file_tree_test.cpp.
TEST(SystemInfo, TempFolderAndLocale) {
  qvtest::EnvOverride temp("TMPDIR", "");
  EXPECT_EQ(TempDirectory(), u"/tmp/");
  qvtest::EnvOverride all("LC_ALL", ""), messages("LC_MESSAGES", "ja_JP.UTF-8"),
      lang("LANG", "en_US.UTF-8");
  EXPECT_EQ(MessageLocaleName(), "ja_JP.UTF-8");
  ::setenv("LC_ALL", "C", 1);
  EXPECT_EQ(MessageLocaleName(), "C");
}

TEST(AtomicFile, TemporaryNameIsHiddenBesideTheDestinationAndFitsAName) {
  EXPECT_EQ(PartialPathOf(u"a/b/c.csv"), u"a/b/.c.csv.partial");
  // 246 bytes still fit with the two additions; one more is hashed, the same way each time.
  const std::u16string fits(246, u'x'), too_long(247, u'x');
  EXPECT_EQ(PartialPathOf(u"d/" + fits), u"d/." + fits + u".partial");
  const std::u16string hashed = PartialPathOf(u"d/" + too_long);
  EXPECT_EQ(hashed.size(), 2 + 1 + 16 + 8u);
  EXPECT_EQ(hashed, PartialPathOf(u"d/" + too_long));
  EXPECT_NE(hashed, PartialPathOf(u"d/" + too_long + u"y"));
}

TEST(AtomicFile, CopyReplacesWholeOrLeavesTheDestinationAsItWas) {
  qvtest::ScratchDir dir;
  const std::string src = dir.Sub("src.bin"), dst = dir.Sub("out/dst.bin");
  const std::string big(3 << 20, 'q');  // more than one round of the kernel's copy
  qvtest::WriteFile(src, big);
  qvtest::WriteFile(dst, "old");
  ASSERT_TRUE(CopyFileWhole(U16(src), U16(dst)));
  EXPECT_EQ(qvtest::ReadFile(dst), big);
  // A temporary left as a link (a killed run's is taken over: bench/kill_test.py) is replaced,
  // never written through.
  qvtest::WriteFile(dir.Sub("victim"), "untouched");
  ASSERT_EQ(::symlink(dir.Sub("victim").c_str(), dir.Sub("out/.dst.bin.partial").c_str()), 0);
  qvtest::WriteFile(src, "new");
  ASSERT_TRUE(CopyFileWhole(U16(src), U16(dst)));
  EXPECT_EQ(qvtest::ReadFile(dst) + qvtest::ReadFile(dir.Sub("victim")), "newuntouched");

  // Sources that are no readable plain file, and a destination folder that is missing: false,
  // the destination as it was, no temporary left.
  ::mkfifo(dir.Sub("fifo").c_str(), 0600);
  for (const std::string& bad : {dir.Sub("missing"), dir.Sub("out"), dir.Sub("fifo")}) {
    EXPECT_FALSE(CopyFileWhole(U16(bad), U16(dst))) << bad;
    EXPECT_EQ(qvtest::ReadFile(dst), "new") << bad;
  }
  EXPECT_FALSE(CopyFileWhole(U16(src), U16(dir.Sub("nowhere/dst.bin"))));
  EXPECT_EQ(qvtest::ListDir(dir.Sub("out")), std::vector<std::string>{"dst.bin"});
}

// The standard output is read while the program runs, also when it is more than a pipe holds; the
// other streams stay silent; a program that cannot start gives nothing.
TEST(Process, ReportsStartExitAndTheStandardOutput) {
  std::string out;
  const ProcessResult r =
      RunProcess({u"sh", u"-c", u"head -c 300000 /dev/zero; echo err >&2; exit 4"}, out);
  EXPECT_TRUE(r.started && r.exit_status == 4);
  EXPECT_EQ(out, std::string(300000, '\0'));
  EXPECT_FALSE(RunProcess({u"no-such-program-qv"}, out).started || !out.empty());
}

// Fixed names in a shared folder (private folders and lock files): a free name is made ours alone,
// a lock is exclusive between processes, and a shared folder that anyone may rearrange holds
// nothing of ours.  Whatever someone planted under a fixed name before whole runs:
// tests/blackbox/hostile_temp_test.cpp.
class FixedNames : public testing::Test {
 protected:
  FixedNames() { MakeDirs(shared_), qvtest::WriteFile(victim_ + "/keep.txt", "keep"); }

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
    EXPECT_EQ(qvtest::ReadFile(name_ + ".moved/made"), "x\n");
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
