// The system layer: UTF-8 and UTF-16, files and folders (also what is no file), reads of any
// size, the temporary folder and the user's locale.
#include <sys/stat.h>

#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "platform/system_info.h"
#include "platform/text_codec.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

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
  EXPECT_FALSE(CopyFile(root + u"/f", root + u"/g") || WriteFile(root + u"/G", "other") ||
               CopyFileWhole(root + u"/f", root + u"/g"));
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

}  // namespace
}  // namespace quorvane::platform
