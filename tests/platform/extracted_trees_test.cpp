// Trees the archive tool extracted: names settled as 7-Zip on Japanese Windows makes them (code
// page 932 decoded, "\" made into folders, no link kept, no entry lost where names meet); removal
// on folder descriptors that touches nothing outside, whatever links lie within, and takes every
// odd name, read-only file and locked folder; trees of any depth with few descriptors.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/extracted_names.h"
#include "platform/tree_removal.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

namespace fs = std::filesystem;
using qvtest::Cp932, qvtest::Exists, qvtest::ListDir, qvtest::MakeDirs, qvtest::U16;

// An entry as the archive tool left it: a file with `data`, a folder ('d'), a link to `data`
// ('l') or a pipe ('p').  "/" in `path` is a real folder.
struct Planted {
  std::string path, data;
  char kind = 'f';
};

// Every entry below `top`: "folder/", "file=data", "link@", "other?", sorted.
std::vector<std::string> Tree(const std::string& top) {
  std::vector<std::string> out;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(top, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    const std::string path = it->path().lexically_relative(top).string();
    const fs::file_status status = it->symlink_status();
    out.push_back(fs::is_symlink(status)        ? path + "@"
                  : fs::is_directory(status)    ? path + "/"
                  : fs::is_regular_file(status) ? path + "=" + qvtest::ReadFile(it->path())
                                                : path + "?");
  }
  std::sort(out.begin(), out.end());
  return out;
}

// Whether `call` succeeds in a child process that may open no more than 64 descriptors.
template <typename Call>
bool WithFewDescriptors(Call call) {
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit few{64, 64};
    ::setrlimit(RLIMIT_NOFILE, &few);
    ::_exit(call() ? 0 : 1);
  }
  int status = -1;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

// A tree in top_, and a folder outside it that its links point to.
class ExtractedTrees : public testing::Test {
 protected:
  ExtractedTrees() { qvtest::WriteFile(outside_ + "/keep.txt", "keep"); }

  void Plant(const std::vector<Planted>& entries) {
    qvtest::RemoveAll(top_), MakeDirs(top_);
    for (const auto& [path, data, kind] : entries) {
      const std::string at = top_ + "/" + path;
      MakeDirs(fs::path(at).parent_path());
      if (kind == 'd') MakeDirs(at);
      if (kind == 'f') qvtest::WriteFile(at, data);
      const int made = kind == 'l'   ? ::symlink(data.c_str(), at.c_str())
                       : kind == 'p' ? ::mkfifo(at.c_str(), 0600)
                                     : 0;
      ASSERT_EQ(made, 0) << path;
    }
  }
  // Every kind of entry at each of three depths, and folders that their owner may not write, read
  // or search.
  void PlantEverything() {
    std::vector<Planted> all;
    for (std::string level; level.size() < 12; level += "sub/")
      all.insert(all.end(), {{level + "read_only.txt", "r"},
                             {level + "to_folder", outside_, 'l'},
                             {level + "to_file", outside_ + "/keep.txt", 'l'},
                             {level + "dangling", outside_ + "/missing", 'l'},
                             {level + "\xff\xfe not utf-8", "x"},
                             {level + "\x80 folder/\xc3", "", 'd'},
                             {level + "pipe", "", 'p'},
                             {level + "locked/inner/f", "f"}});
    Plant(all);
    for (std::string level = top_; level.size() < top_.size() + 12; level += "/sub") {
      ::chmod((level + "/read_only.txt").c_str(), 0444);
      ::chmod((level + "/locked/inner").c_str(), 0);
      ::chmod((level + "/locked").c_str(), 0500);
    }
  }
  bool OutsideIntact() { return Tree(outside_) == std::vector<std::string>{"keep.txt=keep"}; }

  qvtest::ScratchDir scratch_;
  std::string outside_ = scratch_.Sub("outside"), top_ = scratch_.Sub("top");
};

