#include <gtest/gtest.h>

#include <tuple>

#include "tests/checker/checker_harness.h"
#include "tests/support/fake_env.h"

namespace qvtest {
namespace {

using checker::ChContentsInfo;
using checker::ChProgram;

// The findings on a program of the frame `frame` (x,y,w,h) and pane lines, and the code if not 0.
std::string Layout(const std::string& frame, const std::vector<std::string>& panes = {}) {
  CheckerHarness h;
  std::vector<std::string> lines = {"prog", "0xD4F0FF," + frame + ",00:01:00,0"};
  lines.insert(lines.end(), panes.begin(), panes.end());
  const std::int32_t code = h.Check(ChProgram, h.Csv("P/program.csv", lines));
  return h.Kinds() + (code ? " =" + std::to_string(code) : "");
}

std::string Pane(int n, const std::string& region, const std::string& used) {
  return std::to_string(n) + ",playlist_" + std::to_string(n) + ".csv," + region + ",0x0,false,0," +
         used;
}

TEST(CheckerLayout, ProgramFrameAgainstTheRegionAndPaneRoles) {
  EXPECT_EQ(Layout("0,10,1920,1080"), "PG0702:E");
  EXPECT_EQ(Layout("5a,0,1920,1080"), "PG0701:E PG0301:E");
  EXPECT_EQ(Layout("0,0,1200,1200"), "PG0501:E");
  EXPECT_EQ(Layout("10,0,5000,5000"), "PG0701:E");  // no size finding after a position finding
  CheckerHarness h;                                 // no height cell: no finding
  EXPECT_EQ(h.Check(ChProgram, h.Csv("p.csv", {"n", "0x0,0,0,5000"})), 0);
  EXPECT_FALSE(h.checker.has_result);
  // A position finding of row 1 silences the frame's size test.
  EXPECT_EQ(Layout("0,5,1920,1080", {Pane(1, "0,0,3000,3000", "true")}), "PG0702:E");

  // Pane roles.
  const std::string full = "0,0,1920,1080";
  EXPECT_EQ(Layout(full, {Pane(1, full, "true"), Pane(2, "0,0,10,10", "1")}), "PG0903:E@1");
  EXPECT_EQ(Layout(full, {Pane(1, "0,0,10,10", "false"), Pane(3, "0,0,10,10", "")}), "");
  EXPECT_EQ(Layout(full, {Pane(1, "0,1081,3000,100", "TRUE")}), "PG1201:W PG1301:W");
  EXPECT_EQ(Layout(full, {Pane(1, "-1,0,10,10", "true")}), "PG1101:E");
  EXPECT_EQ(Layout(full, {Pane(5, "0,0,1,1", "true"), Pane(6, "0,0,1,1", "true")}), "PG0907:E@1");
  EXPECT_EQ(Layout(full, {Pane(6, "0,0,1,1", "true"), Pane(5, "0,0,1,1", "true")}), "PG0906:E@1");
  EXPECT_EQ(Layout(full, {Pane(8, "0,0,1,1", "true"), Pane(8, "0,0,1,1", "0"),
                          Pane(8, "0,0,1,1", "false")}),
            "PG0909:E@0");
  EXPECT_EQ(Layout(full, {Pane(9, "0,0,1,1", "true"), Pane(12, "", ""), "0"}), "");
  // A short pane line ends the walk with -500 thrown by value.
  EXPECT_EQ(Layout(full, {"1,playlist_1.csv,0,0"}), " =9500");
  EXPECT_EQ(Layout(full, {"7"}), " =9500");
}

TEST(CheckerLayout, BackgroundAndSoundPlaylistsMustBeEmpty) {
  CheckerHarness h;
  h.Csv("P/playlist_0.csv", {}), h.Csv("P/playlist_7.csv", {"information\\\\contents_7_001.csv"});
  const std::string program = h.Csv(
      "P/program.csv", {"prog", "0xD4F0FF,0,0,1920,1080,00:01:00,0", "0,playlist_0.csv,0,0,0,0,0x0",
                        "7,playlist_7.csv", "0,playlist_7.csv", "7,missing.csv", "0"});
  EXPECT_EQ(h.Check(ChProgram, program), 0);
  EXPECT_EQ(h.Kinds(), "PG0908:E@1 PG0901:E@2");
}

// A refusal by extension silences the type rules of row 1.
TEST(CheckerContent, ExtensionsColoursAndEffects) {
  FixedLocale locale("C");
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"C:\\\\https://x\\\\a.exe", "1", ""},
      {"a.TLP", "1", ""},  // passes without the telop tests
      {"a.$str$", "1", "CI0100:E Not support the content of the extension (.$str$)."},
      {"noextension.", "3", "CI0100:E CI0204:E Content of unsupported format is specified."},
  };
  for (const auto& [content, type, expected] : cases) {
    CheckerHarness h;
    EXPECT_EQ(h.Check(ChContentsInfo, h.Csv("c.csv", {content, type + ",,,,0x0"})), 0);
    EXPECT_EQ(h.Kinds() + (h.Results().empty() ? "" : " " + h.Results()[0].text), expected)
        << content;
  }
  // No colour, effect 15 however packed, an unknown direction, no effect cell.
  CheckerHarness h;
  int n = 0;
  for (const char* cells : {",,0,,0,0,0,100,15", ",0x0,0,,0,0,0,100,271", ",0x0,0,,0,0,0,100,14",
                            ",0x0,0,,0,0,0,100,-246", ",0x0,0,,0,0,0,100,", ""})
    h.Check(ChContentsInfo, h.Csv(std::to_string(++n) + ".csv",
                                  {"a.jpg", std::string("1,00:00:05,,false") + cells}));
  EXPECT_EQ(h.Kinds(), "CHECK_COLOR:E CI1401:E CI1401:E CI1380:E");
}

