#include <gtest/gtest.h>

#include "checker/qv_ch_runner.h"
#include "tests/checker/checker_harness.h"

namespace qvtest {
namespace {

using checker::ChContentsInfo;
using checker::ChProgram;

// A program file with the frame line `frame` (x,y,w,h) and the pane lines.
std::string Program(CheckerHarness& h, const std::string& frame,
                    const std::vector<std::string>& panes) {
  std::vector<std::string> lines = {"prog", "0xD4F0FF," + frame + ",00:01:00,0"};
  lines.insert(lines.end(), panes.begin(), panes.end());
  return h.Csv("P/program.csv", lines);
}

std::string Pane(int number, const std::string& region, const std::string& used) {
  const std::string n = std::to_string(number);
  return n + ",playlist_" + n + ".csv," + region + ",0x0,false,0," + used;
}

TEST(CheckerLayout, ProgramFrameAgainstTheRegion) {
  struct Case {
    std::string frame, expected;
  } cases[] = {
      {"0,10,1920,1080", "PG0702:E"},
      {"-5,0,1920,1080", "PG0701:E"},
      {"5a,0,1920,1080", "PG0701:E PG0301:E"},
      {"0,0,1200,1200", "PG0501:E"},
      {"10,0,5000,5000", "PG0701:E"},  // no size finding after a position finding
  };
  for (const Case& c : cases) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChProgram, Program(h, c.frame, {})), 0);
    EXPECT_EQ(h.Kinds(), c.expected) << c.frame;
  }
  CheckerHarness short_line;  // no height cell
  EXPECT_EQ(short_line.Check(ChProgram, short_line.Csv("p.csv", {"n", "0x0,0,0,5000"})), 0);
  EXPECT_FALSE(short_line.checker.has_result);
  CheckerHarness shifted;
  shifted.checker.display_region = {100, 100, 800, 600};
  EXPECT_EQ(shifted.Check(ChProgram, Program(shifted, "0,100,800,600", {})), 0);
  EXPECT_EQ(shifted.Kinds(), "PG0701:E");
}

TEST(CheckerLayout, PaneRoles) {
  struct Case {
    std::vector<std::string> panes;
    std::string expected;
  } cases[] = {
      {{Pane(1, "0,0,1920,1080", "true"), Pane(2, "0,0,10,10", "1")}, "PG0903:E@1"},
      {{Pane(1, "0,0,10,10", "false"), Pane(3, "0,0,10,10", "")}, ""},
      {{Pane(1, "1920,1080,10,10", "true")}, ""},
      {{Pane(1, "0,1081,3000,100", "TRUE")}, "PG1201:W PG1301:W"},
      {{Pane(1, "-1,0,10,10", "true")}, "PG1101:E"},
      {{Pane(5, "0,0,1,1", "true"), Pane(6, "0,0,1,1", "true")}, "PG0907:E@1"},
      {{Pane(6, "0,0,1,1", "true"), Pane(5, "0,0,1,1", "true")}, "PG0906:E@1"},
      {{Pane(8, "0,0,1,1", "true"), Pane(8, "0,0,1,1", "0"), Pane(8, "0,0,1,1", "false")},
       "PG0909:E@0"},
      {{Pane(9, "0,0,1,1", "true"), Pane(12, "", ""), "0"}, ""},
  };
  for (const Case& c : cases) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChProgram, Program(h, "0,0,1920,1080", c.panes)), 0);
    EXPECT_EQ(h.Kinds(), c.expected) << c.panes[0];
  }
  // A position finding of row 1 silences the frame's size test.
  CheckerHarness h;
  EXPECT_EQ(h.Check(ChProgram, Program(h, "0,5,1920,1080", {Pane(1, "0,0,3000,3000", "true")})),
            0);
  EXPECT_EQ(h.Kinds(), "PG0702:E");
}

TEST(CheckerLayout, BackgroundAndSoundPlaylistsMustBeEmpty) {
  CheckerHarness h;
  h.Csv("P/playlist_0.csv", {});
  h.Csv("P/playlist_7.csv", {"information\\\\contents_7_001.csv"});
  EXPECT_EQ(h.Check(ChProgram, Program(h, "0,0,1920,1080",
                                       {"0,playlist_0.csv,0,0,0,0,0x0", "7,playlist_7.csv",
                                        "0,playlist_7.csv", "7,missing.csv", "0"})),
            0);
  EXPECT_EQ(h.Kinds(), "PG0908:E@1 PG0901:E@2");
}

TEST(CheckerLayout, ShortPaneLineEndsTheWalkWith500ByValue) {
  for (const char* line : {"1,playlist_1.csv,0,0", "7"}) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChProgram, Program(h, "0,0,1920,1080", {line})), 10000 - 500) << line;
  }
}

// A refusal by extension silences the type rules of row 1.
TEST(CheckerContent, ExtensionsAndTheirMessages) {
  LocaleScope locale("C");
  struct Case {
    std::string content, type, kinds, text;
  } cases[] = {
      {"C:\\\\https://x\\\\a.exe", "1", "", ""},
      {"a.TLP", "1", "", ""},  // passes without the telop tests
      {"a.EXE", "1", "CI0100:E", "Not support the content of the extension (.EXE)."},
      {"a.$str$", "1", "CI0100:E", "Not support the content of the extension (.$str$)."},
      {"noextension.", "3", "CI0100:E CI0204:E", "Content of unsupported format is specified."},
  };
  for (const Case& c : cases) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChContentsInfo, h.Csv("c.csv", {c.content, c.type + ",,,,0x0"})), 0);
    EXPECT_EQ(h.Kinds(), c.kinds) << c.content;
    EXPECT_EQ(h.Results().empty() ? "" : h.Results()[0].text, c.text);
  }
}

