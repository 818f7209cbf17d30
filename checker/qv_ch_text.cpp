#include "checker/qv_ch_text.h"

#include <cstdint>

#include "model/qvf_number_scan.h"
#include "model/qvf_text.h"

namespace quorvane::qvconv::checker {
bool IsDigits(std::u16string_view text, bool allow_minus) {
  if (text.empty()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (qvformat::format::IsAsciiDigit(text[i])) continue;
    if (allow_minus && i == 0 && text[i] == u'-') continue;
    return false;
  }
  return true;
}

bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (qvformat::format::AsciiLower(a[i]) != qvformat::format::AsciiLower(b[i])) return false;
  }
  return true;
}

std::int32_t ParseHex(std::u16string_view text) { return qvformat::format::ParseLong(text, 16); }


std::size_t CountUtf8Characters(std::string_view text) {
  std::size_t count = 0;
  std::size_t pos = 0;
  while (pos < text.size()) {
    const auto lead = static_cast<unsigned char>(text[pos]);
    std::size_t length = 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF7) {
      length = 4;
    } else if (lead >= 0xF8 && lead <= 0xFB) {
      length = 5;
    } else if (lead >= 0xFC && lead <= 0xFD) {
      length = 6;
    }
    ++count;
    pos += length;  // may step past the end: the loop then ends
  }
  return count;
}


}  // namespace quorvane::qvconv::checker
