// The value text forms of records and the scans of the checks.  A value that
// is parsed, formatted and parsed again must come back the same: the CSV and
// XML writers rely on that round trip.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <span>
#include <string>

#include "checker/qv_ch_text.h"
#include "fuzz_support.h"
#include "model/qvf_number_scan.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"

namespace fmt = quorvane::qvformat::format;
namespace checker = quorvane::qvconv::checker;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::uint8_t selector = data[0];
  const std::u16string text = qvfuzz::Units(data + 1, size - 1);
  const std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);

  // Colours.
  fmt::QvFColor color{};
  qvfuzz::Guarded([&] {
    fmt::ParseColor(text, color);
    fmt::QvFColor again{};
    fmt::ParseColor(fmt::FormatColorHash(color), again);
    if (again.a != color.a || again.r != color.r || again.g != color.g || again.b != color.b)
      std::abort();
    (void)fmt::FormatColorHex(color);
  });

  // Dates and times.
  std::tm date{};
  fmt::ParseDate(text, date);
  std::tm date_again{};
  fmt::ParseDate(fmt::FormatDate(date), date_again);
  std::tm time{};
  fmt::ParseTime(text, time);
  (void)fmt::FormatTime(time);

  // Integers and regions.
  const std::int32_t value = fmt::ParseInt(text);
  if (fmt::ParseInt(fmt::FormatInt(value)) != value) std::abort();
  fmt::QvFRegion region{};
  const std::size_t quarter = text.size() / 4;
  const std::u16string_view view(text);
  fmt::ParseRegion(view.substr(0, quarter), view.substr(quarter, quarter),
                   view.substr(2 * quarter, quarter), view.substr(3 * quarter), region);
  (void)fmt::FormatRegion(region);

  // Flags.
  (void)fmt::FormatFlag(fmt::ParseBoolValue(text));
  bool flag = false;
  fmt::ParseDefaultFlag(text, flag);

  // The field scans, with a width, a count and the kind of units from the selector.
  int values[8] = {};
  const int widths[8] = {1 + (selector & 0x07), 2, 4, 1, 9, 2, 3, 11};
  const int count = 1 + ((selector >> 3) & 0x07);
  const char16_t separator = selector >> 6 == 0 ? u'/' : selector >> 6 == 1 ? u':' : u',';
  const fmt::ScanUnits units =
      (selector & 0x40) != 0 ? fmt::ScanUnits::kBytes : fmt::ScanUnits::kWide;
  const int read = fmt::ScanDecimalFields(text, separator, std::span<const int>(widths, count),
                                          values, units);
  if (read < 0 || read > count) std::abort();
  (void)checker::IsDigits(text, (selector & 1) != 0);
  (void)checker::ParseHex(text);
  if (checker::CountUtf8Characters(bytes) > bytes.size()) std::abort();
  const std::u16string_view from = view.substr(0, 1 + selector % 3);
  if (!from.empty()) (void)fmt::ReplaceAll(std::u16string(text), from, u"ab");
  return 0;
}
