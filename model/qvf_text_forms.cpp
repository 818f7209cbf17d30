// The text forms of colours, dates, times, integers, regions and flags.
#include "model/qvf_text_forms.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "model/qvf_number_scan.h"
#include "model/qvf_text.h"

namespace quorvane::qvformat::format {

namespace {

// printf "%0<width>d": the sign first, then zeros up to the width.
std::u16string PaddedDecimal(std::int64_t value, std::size_t width) {
  bool negative = value < 0;
  std::uint64_t magnitude =
      negative ? static_cast<std::uint64_t>(-(value + 1)) + 1 : static_cast<std::uint64_t>(value);
  std::string digits = std::to_string(magnitude);
  std::size_t used = digits.size() + (negative ? 1 : 0);
  std::string text = negative ? "-" : "";
  if (used < width) text.append(width - used, '0');
  text += digits;
  return Widen(text);
}

// printf "%02x" of an int: its 32 bits as unsigned, lower case, two digits at least.
void AppendHexByte(std::u16string& out, std::int32_t value) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::uint32_t bits = static_cast<std::uint32_t>(value);
  std::string text;
  do {
    text.insert(text.begin(), kDigits[bits & 0xf]);
    bits >>= 4;
  } while (bits != 0);
  if (text.size() < 2) text.insert(text.begin(), '0');
  out += Widen(text);
}

std::u16string FormatColor(const QvFColor& color, std::u16string_view prefix) {
  std::u16string text(prefix);
  if (color.a != 255) AppendHexByte(text, color.a);
  AppendHexByte(text, color.r);
  AppendHexByte(text, color.g);
  AppendHexByte(text, color.b);
  return text;
}

// wcstoul with base 16 on 32-bit unsigned long.  Overflow gives the largest value.
std::uint32_t ScanUnsignedHex(std::u16string_view text) {
  constexpr std::uint64_t kOverflow = 0x100000000ULL;
  const ScannedNumber number = ScanNumber(text, 16, kOverflow);
  if (number.magnitude == kOverflow) return 0xffffffffu;
  const auto value = static_cast<std::uint32_t>(number.magnitude);
  return number.negative ? 0u - value : value;
}

}  // namespace

std::u16string FormatColorHash(const QvFColor& color) { return FormatColor(color, u"#"); }

std::u16string FormatColorHex(const QvFColor& color) { return FormatColor(color, u"0x"); }

void ParseColor(std::u16string_view text, QvFColor& color) {
  if (text.empty()) return;
  std::u16string rest(text);
  std::size_t hash = rest.find(u'#');
  if (hash != std::u16string::npos) {
    rest.erase(hash, 1);
  } else {
    std::size_t hex = rest.find(u"0x");
    if (hex == std::u16string::npos) throw std::out_of_range("colour text without # or 0x");
    rest.erase(hex, 2);
  }
  std::uint32_t value = ScanUnsignedHex(rest);
  if (rest.size() > 6) color.a = static_cast<std::int32_t>((value >> 24) & 0xff);
  color.r = static_cast<std::int32_t>((value >> 16) & 0xff);
  color.g = static_cast<std::int32_t>((value >> 8) & 0xff);
  color.b = static_cast<std::int32_t>(value & 0xff);
}

std::u16string FormatDate(const std::tm& date) {
  return PaddedDecimal(static_cast<std::int64_t>(date.tm_year) + 1900, 4) + u"/" +
         PaddedDecimal(static_cast<std::int64_t>(date.tm_mon) + 1, 2) + u"/" +
         PaddedDecimal(date.tm_mday, 2);
}

void ParseDate(std::u16string_view text, std::tm& date) {
  if (text.empty()) return;
  static constexpr int kWidths[] = {4, 2, 2};  // "%4d/%2d/%2d"
  int numbers[3];
  const int read = ScanDecimalFields(text, u'/', kWidths, numbers);
  if (read > 0) date.tm_year = numbers[0] - 1900;
  if (read > 1) date.tm_mon = numbers[1] - 1;
  if (read > 2) date.tm_mday = numbers[2];
}

std::u16string FormatTime(const std::tm& time) {
  return PaddedDecimal(time.tm_hour, 2) + u":" + PaddedDecimal(time.tm_min, 2) + u":" +
         PaddedDecimal(time.tm_sec, 2);
}

void ParseTime(std::u16string_view text, std::tm& time, ScanUnits units) {
  static constexpr int kWidths[] = {2, 2, 2};  // "%2d:%2d:%2d"
  int numbers[3];
  const int read = ScanDecimalFields(text, u':', kWidths, numbers, units);
  if (read > 0) time.tm_hour = numbers[0];
  if (read > 1) time.tm_min = numbers[1];
  if (read > 2) time.tm_sec = numbers[2];
}

std::u16string FormatInt(std::int32_t value) { return PaddedDecimal(value, 0); }

std::int32_t ParseInt(std::u16string_view text) { return ParseLong(text, 10); }

std::array<std::u16string, 4> FormatRegion(const QvFRegion& region) {
  return {FormatInt(region.x), FormatInt(region.y), FormatInt(region.width),
          FormatInt(region.height)};
}

void ParseRegion(std::u16string_view x, std::u16string_view y, std::u16string_view width,
                 std::u16string_view height, QvFRegion& region) {
  region.x = ParseInt(x);
  region.y = ParseInt(y);
  region.width = ParseInt(width);
  region.height = ParseInt(height);
}

std::u16string FormatFlag(const std::optional<bool>& value) {
  return FormatFlag(value.value_or(false));
}

std::u16string FormatFlag(bool value) { return value ? u"true" : u"false"; }

std::optional<bool> ParseBoolValue(std::u16string_view text) {
  if (text.size() == 1) {
    if (text[0] == u'1') return true;
    if (text[0] == u'0') return false;
    return std::nullopt;
  }
  if (text == u"true") return true;
  if (text == u"false") return false;
  return std::nullopt;
}

void ParseDefaultFlag(std::u16string_view text, bool& value) {
  if (text.empty()) return;
  value = AsciiLower(std::u16string(text)) == u"true";
}

}  // namespace quorvane::qvformat::format
