// Text forms: colours both ways, date and time scans with the fields they leave alone, _wtoi
// integers; the runtime's white space before every kind of number and the field widths of
// the "%<width>d" scans.
#include "model/qvf_number_scan.h"
#include "model/qvf_text_forms.h"

#include <array>
#include <initializer_list>

#include "tests/support/test_support.h"

namespace quorvane::qvformat::format {
namespace {

QvFColor Color(int a, int r, int g, int b) { return {{}, a, r, g, b}; }

// What `form` gives for each text, ';' after each; Date and Time start from 2020/07/15 10:20:30.
template <typename Form>
std::u16string Each(Form form, std::initializer_list<std::u16string_view> texts) {
  std::u16string out;
  for (std::u16string_view text : texts) out += form(text) + u";";
  return out;
}
std::u16string Date(std::u16string_view text) {
  std::tm t = qvtest::Tm(2020, 7, 15, 10, 20, 30);
  return ParseDate(text, t), FormatDate(t);
}
std::u16string Time(std::u16string_view text) {
  std::tm t = qvtest::Tm(2020, 7, 15, 10, 20, 30);
  return ParseTime(text, t), FormatTime(t);
}

TEST(ModelTextForms, ColoursBothFormsBothWays) {
  EXPECT_EQ(FormatColorHash(Color(255, 212, 240, 255)), u"#d4f0ff");  // opaque: six digits
  EXPECT_EQ(FormatColorHex(Color(128, 1, 2, 3)), u"0x80010203");
  const struct {
    std::u16string text;
    QvFColor before;
    QvFColor after;
  } cases[] = {
      {u"0x80010203", QvFColor(), Color(128, 1, 2, 3)},
      {u"0x000000", QvFColor(), Color(255, 0, 0, 0)},            // six digits keep alpha
      {u"#D4F0FF", Color(7, 0, 0, 0), Color(7, 212, 240, 255)},  // both cases read
      {u"#00000000", QvFColor(), Color(0, 0, 0, 0)},
      {u"", Color(1, 2, 3, 4), Color(1, 2, 3, 4)},             // empty changes nothing
      {u"#12zz5678", QvFColor(), Color(0, 0, 0, 0x12)},        // digits stop; length: alpha
      {u"#1ffffffff", QvFColor(), Color(255, 255, 255, 255)},  // overflow: the largest value
      {u"#-1", QvFColor(), Color(255, 255, 255, 255)},         // a sign wraps round
  };
  for (const auto& c : cases) {
    QvFColor color = c.before;
    ParseColor(c.text, color);
    EXPECT_EQ(FormatColorHex(color), FormatColorHex(c.after)) << qvtest::U8(c.text);
  }
  QvFColor untouched;
  EXPECT_THROW(ParseColor(u"d4f0ff", untouched), std::out_of_range);
  EXPECT_THROW(ParseColor(u"0Xd4f0ff", untouched), std::out_of_range);
  EXPECT_EQ(FormatColorHex(untouched), u"0x000000");  // opaque black, as it was
}

// Unreadable and empty texts leave the date whole; fields behind the first mismatch keep theirs; a
// date sets only the date.  Times scan two-digit fields and stop at a mismatch; no range is tested.
TEST(ModelTextForms, DatesScanAtMostFourTwoTwoDigitsTimesTwoEach) {
  EXPECT_EQ(Each(Date, {u"2024/1/2", u" 1999/ 12/ 31", u"", u"abc", u"/2024/01/01", u"-/01/01",
                        u"2024-01-05", u"20245/01/05", u"2024/123/4"}),
            u"2024/01/02;1999/12/31;2020/07/15;2020/07/15;2020/07/15;2020/07/15;2024/07/15;"
            u"2024/07/15;2024/12/15;");
  std::tm t = qvtest::Tm(2020, 7, 15, 10, 20, 30);
  ParseDate(u"2001/02/03", t);
  EXPECT_EQ(FormatTime(t), u"10:20:30");
  EXPECT_EQ(Each(Time, {u"9:5:1", u"08:45", u"123:00:00", u"x1:00:00", u"99:99:99"}),
            u"09:05:01;08:45:30;12:20:30;10:20:30;99:99:99;");
}

TEST(ModelTextForms, IntegersAndRegions) {
  const auto dec = [](std::u16string_view text) { return FormatInt(ParseInt(text)); };
  EXPECT_EQ(Each(dec, {u"  -17px", u"+8", u"", u"- 5", u"99999999999999999999", u"-2147483648"}),
            u"-17;8;0;0;2147483647;-2147483648;");
  // The hexadecimal reading of the check table's numbers: wcstol base 16.
  const auto hex = [](std::u16string_view text) { return FormatInt(ParseLong(text, 16)); };
  EXPECT_EQ(Each(hex, {u" ff", u"0x7fffffff", u"-0x80000000", u"0x", u"0xg", u"-1ffffffff",
                       u"100000000"}),
            u"255;2147483647;-2147483648;0;0;-2147483648;2147483647;");
  QvFRegion region;
  region.x = 9;
  ParseRegion(u"", u"10", u"1920", u"x", region);
  EXPECT_EQ(FormatRegion(region), (std::array<std::u16string, 4>{u"0", u"10", u"1920", u"0"}));
}

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
    EXPECT_EQ(Date(s + u"2026/3/4"), u"2020/07/15");
  }
}

// The fields that a scan of `text` reads, ',' after each: dates '/'-separated at the widths 4, 2
// and 2, times ':'-separated at 2 each.
std::u16string Scanned(std::u16string_view text) {
  const bool time = text.find(u':') != text.npos;
  const int widths[] = {time ? 2 : 4, 2, 2};
  std::vector<int> values(3, 77);
  const int read = ScanDecimalFields(text, time ? u':' : u'/', widths, values);
  std::u16string out;
  for (int i = 0; i < read; ++i) out += FormatInt(values[static_cast<std::size_t>(i)]) + u",";
  return out;
}

// A fifth digit of the year is no separator, and a sign alone is no number.
TEST(ModelNumberScan, FieldWidthsCountTheSignButNotTheSpace) {
  EXPECT_EQ(Each(Scanned, {u"2026/11/123", u"2026/12/-25", u"2026/+1/\u3000\u30009", u"20261/1/1",
                           u"2026/-/1", u"2026/1 /1", u"12:34:567", u"-1:2", u"123:00:00", u""}),
            u"2026,11,12,;2026,12,-2,;2026,1,9,;2026,;2026,;2026,1,;12,34,56,;-1,2,;12,;;");
  const int wide[] = {12};
  int value = 0;
  ScanDecimalFields(u"-99999999999", u'/', wide, {&value, 1});
  EXPECT_EQ(value, -2147483647 - 1);  // a long field stops at the 32-bit bounds
}

}  // namespace
}  // namespace quorvane::qvformat::format