TEST(CheckerContent, ColourAndEffects) {
  CheckerHarness h;
  const std::string cells = "1,00:00:05,,false,";
  h.Check(ChContentsInfo, h.Csv("a.csv", {"a.jpg", cells + ",0,,0,0,0,100,15"}));
  h.Check(ChContentsInfo, h.Csv("b.csv", {"a.jpg", cells + "0x0,0,,0,0,0,100,271"}));
  h.Check(ChContentsInfo, h.Csv("c.csv", {"a.jpg", cells + "0x0,0,,0,0,0,100,14"}));
  h.Check(ChContentsInfo, h.Csv("d.csv", {"a.jpg", cells + "0x0,0,,0,0,0,100,-246"}));
  h.Check(ChContentsInfo, h.Csv("e.csv", {"a.jpg", cells + "0x0,0,,0,0,0,100,"}));
  h.Check(ChContentsInfo, h.Csv("f.csv", {"a.jpg", "1,00:00:05,,false"}));
  EXPECT_EQ(h.Kinds(), "CHECK_COLOR:E CI1401:E CI1401:E CI1380:E");
}

// A telop file: line 1, the parameter line, the text lines.
std::string Telop(int font_size, int mode, const std::vector<std::string>& lines) {
  std::string text = "telop\r\n0,0," + std::to_string(font_size) + ",0,0,0,0," +
                     std::to_string(mode) + ",0\r\n";
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

std::string Utf16Le(const std::string& utf8) {
  std::string out = "\xFF\xFE";
  for (const char16_t c : U16(utf8)) {
    out.push_back(static_cast<char>(c & 0xFF));
    out.push_back(static_cast<char>(c >> 8));
  }
  return out;
}

// Checks a contents file naming a telop whose bytes are given.
std::string CheckTelop(const std::string& bytes, std::int32_t expected_code = 0) {
  CheckerHarness h;
  WriteFile(h.dir.Sub("proj/contents/t.tlp"), bytes);
  const std::string contents = h.Csv("proj/P/information/contents_5_001.csv",
                                     {"..\\\\contents\\\\t.tlp", "4,,,,0x0"});
  EXPECT_EQ(h.Check(ChContentsInfo, contents), expected_code);
  return h.Kinds();
}

TEST(CheckerContent, TelopLimits) {
  // Characters, not bytes: 70 kanji in code page 932 and in UTF-16.
  std::string kanji70;
  for (int i = 0; i < 70; ++i) kanji70 += "字";
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, 0, {kanji70.substr(0, 69 * 3)}))), "");
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, 0, {kanji70}))), "CI2301:E");
  EXPECT_EQ(CheckTelop(Utf16Le(Telop(100, 0, {kanji70}))), "CI2301:E");
  // A UTF-16 line of more than 1024 characters takes no part.
  EXPECT_EQ(CheckTelop(Utf16Le(Telop(100, 0, {std::string(1025, 'a')}))), "");
  // Long code page 932 lines read as pieces, within the conversion buffer.
  EXPECT_EQ(CheckTelop(Telop(1, 0, {std::string(5000, 'a')})), "");
  std::string kana;
  for (int i = 0; i < 3000; ++i) kana += "\xB1";  // half-width katakana, 3 bytes as UTF-8
  // A piece of 1023 such bytes keeps the 341 characters that fit in 1024 bytes.
  EXPECT_EQ(CheckTelop(Telop(20, 0, {kana})), "");
  EXPECT_EQ(CheckTelop(Telop(21, 0, {kana})), "CI2301:E");
}

TEST(CheckerContent, BrokenTelopsFailWith500ByValue) {
  EXPECT_EQ(CheckTelop("only one line", 10000 - 500), "");
  EXPECT_EQ(CheckTelop("t\n1,2,100,4\nx\n", 10000 - 500), "");
  CheckerHarness h;
  EXPECT_EQ(h.Check(ChContentsInfo, h.Csv("proj/P/information/c.csv",
                                          {"..\\\\contents\\\\missing.tlp", "4"})),
            10000 - 500);
}

TEST(CheckerContent, TelopPathFollowsTheRun) {
  CheckerHarness h;
  checker::QvChRunner runner(h.checker);
  runner.file = u"/a/b/c/d/e/f/g/h/P/information/contents_1_001.csv";
  EXPECT_EQ(U8(runner.telopPath(u"..\\..\\t.tlp")), "/a/b/c/d/e/f/g/h/../t.tlp");
  EXPECT_EQ(U8(runner.telopPath(u"x\\t.tlp")), "x/t.tlp");
  h.checker.check_only = true;  // seven levels up
  EXPECT_EQ(U8(runner.telopPath(u"..\\..\\t.tlp")), "/a/b/c/t.tlp");
}

}  // namespace
}  // namespace qvtest
