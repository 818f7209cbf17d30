#include "workspace/text_conversion.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

TEST(ByteOrderMark, EachMarkAndShortFiles) {
  qvtest::ScratchDir scratch;
  struct Case {
    std::string bytes;
    int mark;
  };
  const Case cases[] = {
      {"", 0},
      {"\xFF", 0},                  // one byte: no mark
      {"\xFF\xFE", 1},
      {"\xFE\xFFrest", 2},
      {"\xEF\xBB\xBF<x/>", 3},
      {"\xEF\xBB\x00", 3},          // the third byte is not looked at
      {"\xFE\xFE", 0},
      {"ab", 0},
  };
  int n = 0;
  for (const Case& c : cases) {
    const std::string path = scratch.Sub("f" + std::to_string(n++));
    qvtest::WriteFile(path, std::string(c.bytes.data(), c.bytes.size()));
    EXPECT_EQ(ReadByteOrderMark(qvtest::U16(path)), c.mark) << n;
  }
  EXPECT_THROW(ReadByteOrderMark(qvtest::U16(scratch.Sub("missing"))), std::runtime_error);
}

TEST(CodePages, Cp932RoundTripAndUtf8) {
  const std::u16string text = u"番組ｱｲｳ～①abc";
  const std::string bytes = Cp932FromWide(text);
  EXPECT_EQ(bytes, qvtest::Cp932("番組ｱｲｳ～①abc"));
  EXPECT_EQ(WideFromCp932(bytes), text);
  EXPECT_TRUE(WideFromCp932("").empty());
  EXPECT_EQ(Utf8FromWide(u"テロップ"), "テロップ");
}

}  // namespace
