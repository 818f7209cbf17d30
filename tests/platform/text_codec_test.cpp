// Code page 932 against Microsoft's own table of it, byte by byte, pair by pair and character by
// character, and the cases where Windows differs from other converters.
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include "platform/text_codec.h"
#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

constexpr char16_t kDot = 0x30FB;  // the default character of decoding

// The tables of bestfit932.txt: single bytes, lead bytes with their pairs, characters with their
// byte codes (lead << 8 | trail for two bytes).
struct VendorTable {
  std::map<int, char16_t> single;
  std::map<int, std::map<int, char16_t>> lead;
  std::map<char16_t, int> wide;
};

bool ReadVendorTable(const std::string& path, VendorTable& table) {
  std::ifstream file(path);
  std::vector<std::vector<std::string>> lines;  // the words of each line that has any
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line.substr(0, line.find(';')));
    std::vector<std::string> words;
    for (std::string w; fields >> w;) words.push_back(w);
    if (!words.empty()) lines.push_back(words);
  }
  std::size_t i = 0;
  auto number = [&](std::size_t line, int word) {
    return static_cast<int>(std::stoul(lines.at(line).at(word), nullptr, 0));
  };
  auto entries = [&](int count, auto&& add) {
    for (int k = 0; k < count; ++k, ++i) add(number(i, 0), number(i, 1));
  };
  while (i < lines.size()) {
    const std::string head = lines[i++][0];
    if (head == "MBTABLE") {
      entries(number(i - 1, 1), [&](int b, int c) { table.single[b] = static_cast<char16_t>(c); });
    } else if (head == "WCTABLE") {
      entries(number(i - 1, 1), [&](int c, int w) { table.wide[static_cast<char16_t>(c)] = w; });
    } else if (head == "DBCSRANGE") {
      for (int r = number(i - 1, 1); r > 0; --r) {
        const int first = number(i, 0), last = number(i, 1);
        ++i;
        for (int b = first; b <= last; ++b) {
          std::map<int, char16_t>& pairs = table.lead[b];
          entries(number(i++, 1), [&](int t, int c) { pairs[t] = static_cast<char16_t>(c); });
        }
      }
    }
  }
  return !table.single.empty() && !table.lead.empty() && !table.wide.empty();
}

std::string Hex(std::u16string_view text) {
  std::string out;
  char unit[8];
  for (char16_t c : text) out += (std::snprintf(unit, sizeof unit, " %04X", unsigned{c}), unit);
  return out;
}

TEST(TextCodecCp932, EveryByteEveryPairEveryCharacterAsTheVendorTableSays) {
  VendorTable table;
  if (!ReadVendorTable(QV_SOURCE_DIR "/../shared/reference/bestfit932.txt", table))
    GTEST_SKIP() << "the vendor's table bestfit932.txt is not beside the repository";
  ASSERT_EQ(table.single.size() + table.lead.size(), 256u);  // every byte is one or the other

  std::string mismatches;  // the first few, so that a broken table does not flood the log
  auto expect = [&](const std::string& what, const auto& got, const auto& want) {
    if (got != want && mismatches.size() < 2000) mismatches += what + "\n";
  };
  // Decoding, one call per byte or pair, and all of them in one text.
  std::string all_bytes;
  std::u16string all_chars;
  for (int b = 0; b < 256; ++b) {
    const std::string one(1, static_cast<char>(b)), at = std::to_string(b);
    if (const auto single = table.single.find(b); single != table.single.end()) {
      expect("byte " + at, Utf16FromCp932(one), std::u16string(1, single->second));
      all_bytes += one, all_chars += single->second;
      continue;
    }
    expect("lone lead " + at, Utf16FromCp932(one), std::u16string(1, kDot));
    expect("lead before NUL " + at, Utf16FromCp932(one + '\0'), std::u16string{kDot, 0});
    const std::map<int, char16_t>& pairs = table.lead.at(b);
    for (int t = 1; t < 256; ++t) {
      const auto listed = pairs.find(t);
      const char16_t want = listed == pairs.end() ? kDot : listed->second;
      const std::string pair = one + static_cast<char>(t);
      expect("pair " + at + " " + std::to_string(t), Utf16FromCp932(pair), std::u16string(1, want));
      all_bytes += pair, all_chars += want;
    }
  }
  expect("all bytes and pairs at once", Utf16FromCp932(all_bytes), all_chars);

  // Encoding, one call per UTF-16 unit, and the whole plane in one text.
  std::u16string plane;
  std::string plane_bytes;
  for (int c = 0; c < 0x10000; ++c) {
    const auto listed = table.wide.find(static_cast<char16_t>(c));
    const int code = listed == table.wide.end() ? '?' : listed->second;
    const std::string want =
        code < 0x100 ? std::string(1, static_cast<char>(code))
                     : std::string{static_cast<char>(code >> 8), static_cast<char>(code & 0xFF)};
    const std::u16string one(1, static_cast<char16_t>(c));
    expect("character" + Hex(one), Cp932FromUtf16(one), want);
    plane += one, plane_bytes += want;
  }
  expect("the whole plane at once", Cp932FromUtf16(plane), plane_bytes);
  EXPECT_EQ(mismatches, "");
}

// Where Windows differs from other converters, also where the vendor's table is not at hand: a
// lead byte takes the byte behind it (a comma too) unless that is a NUL; encoding is best fit, "?"
// where there is none, one "?" per surrogate.
TEST(TextCodecCp932, WhereWindowsDiffersFromOtherConverters) {
  EXPECT_EQ(Hex(Utf16FromCp932(std::string("\x81,a\x81\0x\xE0", 7))),
            Hex(std::u16string{kDot, u'a', kDot, 0, u'x', kDot}));
  EXPECT_EQ(Hex(Utf16FromCp932("\x80\xA0\xFD\xFF\x81\x60\x81\x7C\x87\x90\xFA\x5C")),
            Hex(u"\u0080\uF8F0\uF8F1\uF8F3\uFF5E\uFF0D\u2252\u7E8A"));
  EXPECT_EQ(Cp932FromUtf16(u"\u00E9\u00A9\u3094\u00A5\u2014\u2016\u203E\u2212\u301C"),
            "ec\x83\x94\\?????");  // é © ゔ ¥ by best fit; other converters map the rest
  EXPECT_EQ(Cp932FromUtf16(u"\u2015\u2225\uFF5E\uFF0D\u2235\uFFE2\u2252\u7E8A\u2170"),
            "\x81\x5C\x81\x61\x81\x60\x81\x7C\x81\xE6\x81\xCA\x81\xE0\xFA\x5C\xFA\x40");
  EXPECT_EQ(Cp932FromUtf16(u"\U0001F600" + std::u16string(1, char16_t(0xDC00)) + u"\u30FB"),
            "???\x81\x45");
}

}  // namespace
}  // namespace quorvane::platform
