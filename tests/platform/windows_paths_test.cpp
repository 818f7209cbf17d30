// Paths taken as Windows takes them on NTFS: the cleanup of the text, names compared without regard
// to case, what a name may hold, what a path opens and what is made.  A listing's order, what
// copies keep: tests/blackbox/windows_projects_test.cpp.
#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>

#include "platform/file_system.h"
#include "platform/ntfs_names.h"
#include "platform/win32_path.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::ScratchDir;
using qvtest::U16;
using qvtest::U8;

TEST(Win32PathCleanup, TextBeforeTheDisk) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"C\\proj\\Schedule.csv", "C/proj/Schedule.csv"},
      {u"/p//x\\\\y/", "/p/x/y/"},
      {u"/p/old\\..\\x.csv", "/p/x.csv"},  // on the text: "old" need not exist
      {u"/p/./a/./b/../c", "/p/a/c"},
      {u"/p/../../../etc", "/etc"},  // never above the root
      {u"../../a/../b", "../../b"},  // a relative path keeps its leading steps
      {u"a/..", "."},
      {u"/p/name.csv . .", "/p/name.csv"},           // the last name loses trailing dots and spaces
      {u"/p/Folder./Sub../x", "/p/Folder/Sub../x"},  // an inner name one dot, a single one only
      {u"/p/Folder /x", "/p/Folder /x"},
      {u"/p/last . /", "/p/last/"},
      {u"/p/... /x/...", "/p/... /x"},  // dots and blanks never become a step up
      {u"/p/ ../x", "/p/ ../x"},
      {u"", ""},
  };
  for (const auto& [in, out] : cases) {
    const Win32Path clean = CleanWin32Path(in);
    EXPECT_EQ(U8(clean.path), out) << U8(in);
    EXPECT_TRUE(clean.nameable) << U8(in);
  }
  for (const char16_t* bad : {u"/p/Schedule.csv:Zone.Identifier", u"/p/a<b/x", u"/p/a?",
                              u"/p/*.csv", u"/p/a|b", u"/p/\"q\"", u"/p/tab\there"}) {
    EXPECT_FALSE(CleanWin32Path(bad).nameable) << U8(bad);
  }
}

TEST(NtfsNames, CaseAndWhatANameMayHold) {
  const std::pair<std::u16string, std::u16string> same[] = {
      {u"TimeTable_weekend.csv", u"timetable_WEEKEND.csv"},
      {u"ÆBLE_ÿ.csv", u"æble_Ÿ.CSV"},
      {u"Ωμέγα", u"ΩΜΈΓΑ"},
      {u"ａｂｃ", u"ＡＢＣ"},
      {u"ŀő", u"ĿŐ"}};
  for (const auto& [a, b] : same) EXPECT_TRUE(NtfsSameName(a, b)) << U8(a);
  const std::pair<std::u16string, std::u16string> different[] = {
      {u"ı", u"I"}, {u"ß", u"SS"}, {u"a", u"ａ"}, {u"番組", u"番組 "}, {u"é", u"e"}};
  for (const auto& [a, b] : different) EXPECT_FALSE(NtfsSameName(a, b)) << U8(a);

  for (const char16_t* good : {u"a", u"..x", u"a b.csv", u"番組", u".hidden"})
    EXPECT_TRUE(IsWindowsName(good));
  for (const char16_t* bad : {u"", u".", u"..", u"a.", u"a ", u"a:b", u"a\\b", u"a/b", u"\x1f"})
    EXPECT_FALSE(IsWindowsName(bad)) << U8(bad);
}

// A project as Windows left it, then renamed here: each path asked for, and the file it opens.
TEST(WindowsLookup, PathsOpenWhatWindowsOpens) {
  ScratchDir dir;
  const std::string p = dir.path();
  for (const auto& [file, text] : std::vector<std::pair<std::string, std::string>>{
           {"Project/timetable_WEEKEND.csv", "weekend"},
           {"Project/Program_Ads/program.csv", "ads"},
           {"Project/both/A.txt", "upper"},
           {"Project/both/a.txt", "lower"},
           {"Project/I.txt", "capital i"},
           {"Project/Schedule.csv:Zone.Identifier", "ads"},
           {"Project/plain", "a file"}})
    qvtest::WriteFile(p + "/" + file, text);
  const std::pair<std::string, std::string> cases[] = {
      {"\\Project\\TimeTable_weekend.csv", "weekend"},
      {"/project/program_ads\\PROGRAM.CSV", "ads"},
      {"/PROJECT/old\\..\\Timetable_Weekend.csv . ", "weekend"},
      {"/Project/both/a.txt", "lower"},  // an exact name wins
      {"/Project/BOTH/a.txt", "lower"},
      {"/Project/both/A.TXT", "upper"},               // else the first in NTFS order
      {"/Project/ı.txt", ""},                         // dotless i is no I
      {"/Project/Schedule.csv:Zone.Identifier", ""},  // no such name on Windows
      {"/Project/missing.csv", ""},
      {"/Project/PLAIN/x", ""},  // runs through a file
  };
  // Folders that nothing has changed for a while have their listings kept: the same answers, also
  // once a folder changes again.
  const auto check = [&](const char* when) {
    for (const auto& [asked, opened] : cases) {
      std::string bytes;
      EXPECT_EQ(ReadFile(U16(p + asked), &bytes), !opened.empty()) << asked << when;
      EXPECT_EQ(bytes, opened) << asked << when;
      EXPECT_EQ(PathExists(U16(p + asked)), !opened.empty()) << asked << when;
    }
  };
  check(" (fresh)");
  const struct timespec past[2] = {{::time(nullptr) - 3600, 0}, {::time(nullptr) - 3600, 0}};
  for (const char* folder : {"", "/Project", "/Project/both", "/Project/Program_Ads"})
    ::utimensat(AT_FDCWD, (p + folder).c_str(), past, 0);
  check(" (quiet)");
  check(" (kept)");
  qvtest::WriteFile(p + "/Project/both/New.txt", "new");
  std::string added;
  EXPECT_TRUE(ReadFile(U16(p + "/PROJECT/BOTH/NEW.TXT"), &added) && added == "new");
  EXPECT_TRUE(IsDirectory(U16(p + "/project/PROGRAM_ADS/")));
  std::vector<DirEntry> entries;
  EXPECT_TRUE(ListDirectory(U16(p + "\\PROJECT\\program_ads"), &entries));
  EXPECT_EQ(entries.size(), 1u);

  // What is made where the name exists in another case uses what is there.
  EXPECT_EQ(MakeDirectory(U16(p + "/project/PROGRAM_ADS")), MakeDirResult::kExists);
  EXPECT_EQ(MakeDirectory(U16(p + "/PROJECT/program_ads/Information")), MakeDirResult::kCreated);
  EXPECT_TRUE(WriteFile(U16(p + "/project/TIMETABLE_weekend.csv"), "new"));
  EXPECT_EQ(qvtest::ListDir(p + "/Project/Program_Ads"),
            (std::vector<std::string>{"Information/", "program.csv"}));
  EXPECT_EQ(qvtest::ReadFile(p + "/Project/timetable_WEEKEND.csv"), "new");
  EXPECT_FALSE(qvtest::Exists(p + "/Project/TIMETABLE_weekend.csv"));
  // Nothing is made under a name that Windows cannot hold.
  EXPECT_FALSE(WriteFile(U16(p + "/Project/report:1.xml"), "x"));
  EXPECT_EQ(MakeDirectory(U16(p + "/Project/a?")), MakeDirResult::kFailed);
}

}  // namespace
}  // namespace quorvane::platform
