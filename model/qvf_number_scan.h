// Numbers in text as the runtime functions that the formats were first
// written with read them (wcstol, wcstoul, _wtoi, swscanf "%<width>d"):
// leading white space, an optional sign, in base 16 an optional "0x", then
// the digits of the base up to the first other character.  Nothing here
// fails: text without digits reads as 0.  Works on the standard library alone,
// never on the C locale.
//
// White space is that of the Windows runtime: on wide text the characters
// that its iswspace takes (Unicode's spaces, U+3000 among them), on text held
// one byte per unit (a scan of 8-bit text) only " \t\n\v\f\r".
#ifndef QV_MODEL_QVF_NUMBER_SCAN_H_
#define QV_MODEL_QVF_NUMBER_SCAN_H_

#include <cstdint>
#include <span>
#include <string_view>

namespace quorvane::qvformat::format {

// What the units of a scanned text are: wide characters, or bytes of 8-bit text.
enum class ScanUnits { kWide, kBytes };

// The white space that the runtime's scans skip before a number.
bool IsRuntimeSpace(char16_t c, ScanUnits units = ScanUnits::kWide);

// The sign and the magnitude at the start of `text` in `base` (10 or 16).
// The magnitude stops growing at `cap`, so a caller can tell an overflow by
// a magnitude equal to a cap one beyond its largest value.
struct ScannedNumber {
  bool negative = false;
  std::uint64_t magnitude = 0;
};
ScannedNumber ScanNumber(std::u16string_view text, int base, std::uint64_t cap);

// As wcstol on a 32-bit long: values beyond the range are clamped to it.
std::int32_t ParseLong(std::u16string_view text, int base);

// A scan of "%<w0>d<sep>%<w1>d<sep>...", one number per width, as swscanf
// does it: before a number white space is skipped, which does not count to
// the width; then at most `width` characters of an optional sign and decimal
// digits are taken ("123" in "%2d" reads 12, "-25" reads -2); the separator
// must follow exactly.  Stops at the first mismatch and returns how many
// numbers were read; only those are stored in `values` (as large as
// `widths`).  Widths are small: no value leaves the int range.
int ScanDecimalFields(std::u16string_view text, char16_t separator, std::span<const int> widths,
                      std::span<int> values, ScanUnits units = ScanUnits::kWide);

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_NUMBER_SCAN_H_
