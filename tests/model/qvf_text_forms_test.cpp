// Text forms: colours in both forms, the scans of dates and times with the
// fields they leave alone, _wtoi integers and the flag parses.
#include "model/qvf_text_forms.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quorvane::qvformat::format {
namespace {

QvFColor Color(int a, int r, int g, int b) {
  QvFColor c;
  c.a = a;
  c.r = r;
  c.g = g;
  c.b = b;
  return c;
}

void ExpectColor(const QvFColor& c, int a, int r, int g, int b) {
  EXPECT_EQ(c.a, a);
  EXPECT_EQ(c.r, r);
  EXPECT_EQ(c.g, g);
  EXPECT_EQ(c.b, b);
}

std::tm Sample() {
  std::tm t{};
  t.tm_year = 120;
  t.tm_mon = 6;
  t.tm_mday = 15;
  t.tm_hour = 10;
  t.tm_min = 20;
  t.tm_sec = 30;
  return t;
}

TEST(ModelTextForms, OpaqueColoursHaveSixDigitsOthersEightAlphaFirst) {
  EXPECT_EQ(FormatColorHash(Color(255, 212, 240, 255)), u"#d4f0ff");
  EXPECT_EQ(FormatColorHex(Color(255, 212, 240, 255)), u"0xd4f0ff");
  EXPECT_EQ(FormatColorHash(Color(128, 1, 2, 3)), u"#80010203");
  EXPECT_EQ(FormatColorHex(Color(0, 0, 0, 0)), u"0x00000000");

  for (std::u16string text : {u"#80010203", u"0x80010203"}) {
    QvFColor c;
    ParseColor(text, c);
    ExpectColor(c, 128, 1, 2, 3);
  }
}

TEST(ModelTextForms, ParseColorKeepsAlphaOfSixDigitsAndReadsBothCases) {
  QvFColor fresh;
  ParseColor(u"0x000000", fresh);
  ExpectColor(fresh, 255, 0, 0, 0);

  QvFColor half = Color(7, 9, 9, 9);
  ParseColor(u"#D4F0FF", half);
  ExpectColor(half, 7, 212, 240, 255);

  QvFColor clear;
  ParseColor(u"#00000000", clear);
  ExpectColor(clear, 0, 0, 0, 0);

  QvFColor untouched = Color(1, 2, 3, 4);
  ParseColor(u"", untouched);
  ExpectColor(untouched, 1, 2, 3, 4);

  // Reading stops at the first character that is not a digit; the length of
  // the rest still decides about alpha.
  QvFColor stopped;
  ParseColor(u"#12zz5678", stopped);
  ExpectColor(stopped, 0, 0, 0, 0x12);
}

TEST(ModelTextForms, ParseColorWithoutMarkerFails) {
  QvFColor c;
  EXPECT_THROW(ParseColor(u"d4f0ff", c), std::out_of_range);
  EXPECT_THROW(ParseColor(u"0Xd4f0ff", c), std::out_of_range);
  ExpectColor(c, 255, 0, 0, 0);
}

TEST(ModelTextForms, DatesScanAtMostFourTwoTwoDigits) {
  std::tm t = Sample();
  ParseDate(u"2024/1/2", t);
  EXPECT_EQ(FormatDate(t), u"2024/01/02");
  EXPECT_EQ(t.tm_hour, 10);  // a date sets only the date

  t = Sample();
  ParseDate(u" 1999/ 12/ 31", t);  // white space before a number is skipped
  EXPECT_EQ(FormatDate(t), u"1999/12/31");

  // Unreadable and empty texts leave the date whole.
  for (std::u16string text : {u"", u"abc", u"/2024/01/01", u"-/01/01"}) {
    t = Sample();
    ParseDate(text, t);
    EXPECT_EQ(FormatDate(t), u"2020/07/15") << "text: " << text.size();
  }

  // Fields behind the first mismatch keep their value.
  t = Sample();
  ParseDate(u"2024-01-05", t);
  EXPECT_EQ(FormatDate(t), u"2024/07/15");
  t = Sample();
  ParseDate(u"20245/01/05", t);  // the fifth digit is where "/" should be
  EXPECT_EQ(FormatDate(t), u"2024/07/15");
  t = Sample();
  ParseDate(u"2024/123/4", t);
  EXPECT_EQ(FormatDate(t), u"2024/12/15");
}

TEST(ModelTextForms, TimesScanTwoDigitFieldsAndStopAtAMismatch) {
  std::tm t = Sample();
  ParseTime(u"9:5:1", t);
  EXPECT_EQ(FormatTime(t), u"09:05:01");
  EXPECT_EQ(t.tm_mday, 15);  // a time sets only the time

  t = Sample();
  ParseTime(u"08:45", t);
  EXPECT_EQ(FormatTime(t), u"08:45:30");

  t = Sample();
  ParseTime(u"123:00:00", t);
  EXPECT_EQ(FormatTime(t), u"12:20:30");

  t = Sample();
  ParseTime(u"x1:00:00", t);
  EXPECT_EQ(FormatTime(t), u"10:20:30");

  t = Sample();
  ParseTime(u"99:99:99", t);  // no range is tested here
  EXPECT_EQ(FormatTime(t), u"99:99:99");
}

TEST(ModelTextForms, IntegersParseAsWtoi) {
  EXPECT_EQ(ParseInt(u"42"), 42);
  EXPECT_EQ(ParseInt(u"  -17px"), -17);
  EXPECT_EQ(ParseInt(u"+8"), 8);
  EXPECT_EQ(ParseInt(u""), 0);
  EXPECT_EQ(ParseInt(u"abc"), 0);
  EXPECT_EQ(ParseInt(u"- 5"), 0);
  EXPECT_EQ(ParseInt(u"99999999999999999999"), 2147483647);
  EXPECT_EQ(ParseInt(u"-2147483648"), -2147483647 - 1);
  EXPECT_EQ(FormatInt(-2147483647 - 1), u"-2147483648");
  EXPECT_EQ(FormatInt(0), u"0");

  QvFRegion region;
  region.x = 9;
  ParseRegion(u"", u"10", u"1920", u"x", region);
  EXPECT_EQ(region.x, 0);
  EXPECT_EQ(region.y, 10);
  EXPECT_EQ(region.width, 1920);
  EXPECT_EQ(region.height, 0);
  auto texts = FormatRegion(region);
  EXPECT_EQ(texts[2], u"1920");
}

TEST(ModelTextForms, FlagForms) {
  EXPECT_EQ(FormatFlag(std::optional<bool>()), u"false");
  EXPECT_EQ(FormatFlag(std::optional<bool>(true)), u"true");

  EXPECT_EQ(ParseBoolValue(u"1"), std::optional<bool>(true));
  EXPECT_EQ(ParseBoolValue(u"0"), std::optional<bool>(false));
  EXPECT_EQ(ParseBoolValue(u"true"), std::optional<bool>(true));
  EXPECT_EQ(ParseBoolValue(u"false"), std::optional<bool>(false));
  for (std::u16string text : {u"yes", u"", u"TRUE", u"t", u"01", u" true"}) {
    EXPECT_FALSE(ParseBoolValue(text).has_value());
  }

  bool flag = true;
  ParseDefaultFlag(u"", flag);
  EXPECT_TRUE(flag);
  ParseDefaultFlag(u"1", flag);
  EXPECT_FALSE(flag);
  ParseDefaultFlag(u"TrUe", flag);
  EXPECT_TRUE(flag);
  ParseDefaultFlag(u"no", flag);
  EXPECT_FALSE(flag);
}

}  // namespace
}  // namespace quorvane::qvformat::format
