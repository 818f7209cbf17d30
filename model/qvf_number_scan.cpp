#include "model/qvf_number_scan.h"

#include <cstddef>

namespace quorvane::qvformat::format {
namespace {

int DigitValue(char16_t c, int base) {
  int value = 99;
  if (c >= u'0' && c <= u'9') value = c - u'0';
  if (c >= u'a' && c <= u'f') value = c - u'a' + 10;
  if (c >= u'A' && c <= u'F') value = c - u'A' + 10;
  return value < base ? value : -1;
}

}  // namespace

bool IsRuntimeSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

ScannedNumber ScanNumber(std::u16string_view text, int base, std::uint64_t cap) {
  ScannedNumber number;
  std::size_t pos = 0;
  while (pos < text.size() && IsRuntimeSpace(text[pos])) ++pos;
  if (pos < text.size() && (text[pos] == u'+' || text[pos] == u'-')) {
    number.negative = text[pos] == u'-';
    ++pos;
  }
  // A "0x" with no digit behind it reads as 0 either way.
  if (base == 16 && pos + 1 < text.size() && text[pos] == u'0' &&
      (text[pos + 1] == u'x' || text[pos + 1] == u'X')) {
    pos += 2;
  }
  for (; pos < text.size() && DigitValue(text[pos], base) >= 0; ++pos) {
    number.magnitude = number.magnitude * static_cast<std::uint64_t>(base) +
                       static_cast<std::uint64_t>(DigitValue(text[pos], base));
    if (number.magnitude > cap) number.magnitude = cap;
  }
  return number;
}

std::int32_t ParseLong(std::u16string_view text, int base) {
  constexpr std::uint64_t kLimit = 2147483648ULL;  // one past INT32_MAX: the magnitude of INT32_MIN
  const ScannedNumber number = ScanNumber(text, base, kLimit);
  if (number.negative) return static_cast<std::int32_t>(-static_cast<std::int64_t>(number.magnitude));
  return number.magnitude >= kLimit ? INT32_MAX : static_cast<std::int32_t>(number.magnitude);
}

}  // namespace quorvane::qvformat::format
