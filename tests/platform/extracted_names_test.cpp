// Names of an extracted archive settled as 7-Zip on Japanese Windows makes them: code page 932
// names decoded, "\" made into folders, no link kept, no entry lost where names meet.  Names that
// would climb out: tests/blackbox/archive_names_test.cpp; a tree of any depth settled with few
// descriptors: tree_removal_test.cpp.
#include "platform/extracted_names.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

namespace fs = std::filesystem;
using qvtest::Cp932;

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
    const std::string path = fs::relative(it->path(), top).string();
    const fs::file_status status = it->symlink_status();
    if (fs::is_symlink(status)) {
      out.push_back(path + "@");
    } else if (fs::is_directory(status)) {
      out.push_back(path + "/");
    } else if (fs::is_regular_file(status)) {
      out.push_back(path + "=" + qvtest::ReadFile(it->path().string()));
    } else {
      out.push_back(path + "?");
    }
  }
  std::sort(out.begin(), out.end());
  return out;
}

class ExtractedNames : public testing::Test {
 protected:
  ExtractedNames() { qvtest::WriteFile(outside_ + "/keep.txt", "keep"); }

  void Plant(const std::vector<Planted>& entries) {
    qvtest::RemoveAll(top_);
    qvtest::MakeDirs(top_);
    for (const auto& [path, data, kind] : entries) {
      const std::string at = top_ + "/" + path;
      qvtest::MakeDirs(fs::path(at).parent_path().string());
      if (kind == 'd') qvtest::MakeDirs(at);
      if (kind == 'f') qvtest::WriteFile(at, data);
      const int made = kind == 'l'   ? ::symlink(data.c_str(), at.c_str())
                       : kind == 'p' ? ::mkfifo(at.c_str(), 0600)
                                     : 0;
      ASSERT_EQ(made, 0) << path;
    }
  }

  qvtest::ScratchDir scratch_;
  std::string outside_ = scratch_.Sub("outside"), top_ = scratch_.Sub("top");
};

TEST_F(ExtractedNames, NamesBecomeWhatWindowsMakesOfThem) {
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
    EXPECT_EQ(FixExtractedNames(qvtest::U16(top_)), c.complete) << c.what;
    EXPECT_EQ(Tree(top_), c.settled) << c.what;
    EXPECT_EQ(Tree(outside_), std::vector<std::string>{"keep.txt=keep"}) << c.what;
  }
}

}  // namespace
}  // namespace quorvane::platform
