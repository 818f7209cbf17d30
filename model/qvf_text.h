// Small text operations that every layer shares.  They know ASCII only and
// never consult a locale: a character outside ASCII is neither a space, nor
// a digit, nor a letter with a case.
#ifndef QV_MODEL_QVF_TEXT_H_
#define QV_MODEL_QVF_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvformat::format {

// " ", "\t", "\n", "\v", "\f" or "\r".
inline bool IsAsciiSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

// "0" to "9".
inline bool IsAsciiDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// "A" to "Z" become "a" to "z"; every other character stays.
inline char16_t AsciiLower(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}
std::u16string AsciiLower(std::u16string text);

// Each byte as the character of the same number (ASCII stays ASCII).
std::u16string Widen(std::string_view bytes);

// The pieces of `text` between commas: n commas make n + 1 pieces, so empty
// text is one empty piece and a comma at the end closes an empty last piece.
template <typename Char>
std::vector<std::basic_string<Char>> SplitAtCommas(std::basic_string_view<Char> text) {
  std::vector<std::basic_string<Char>> pieces;
  std::size_t start = 0;
  for (std::size_t comma; (comma = text.find(Char(','), start)) != text.npos; start = comma + 1) {
    pieces.emplace_back(text.substr(start, comma - start));
  }
  pieces.emplace_back(text.substr(start));
  return pieces;
}

// Every `from` replaced by `to`, left to right, going on behind the inserted
// text.  An empty `from` replaces nothing.
std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to);

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_TEXT_H_
