// Telops recoded by the byte order mark that starts them, and their copies.  Identifiers that must
// not become paths in a package: tests/blackbox/hostile_package_test.cpp.
#include "pipeline/telop_copy.h"
#include "tests/support/test_support.h"
#include "workspace/text_conversion.h"

namespace quorvane::qvconv::converter {
namespace {

using namespace std::string_literals;
using qvtest::Cp932, qvtest::U16;

// The mark: 1 UTF-16 little-endian, 2 big-endian, 3 UTF-8 (its third byte not looked at), 0 none.
TEST(TelopRecoding, TheMarkOfAFileAndCopies) {
  qvtest::ScratchDir scratch;
  const std::pair<std::string, int> cases[] = {
      {"", 0},         {"\xFF", 0},         {"\xFF\xFE", 1},  {"\xFE\xFFrest", 2},
      {"\xFE\xFE", 0}, {"\xEF\xBB\xBF", 3}, {"\xEF\xBBx", 3}, {"ab", 0}};
  for (const auto& [bytes, mark] : cases) {
    qvtest::WriteFile(scratch.Sub("f"), bytes);
    EXPECT_EQ(ReadByteOrderMark(U16(scratch.Sub("f"))), mark) << bytes;
  }
  EXPECT_THROW(ReadByteOrderMark(U16(scratch.Sub("missing"))), std::runtime_error);
  // A copy without a source fails, as its mark cannot be read; a target that cannot be made is
  // passed over, and so is one that fills up.
  qvtest::WriteFile(scratch.Sub("t.tlp"), Cp932("速報"));
  EXPECT_THROW(CopyTelopAsText(U16(scratch.Sub("missing")), U16(scratch.Sub("x"))),
               std::runtime_error);
  EXPECT_NO_THROW(CopyTelopAsText(U16(scratch.Sub("t.tlp")), U16(scratch.Sub("no/such/x.tlp"))));
  EXPECT_NO_THROW(CopyTelopAsText(U16(scratch.Sub("t.tlp")), u"/dev/full"));
}

TEST(TelopRecoding, TextBecomesUtf8ByItsMark) {
  EXPECT_EQ(TelopAsUtf8("", 0), "");
  // Text mode: a bare line feed is written as CR LF, a lone CR stays, and a Ctrl-Z ends the text.
  EXPECT_EQ(TelopAsUtf8(Cp932("一\n二\r三\r\r\n四\x1a五\n"), 0), "一\r\n二\r三\r\r\n四");
  EXPECT_EQ(TelopAsUtf8("\n\x1a", 0), "\r\n");
  // Read in pieces of 1,023 bytes, each converted alone: 漢 (8A BF) cut after byte 1,023 comes out
  // as its lead byte alone (U+30FB, which no longer fits the piece's buffer of 1,024 bytes) and its
  // trail byte alone (U+FF7F).
  EXPECT_EQ(TelopAsUtf8(std::string(1022, 'A') + Cp932("漢字"), 0),
            std::string(1022, 'A') + "ｿ字");
  // A piece whose UTF-8 outgrows the buffer of 1,024 bytes keeps the whole characters that fit.
  std::string kana;
  for (int i = 0; i < 511; ++i) kana += "あ";
  EXPECT_EQ(TelopAsUtf8(Cp932(kana), 0), kana.substr(0, 341 * 3));
  // A UTF-8 mark is not honoured, and big-endian UTF-16 is read as code page 932 too: its zero
  // bytes stay.
  EXPECT_NE(TelopAsUtf8("\xEF\xBB\xBF"s + "abc", 3), "abc");
  EXPECT_EQ(TelopAsUtf8("\0a"s, 2), "\0a"s);
  // Little-endian UTF-16 drops its mark and line feeds; reading ends at a character beyond the
  // basic plane, and an odd last byte is no character.
  const std::string le = "\xFF\xFE";
  EXPECT_EQ(TelopAsUtf8(le + "a\0\r\0\n\0\x42\x30\n\0"s, 1), "a\r\xE3\x81\x82");
  EXPECT_EQ(TelopAsUtf8(le + "x\0\x3D\xD8\x00\xDEy\0"s, 1), "x");
  EXPECT_EQ(TelopAsUtf8(le + "z\0!"s, 1), "z");
}

}  // namespace
}  // namespace quorvane::qvconv::converter
