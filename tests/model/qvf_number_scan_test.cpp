// The runtime's white space before every kind of number, and the field widths
// of the "%<width>d" scans.
#include "model/qvf_number_scan.h"
#include "model/qvf_text_forms.h"

#include <gtest/gtest.h>

#include <vector>

namespace quorvane::qvformat::format {
namespace {

// Every character that Windows' iswspace takes, and near misses that it does not.
constexpr char16_t kSpaces[] = {0x0009, 0x000A, 0x000B, 0x000C, 0x000D, 0x0020, 0x0085,
                                0x00A0, 0x1680, 0x180E, 0x2000, 0x2001, 0x2002, 0x2003,
                                0x2004, 0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A,
                                0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
constexpr char16_t kNotSpaces[] = {0x0000, 0x0008, 0x000E, 0x001C, 0x001F, 0x0080, 0x00AD,
                                   0x180B, 0x200B, 0x200C, 0x2060, 0x3001, 0x3164, 0xFEFF};

TEST(ModelNumberScan, WindowsWhiteSpaceBeforeEveryNumber) {
  for (const char16_t c : kSpaces) {
    const std::u16string s(1, c);
    SCOPED_TRACE(static_cast<int>(c));
    EXPECT_TRUE(IsRuntimeSpace(c));
    EXPECT_EQ(ParseInt(s + s + u"-42x"), -42);
    EXPECT_EQ(ParseLong(s + u"0x1f", 16), 31);
    QvFColor color;
    ParseColor(u"#" + s + u"ff", color);
    EXPECT_EQ(color.b, 255);
    std::tm t{};
    ParseDate(s + u"2026/" + s + u"3/" + s + u"4", t);
    ParseTime(s + u"5:" + s + u"6:" + s + u"7", t);
    EXPECT_EQ(FormatDate(t) + u" " + FormatTime(t), u"2026/03/04 05:06:07");
    // A scan of 8-bit text skips only the ASCII set: 0x85 and 0xA0 are bytes of characters there.
    int value = 0;
    const int widths[] = {2};
    EXPECT_EQ(ScanDecimalFields(s + u"5", u':', widths, {&value, 1}, ScanUnits::kBytes),
              c <= 0x20 ? 1 : 0);
  }
  for (const char16_t c : kNotSpaces) {
    const std::u16string s(1, c);
    SCOPED_TRACE(static_cast<int>(c));
    EXPECT_FALSE(IsRuntimeSpace(c));
    EXPECT_EQ(ParseInt(s + u"42"), 0);
    std::tm t{};
    ParseDate(s + u"2026/3/4", t);
    EXPECT_EQ(t.tm_year, 0);
  }
}

TEST(ModelNumberScan, FieldWidthsCountTheSignButNotTheSpace) {
  const int date[] = {4, 2, 2};
  const int time[] = {2, 2, 2};
  const struct { std::u16string_view text; const int* widths; std::vector<int> read; } cases[] = {
      {u"2026/11/123", date, {2026, 11, 12}},
      {u"2026/12/-25", date, {2026, 12, -2}},
      {u"2026/+1/\u3000\u30009", date, {2026, 1, 9}},
      {u"20261/1/1", date, {2026}},  // the fifth digit is no separator
      {u"2026/-/1", date, {2026}},    // a sign alone is no number
      {u"2026/1 /1", date, {2026, 1}},
      {u"12:34:567", time, {12, 34, 56}},
      {u"-1:2", time, {-1, 2}},
      {u"123:00:00", time, {12}},
      {u"", time, {}},
  };
  for (const auto& c : cases) {
    std::vector<int> values(3, 77);
    const int read = ScanDecimalFields(c.text, c.text.find(u':') == c.text.npos ? u'/' : u':',
                                       {c.widths, 3}, values);
    values.resize(static_cast<std::size_t>(read));
    EXPECT_EQ(values, c.read) << std::string(c.text.begin(), c.text.end());
  }
  const int wide[] = {12};
  int value = 0;
  ScanDecimalFields(u"-99999999999", u'/', wide, {&value, 1});
  EXPECT_EQ(value, -2147483647 - 1);  // a long field stops at the 32-bit bounds
}

}  // namespace
}  // namespace quorvane::qvformat::format
