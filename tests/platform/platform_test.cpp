#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>

#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "platform/process.h"
#include "platform/system_info.h"
#include "platform/text_codec.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::ScratchDir;
using qvtest::U16;

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
  ScratchDir dir;
  const std::u16string root = U16(dir.path());
  EXPECT_EQ(MakeDirectory(root + u"/b"), MakeDirResult::kCreated);
  EXPECT_EQ(MakeDirectory(root + u"/b"), MakeDirResult::kExists);
  EXPECT_EQ(MakeDirectory(root + u"/x/y"), MakeDirResult::kFailed);
  ASSERT_TRUE(WriteFile(root + u"/a.csv", "1") && WriteFile(root + U16("/日本.txt"), "2"));
  ::chmod((dir.path() + "/a.csv").c_str(), 0444);
  std::vector<DirEntry> entries;
  ASSERT_TRUE(ListDirectory(root, &entries));
  std::string listed;  // in name order, folders with "/"
  for (const DirEntry& e : entries)
    listed += qvtest::U8(e.name) + (e.is_directory ? "/ " : " ");
  EXPECT_EQ(listed, "a.csv b/ 日本.txt ");
  EXPECT_FALSE(ListDirectory(root + u"/missing", &entries));
  EXPECT_TRUE(MakeWritable(root + u"/a.csv"));
  EXPECT_TRUE(RemoveFile(root + u"/a.csv"));
  EXPECT_FALSE(PathExists(root + u"/a.csv"));
  EXPECT_FALSE(RemoveDirectory(root));  // not empty
  EXPECT_TRUE(RemoveDirectory(root + u"/b"));

  std::string back;
  ASSERT_TRUE(WriteFile(root + u"/f", "new") && WriteFile(root + u"/g", "old contents"));
  ASSERT_TRUE(CopyFile(root + u"/f", root + u"/g"));  // overwrites
  ASSERT_TRUE(ReadFile(root + u"/g", &back));
  EXPECT_EQ(back, "new");
  // A read-only file is replaced by no one, as on Windows (these tests may run as root).
  ::chmod((dir.path() + "/g").c_str(), 0444);
  EXPECT_FALSE(CopyFile(root + u"/f", root + u"/g"));
  EXPECT_FALSE(WriteFile(root + u"/G", "other"));
  EXPECT_FALSE(CopyFileWhole(root + u"/f", root + u"/g"));
  EXPECT_TRUE(ReadFile(root + u"/g", &back) && back == "new");

  EXPECT_FALSE(ReadFile(root + u"/missing", &back));
  EXPECT_FALSE(ReadFile(root, &back));  // a folder
  ASSERT_EQ(::mkfifo((dir.path() + "/pipe").c_str(), 0600), 0);
  EXPECT_FALSE(ReadFile(root + u"/pipe", &back));  // must not block
  EXPECT_FALSE(CopyFile(root + u"/pipe", root + u"/h"));
  EXPECT_FALSE(WriteFile(u"/dev/full", "no room"));
  EXPECT_FALSE(WriteFile(root + u"/no/such/folder", "x"));
}

// Reads are sized by the file: sizes around the first read and its growth, prefixes
// shorter and longer than the file, and a file that grew after it was written.
TEST(FileSystem, WholeFilesAndPrefixesOfAnySize) {
  ScratchDir dir;
  const std::u16string f = U16(dir.Sub("f"));
  std::string back;
  for (std::size_t size : {0u, 1u, 2u, 65535u, 65536u, 65537u, 131073u, 1000000u}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    ASSERT_TRUE(WriteFile(f, bytes));
    ASSERT_TRUE(ReadFile(f, &back));
    EXPECT_EQ(back, bytes) << size;
    for (std::size_t limit : {std::size_t{0}, std::size_t{1}, size, size + 1, size / 2}) {
      ASSERT_TRUE(ReadFilePrefix(f, limit, &back));
      EXPECT_EQ(back, bytes.substr(0, limit)) << size << " " << limit;
    }
  }
  ASSERT_TRUE(WriteFile(f, "short"));
  {
    OutputFile more;  // a later writer appends nothing but truncates and rewrites longer
    ASSERT_TRUE(more.Open(f));
    more.Append(std::string(70000, 'y'));
    ASSERT_TRUE(more.Close());
  }
  ASSERT_TRUE(ReadFile(f, &back));
  EXPECT_EQ(back, std::string(70000, 'y'));
}

// Start and exit status; the standard output is read while the program runs, also when it is
// more than a pipe holds; the other streams stay silent; a program that cannot start gives nothing.
TEST(Process, ReportsStartExitAndTheStandardOutput) {
  std::string out = "old";
  const ProcessResult r = RunProcess({u"sh", u"-c", u"printf 'a\\nb'; echo err >&2; exit 4"}, out);
  EXPECT_TRUE(r.started);
  EXPECT_EQ(r.exit_status, 4);
  EXPECT_EQ(out, "a\nb");
  EXPECT_TRUE(RunProcess({u"head", u"-c", u"300000", u"/dev/zero"}, out).started);
  EXPECT_EQ(out, std::string(300000, '\0'));
  EXPECT_FALSE(RunProcess({u"no-such-program-qv"}, out).started);
  EXPECT_EQ(out, "");
  EXPECT_FALSE(RunProcess({}, out).started);
}

TEST(SystemInfo, TempFolderUuidAndLocale) {
  qvtest::EnvOverride temp("TMPDIR", "/var/tmp");
  EXPECT_EQ(TempDirectory(), u"/var/tmp/");
  ::setenv("TMPDIR", "", 1);
  EXPECT_EQ(TempDirectory(), u"/tmp/");

  const std::string id = qvtest::U8(NewUuid());
  ASSERT_EQ(id.size(), 36u);
  for (std::size_t i = 0; i < id.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    EXPECT_TRUE(dash ? id[i] == '-' : std::isxdigit(id[i]) && !std::isupper(id[i])) << id;
  }
  EXPECT_EQ(id[14], '4');  // a random UUID
  EXPECT_NE(NewUuid(), NewUuid());

  qvtest::EnvOverride all("LC_ALL", ""), messages("LC_MESSAGES", "ja_JP.UTF-8"),
      lang("LANG", "en_US.UTF-8");
  EXPECT_EQ(MessageLocaleName(), "ja_JP.UTF-8");
  ::setenv("LC_ALL", "C", 1);
  EXPECT_EQ(MessageLocaleName(), "C");
}

}  // namespace
}  // namespace quorvane::platform