// A telop file: line 1, the parameter line, the text lines.
std::string Telop(int font_size, const std::string& line) {
  return "telop\r\n0,0," + std::to_string(font_size) + ",0,0,0,0,0,0\r\n" + line + "\r\n";
}

std::string Utf16Le(const std::string& utf8) {
  std::string out = "\xFF\xFE";
  for (const char16_t c : U16(utf8))
    out += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
  return out;
}

// The findings on a contents file naming a telop of the given bytes, and the code if not 0.
std::string CheckTelop(const std::string& bytes, const std::string& name = "t.tlp") {
  CheckerHarness h;
  WriteFile(h.dir.Sub("proj/contents/t.tlp"), bytes);
  h.Csv("proj/P/information/contents_5_001.csv", {"..\\\\contents\\\\" + name, "4,,,,0x0"});
  const std::int32_t code =
      h.Check(ChContentsInfo, h.dir.Sub("proj") + "\\P\\information\\contents_5_001.csv");
  return h.Kinds() + (code ? " =" + std::to_string(code) : "");
}

TEST(CheckerContent, TelopLimitsAndBrokenTelops) {
  // Characters, not bytes: 69 kanji pass, 70 do not.
  std::string kanji70;
  for (int i = 0; i < 70; ++i) kanji70 += "字";
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70.substr(0, 69 * 3)))), "");
  EXPECT_EQ(CheckTelop(Cp932(Telop(100, kanji70))), "CI2301:E");
  // A UTF-16 line of more than 1024 characters takes no part.
  EXPECT_EQ(CheckTelop(Utf16Le(Telop(100, std::string(1025, 'a')))), "");
  // Long code page 932 lines read as pieces of 1023 bytes: 1023 half-width
  // katakana (3 bytes as UTF-8) keep the 341 characters that fit in 1024 bytes.
  EXPECT_EQ(CheckTelop(Telop(20, std::string(3000, '\xB1'))), "");
  EXPECT_EQ(CheckTelop(Telop(21, std::string(3000, '\xB1'))), "CI2301:E");
  // Broken or missing telops end the check with -500 thrown by value.
  EXPECT_EQ(CheckTelop("only one line"), " =9500");
  EXPECT_EQ(CheckTelop("t\n1,2,100,4\nx\n"), " =9500");
  EXPECT_EQ(CheckTelop("", "missing.tlp"), " =9500");
}

}  // namespace
}  // namespace qvtest
