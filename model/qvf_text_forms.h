// The text forms of the values of a scenario: colours, dates, times,
// integers, regions and flags, in both directions.  CSV files and XML
// documents use the same forms.
//
// All of this works on the standard library alone and never on the C locale:
// the scans follow the rules of the runtime functions the formats were first
// written with ("%4d/%2d/%2d", "%2d:%2d:%2d", _wtoi, wcstoul base 16), field
// widths included, and white space is the Windows runtime's (U+3000 and the
// other Unicode spaces too; see qvf_number_scan.h).
//
// Parses never fail, except ParseColor on a text with neither "#" nor "0x".
// A text that does not match leaves the fields it does not give as they were.
#ifndef QV_MODEL_QVF_TEXT_FORMS_H_
#define QV_MODEL_QVF_TEXT_FORMS_H_

#include <array>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "model/qvf_number_scan.h"
#include "model/qvf_records.h"

namespace quorvane::qvformat::format {

// ---- Colour -----------------------------------------------------------------

// "#rrggbb" for an opaque colour (a is 255), else "#aarrggbb"; lower-case digits.
std::u16string FormatColorHash(const QvFColor& color);
// "0xrrggbb" / "0xaarrggbb", the form of CSV files.
std::u16string FormatColorHex(const QvFColor& color);

// Reads a colour in either form into `color`.  Empty text changes nothing.
// The first "#" is removed, or else the first "0x" (exact case); the rest is
// read as an unsigned hexadecimal number (as wcstoul base 16: leading white
// space, a sign and a "0x" are taken, reading stops at the first other
// character).  a is set only when the rest is longer than six characters.
// Throws std::out_of_range on a text that holds neither "#" nor "0x".
void ParseColor(std::u16string_view text, QvFColor& color);

// ---- Date and time ----------------------------------------------------------

// "%04d/%02d/%02d" of year + 1900, month + 1, day of the month.
std::u16string FormatDate(const std::tm& date);
// Scans "%4d/%2d/%2d" and sets year (less 1900), month (less 1) and day of
// the month from the numbers that the text gives ("2026/11/123" gives day 12,
// "2026/12/-25" day -2).  Empty text changes nothing;
// a number that the text does not give leaves its field as it was, so an
// unreadable date leaves the whole date alone.  No range is tested.
void ParseDate(std::u16string_view text, std::tm& date);

// "%02d:%02d:%02d" of hours, minutes, seconds.
std::u16string FormatTime(const std::tm& time);
// Scans "%2d:%2d:%2d" straight into hours, minutes, seconds.  Scanning stops
// at the first mismatch; the fields behind it keep their value.  `units`:
// the text is wide, or 8-bit text widened (then only ASCII white space).
void ParseTime(std::u16string_view text, std::tm& time, ScanUnits units = ScanUnits::kWide);

// ---- Integers and regions ---------------------------------------------------

// "%d".
std::u16string FormatInt(std::int32_t value);
// As _wtoi: leading white space, an optional sign, decimal digits up to the
// first other character; no digits give 0.  Values beyond the 32-bit range
// are clamped to it.
std::int32_t ParseInt(std::u16string_view text);

// The four integer texts of x, y, width, height.
std::array<std::u16string, 4> FormatRegion(const QvFRegion& region);
// Integer parse of the four texts into x, y, width, height; all four are
// always set (an empty text gives 0).
void ParseRegion(std::u16string_view x, std::u16string_view y, std::u16string_view width,
                 std::u16string_view height, QvFRegion& region);

// ---- Flags ------------------------------------------------------------------

// "true" for a present true; "false" for false and for an absent value.
std::u16string FormatFlag(const std::optional<bool>& value);
std::u16string FormatFlag(bool value);

// The lexical forms of the XML Schema boolean: a text of one character gives
// true for "1" and false for "0"; otherwise "true" and "false", exact case.
// Anything else gives nothing, and the caller leaves its field as it was.
std::optional<bool> ParseBoolValue(std::u16string_view text);

// The `default` flag of a schedule entry: empty text changes nothing; any
// other text sets the flag to whether it is "true" in any mix of cases
// ("1" is false).
void ParseDefaultFlag(std::u16string_view text, bool& value);

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_TEXT_FORMS_H_
