// The shared text helpers: ASCII only, and the piece counts that the command
// line, the check table and the telop parameters build on.
#include "model/qvf_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvane::qvformat::format {
namespace {

TEST(SharedText, CommaPiecesAndAsciiOnly) {
  using Pieces = std::vector<std::u16string>;
  EXPECT_EQ(SplitAtCommas<char16_t>(u""), Pieces{u""});
  EXPECT_EQ(SplitAtCommas<char16_t>(u"a,,b,"), (Pieces{u"a", u"", u"b", u""}));
  EXPECT_EQ(SplitAtCommas<char>(","), (std::vector<std::string>{"", ""}));

  EXPECT_EQ(AsciiLower(u"JPEG.Äx"), u"jpeg.Äx");
  EXPECT_FALSE(IsAsciiSpace(u'\u3000'));
  EXPECT_FALSE(IsAsciiDigit(u'\uFF11'));
  EXPECT_EQ(Widen("\x85z"), std::u16string({u'\u0085', u'z'}));  // a byte, not a sign
  // Replacing goes on behind what it inserted, and an empty pattern replaces nothing.
  EXPECT_EQ(ReplaceAll(u"aaa", u"a", u"aa"), u"aaaaaa");
  EXPECT_EQ(ReplaceAll(u"ab", u"", u"x"), u"ab");
}

}  // namespace
}  // namespace quorvane::qvformat::format
