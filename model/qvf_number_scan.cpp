#include "model/qvf_number_scan.h"

#include <cstddef>
#include <cstdint>

#include "model/qvf_text.h"

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

// The space characters of Windows' character-type table for wide characters,
// which its runtime's iswspace consults: the Unicode White_Space characters
// and U+180E, which Unicode counted as a space until 6.3 and Windows still
// does.  U+200B and U+FEFF (zero width, format characters) are not in it.
bool IsRuntimeSpace(char16_t c, ScanUnits units) {
  if (IsAsciiSpace(c)) return true;
  if (units == ScanUnits::kBytes || c < 0x85) return false;
  switch (c) {
    case 0x0085: case 0x00A0: case 0x1680: case 0x180E: case 0x2028: case 0x2029:
    case 0x202F: case 0x205F: case 0x3000:
      return true;
    default:
      return c >= 0x2000 && c <= 0x200A;
  }
}

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
  if (number.negative) {
    return static_cast<std::int32_t>(-static_cast<std::int64_t>(number.magnitude));
  }
  return number.magnitude >= kLimit ? INT32_MAX : static_cast<std::int32_t>(number.magnitude);
}

int ScanDecimalFields(std::u16string_view text, char16_t separator, std::span<const int> widths,
                      std::span<int> values, ScanUnits units) {
  constexpr std::int64_t kLimit = 2147483648LL;  // values stop growing here
  std::size_t pos = 0;
  for (std::size_t field = 0; field < widths.size() && field < values.size(); ++field) {
    if (field > 0) {
      if (pos >= text.size() || text[pos] != separator) return static_cast<int>(field);
      ++pos;
    }
    while (pos < text.size() && IsRuntimeSpace(text[pos], units)) ++pos;
    const std::size_t width = widths[field] > 0 ? static_cast<std::size_t>(widths[field]) : 0;
    const std::size_t end = text.size() - pos > width ? pos + width : text.size();
    bool negative = false;
    if (pos < end && (text[pos] == u'+' || text[pos] == u'-')) {
      negative = text[pos] == u'-';
      ++pos;
    }
    if (pos >= end || DigitValue(text[pos], 10) < 0) return static_cast<int>(field);
    std::int64_t number = 0;
    for (; pos < end && DigitValue(text[pos], 10) >= 0; ++pos) {
      number = number * 10 + DigitValue(text[pos], 10);
      if (number > kLimit) number = kLimit;
    }
    if (negative) number = -number;
    values[field] = static_cast<int>(number >= kLimit ? kLimit - 1 : number);
  }
  return static_cast<int>(widths.size() < values.size() ? widths.size() : values.size());
}

}  // namespace quorvane::qvformat::format