TEST_F(ExtractedTrees, NamesBecomeWhatWindowsMakesOfThem) {
  std::string too_long(201, '\x8a');
  too_long.back() = '\xbf';
  // A row of entries to a line.
  // clang-format off
  const struct {
    const char* what;
    std::vector<Planted> planted;
    std::vector<std::string> settled;
    bool complete = true;
  } cases[] = {
      {"code page 932 and UTF-8",
       {{Cp932("ニュース番組/平日.csv"), "a"}, {Cp932("表.txt"), "b"},  // 表 ends in 0x5C
        {"ロゴ.png", "c"}, {Cp932("ﾃｽﾄ"), "d"}},                         // C3 BD C4: UTF-8 in part
       {"ニュース番組/", "ニュース番組/平日.csv=a", "ロゴ.png=c", "表.txt=b", "ﾃｽﾄ=d"}},
      {"backslashes between folders",
       {{"QvFormat\\QvS.xml", "s"}, {"QvFormat\\QvT\\TM1.xml", "t"}, {"QvFormat\\QvP\\", "", 'd'},
        {"x\\y/z.txt", "z"}, {Cp932("a\\表\\b.txt"), "d"}},
       {"QvFormat/", "QvFormat/QvP/", "QvFormat/QvS.xml=s", "QvFormat/QvT/",
        "QvFormat/QvT/TM1.xml=t", "a/", "a/表/", "a/表/b.txt=d", "x/", "x/y/", "x/y/z.txt=z"}},
      {"device names get a \"_\" in front",
       {{"aux.txt", "1"}, {"CON", "2"}, {"d\\nul .csv", "3"}, {"Com1", "4"}, {"com", "5"},
        {"conx.txt", "6"}, {"lpt9.a.b", "7"}},
       {"_CON=2", "_Com1=4", "_aux.txt=1", "_lpt9.a.b=7", "com=5", "conx.txt=6", "d/",
        "d/_nul .csv=3"}},
      {"taken names lose nothing",
       {{"a/b.txt", "1"}, {"a\\b.txt", "2"}, {"f", "3"}, {"f\\g", "4"}, {"d/e/g.txt", "5"},
        {"d\\e/h.txt", "6"}, {"d\\e/g.txt", "7"}, {"表", "8"}, {Cp932("表"), "9"},
        {"\\/\\\\/y", "10"}, {"\\/z", "11"}, {"z", "12"}},
       {"a/", "a/b.txt=1", "a/b_1.txt=2", "d/", "d/e/", "d/e/g.txt=5", "d/e/g_1.txt=7",
        "d/e/h.txt=6", "f=3", "f_1/", "f_1/g=4", "y=10", "z=12", "z_1=11", "表=8", "表_1=9"}},
      {"links and special entries are not kept",
       {{"to_folder", outside_, 'l'}, {"sub/to_file", outside_ + "/keep.txt", 'l'},
        {"dangling", outside_ + "/missing", 'l'}, {"l", outside_, 'l'}, {"l\\x", "1"},
        {"pipe", "", 'p'}},
       {"l/", "l/x=1", "sub/"}},
      {"too long once decoded",
       {{too_long, "long"}, {"a\\b", "ab"}},
       {"a/", "a/b=ab", too_long + "=long"},
       false},
  };
  // clang-format on
  for (const auto& c : cases) {
    Plant(c.planted);
    EXPECT_EQ(FixExtractedNames(U16(top_)), c.complete) << c.what;
    EXPECT_EQ(Tree(top_), c.settled) << c.what;
    EXPECT_TRUE(OutsideIntact()) << c.what;
  }
}

// Removed whole, or emptied in place: the open folder stays, and can be emptied again.
TEST_F(ExtractedTrees, RemovalTakesEverythingInsideAndNothingOutside) {
  PlantEverything();
  EXPECT_TRUE(RemoveTree(U16(top_ + "/")) && !Exists(top_));
  PlantEverything();
  const int fd = ::open(top_.c_str(), O_RDONLY | O_DIRECTORY);
  EXPECT_TRUE(EmptyFolder(fd) && ListDir(top_).empty());
  qvtest::WriteFile(top_ + "/again.txt", "a");
  EXPECT_TRUE(EmptyFolder(fd) && ListDir(top_).empty());
  ::close(fd);
  EXPECT_TRUE(OutsideIntact());

  // The top must be a real folder: a link to one, a dangling link or a file is not.
  Plant({{"to_folder", outside_, 'l'}, {"dangling", outside_ + "/missing", 'l'}});
  for (const char* link : {"/to_folder", "/dangling", "/to_folder/", "/dangling/"})
    EXPECT_FALSE(RemoveTree(U16(top_ + link))) << link;
  EXPECT_EQ(Tree(top_), (std::vector<std::string>{"dangling@", "to_folder@"}));
  for (const std::string& path : {outside_ + "/keep.txt", scratch_.Sub("missing")})
    EXPECT_FALSE(RemoveTree(U16(path))) << path;
  EXPECT_TRUE(OutsideIntact());
}

// Deeper than the descriptors a process may open: folders far above are left and found again, by
// the settling of names and by the removal.
TEST_F(ExtractedTrees, AnyDepthWithFewDescriptors) {
  std::string deep = top_;
  for (int i = 0; i < 300; ++i) deep += "/d";
  qvtest::WriteFile(deep + "/x\\y", "1");
  qvtest::WriteFile(deep + "/" + Cp932("平日.csv"), "2");
  qvtest::WriteFile(top_ + "/d\\e", "3");
  EXPECT_TRUE(WithFewDescriptors([&] { return FixExtractedNames(U16(top_)); }));
  EXPECT_EQ(qvtest::ReadFile(deep + "/x/y") + qvtest::ReadFile(deep + "/平日.csv") +
                qvtest::ReadFile(top_ + "/d/e"),
            "123");
  ASSERT_EQ(::symlink(outside_.c_str(), (deep + "/to_folder").c_str()), 0);
  EXPECT_TRUE(WithFewDescriptors([&] { return RemoveTree(U16(top_)); }));
  EXPECT_TRUE(!Exists(top_) && OutsideIntact());
}

}  // namespace
}  // namespace quorvane::platform
