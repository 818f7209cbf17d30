#include "workspace/text_conversion.h"

#include <stdexcept>

#include "tests/support/test_support.h"

namespace {

TEST(ByteOrderMark, EachMarkAndShortFiles) {
  using quorvane::qvconv::converter::ReadByteOrderMark;
  qvtest::ScratchDir scratch;
  const std::pair<std::string, int> cases[] = {
      {"", 0},
      {"\xFF", 0},
      {"\xFF\xFE", 1},
      {"\xFE\xFFrest", 2},
      {"\xEF\xBB\xBF", 3},
      {"\xEF\xBBx", 3} /* the third byte is not looked at */,
      {"\xFE\xFE", 0},
      {"ab", 0},
  };
  int n = 0;
  for (const auto& [bytes, mark] : cases) {
    const std::string path = scratch.Sub("f" + std::to_string(n++));
    qvtest::WriteFile(path, bytes);
    EXPECT_EQ(ReadByteOrderMark(qvtest::U16(path)), mark) << n;
  }
  EXPECT_THROW(ReadByteOrderMark(qvtest::U16(scratch.Sub("missing"))), std::runtime_error);
}

}  // namespace
