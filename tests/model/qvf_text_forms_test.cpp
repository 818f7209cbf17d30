// Text forms: colours both ways, date and time scans with the fields they leave alone, _wtoi
// integers, flags.
#include "model/qvf_text_forms.h"
#include "model/qvf_number_scan.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

namespace quorvane::qvformat::format {
namespace {

QvFColor Color(int a, int r, int g, int b) {
  QvFColor c;
  c.a = a, c.r = r, c.g = g, c.b = b;
  return c;
}

std::array<int, 4> Parts(const QvFColor& c) { return {c.a, c.r, c.g, c.b}; }

// 2020/07/15 10:20:30
std::tm Sample() {
  std::tm t{};
  t.tm_year = 120, t.tm_mon = 6, t.tm_mday = 15, t.tm_hour = 10, t.tm_min = 20, t.tm_sec = 30;
  return t;
}

std::u16string DateAfter(std::u16string_view text) {
  std::tm t = Sample();
  ParseDate(text, t);
  return FormatDate(t);
}

std::u16string TimeAfter(std::u16string_view text) {
  std::tm t = Sample();
  ParseTime(text, t);
  return FormatTime(t);
}

TEST(ModelTextForms, ColoursBothFormsBothWays) {
  EXPECT_EQ(FormatColorHash(Color(255, 212, 240, 255)), u"#d4f0ff");  // opaque: six digits
  EXPECT_EQ(FormatColorHex(Color(128, 1, 2, 3)), u"0x80010203");

  const struct {
    std::u16string text;
    QvFColor before;
    std::array<int, 4> after;
  } cases[] = {
      {u"0x80010203", QvFColor(), {128, 1, 2, 3}},
      {u"0x000000", QvFColor(), {255, 0, 0, 0}},            // six digits keep alpha
      {u"#D4F0FF", Color(7, 0, 0, 0), {7, 212, 240, 255}},  // both cases read
      {u"#00000000", QvFColor(), {0, 0, 0, 0}},
      {u"", Color(1, 2, 3, 4), {1, 2, 3, 4}},             // empty changes nothing
      {u"#12zz5678", QvFColor(), {0, 0, 0, 0x12}},        // digits stop; length decides alpha
      {u"#1ffffffff", QvFColor(), {255, 255, 255, 255}},  // overflow: the largest value
      {u"#-1", QvFColor(), {255, 255, 255, 255}},         // a sign wraps round
  };
  for (const auto& c : cases) {
    QvFColor color = c.before;
    ParseColor(c.text, color);
    EXPECT_EQ(Parts(color), c.after) << std::string(c.text.begin(), c.text.end());
  }

  QvFColor untouched;
  EXPECT_THROW(ParseColor(u"d4f0ff", untouched), std::out_of_range);
  EXPECT_THROW(ParseColor(u"0Xd4f0ff", untouched), std::out_of_range);
  EXPECT_EQ(Parts(untouched), (std::array<int, 4>{255, 0, 0, 0}));
}

TEST(ModelTextForms, DatesScanAtMostFourTwoTwoDigitsTimesTwoEach) {
  EXPECT_EQ(DateAfter(u"2024/1/2"), u"2024/01/02");
  EXPECT_EQ(DateAfter(u" 1999/ 12/ 31"), u"1999/12/31");
  // Unreadable and empty texts leave the date whole.
  for (std::u16string_view text : {u"", u"abc", u"/2024/01/01", u"-/01/01"})
    EXPECT_EQ(DateAfter(text), u"2020/07/15");
  // Fields behind the first mismatch keep their value.
  EXPECT_EQ(DateAfter(u"2024-01-05"), u"2024/07/15");
  EXPECT_EQ(DateAfter(u"20245/01/05"), u"2024/07/15");
  EXPECT_EQ(DateAfter(u"2024/123/4"), u"2024/12/15");

  std::tm t = Sample();
  ParseDate(u"2001/02/03", t);
  EXPECT_EQ(t.tm_hour, 10);  // a date sets only the date

  // Times scan two-digit fields and stop at a mismatch.
  EXPECT_EQ(TimeAfter(u"9:5:1"), u"09:05:01");
  EXPECT_EQ(TimeAfter(u"08:45"), u"08:45:30");
  EXPECT_EQ(TimeAfter(u"123:00:00"), u"12:20:30");
  EXPECT_EQ(TimeAfter(u"x1:00:00"), u"10:20:30");
  EXPECT_EQ(TimeAfter(u"99:99:99"), u"99:99:99");  // no range is tested here
}

TEST(ModelTextForms, IntegersAndRegions) {
  const std::pair<std::u16string_view, int> ints[] = {{u"  -17px", -17},
                                                      {u"+8", 8},
                                                      {u"", 0},
                                                      {u"- 5", 0},
                                                      {u"99999999999999999999", 2147483647},
                                                      {u"-2147483648", -2147483647 - 1}};
  for (const auto& [text, value] : ints) EXPECT_EQ(ParseInt(text), value);
  EXPECT_EQ(FormatInt(-2147483647 - 1), u"-2147483648");
  // The hexadecimal reading of the check table's numbers: wcstol base 16.
  const std::pair<std::u16string_view, int> hex[] = {{u" ff", 255},
                                                     {u"0x7fffffff", 2147483647},
                                                     {u"-0x80000000", -2147483647 - 1},
                                                     {u"0x", 0},
                                                     {u"0xg", 0},
                                                     {u"-1ffffffff", -2147483647 - 1},
                                                     {u"100000000", 2147483647}};
  for (const auto& [text, value] : hex) EXPECT_EQ(ParseLong(text, 16), value);

  QvFRegion region;
  region.x = 9;
  ParseRegion(u"", u"10", u"1920", u"x", region);
  EXPECT_EQ(FormatRegion(region), (std::array<std::u16string, 4>{u"0", u"10", u"1920", u"0"}));
}

TEST(ModelTextForms, FlagForms) {
  EXPECT_EQ(FormatFlag(std::optional<bool>()), u"false");
  EXPECT_EQ(ParseBoolValue(u"1"), std::optional<bool>(true));
  EXPECT_EQ(ParseBoolValue(u"false"), std::optional<bool>(false));
  for (std::u16string_view text : {u"yes", u"", u"TRUE", u"t", u"01", u" true"})
    EXPECT_FALSE(ParseBoolValue(text).has_value());

  bool flag = true;
  ParseDefaultFlag(u"", flag);  // empty changes nothing
  ParseDefaultFlag(u"TrUe", flag);
  EXPECT_TRUE(flag);
  ParseDefaultFlag(u"1", flag);
  EXPECT_FALSE(flag);
}

}  // namespace
}  // namespace quorvane::qvformat::format
