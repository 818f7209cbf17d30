// Numbers in text as the runtime functions that the formats were first
// written with read them (wcstol, wcstoul, _wtoi): leading white space, an
// optional sign, in base 16 an optional "0x", then the digits of the base up
// to the first other character.  Nothing here fails: text without digits
// reads as 0.  Works on the standard library alone, never on the C locale.
#ifndef QV_MODEL_QVF_NUMBER_SCAN_H_
#define QV_MODEL_QVF_NUMBER_SCAN_H_

#include <cstdint>
#include <string_view>

namespace quorvane::qvformat::format {

// The white space of the runtime's scans: the ASCII set " \t\n\v\f\r".
bool IsRuntimeSpace(char16_t c);

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

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_NUMBER_SCAN_H_
