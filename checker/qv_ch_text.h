// Small text operations of the checks: the number forms that the cells of a
// project file are judged by.  White space is the runtime's, as the value
// forms take it (model/qvf_number_scan.h); a digit is one of the ten ASCII
// digits.
#ifndef QV_CHECKER_QV_CH_TEXT_H_
#define QV_CHECKER_QV_CH_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quorvane::qvconv::checker {

// Every character a digit; with `allow_minus` the first may be "-".  Empty
// text is no number.
bool IsDigits(std::u16string_view text, bool allow_minus);

// Equal without regard to the case of ASCII letters.
bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b);

// As wcstol base 16: white space, a sign and a "0x" are taken, reading stops
// at the first other character; clamped to the 32-bit range.
std::int32_t ParseHex(std::u16string_view text);


// Characters of UTF-8 text, counted by lead bytes.  A byte that leads no
// sequence counts as one character; a sequence cut short by the end of the
// text counts as one.  Ends on any input.
std::size_t CountUtf8Characters(std::string_view text);

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CH_TEXT_H_
