#include "model/qvf_text.h"

namespace quorvane::qvformat::format {

std::u16string AsciiLower(std::u16string text) {
  for (char16_t& c : text) c = AsciiLower(c);
  return text;
}

std::u16string Widen(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (char c : bytes) text += static_cast<char16_t>(static_cast<unsigned char>(c));
  return text;
}

std::u16string ReplaceAll(std::u16string text, std::u16string_view from, std::u16string_view to) {
  if (from.empty()) return text;
  std::size_t pos = 0;
  while ((pos = text.find(from, pos)) != std::u16string::npos) {
    text.replace(pos, from.size(), to);
    pos += to.size();
  }
  return text;
}

}  // namespace quorvane::qvformat::format
