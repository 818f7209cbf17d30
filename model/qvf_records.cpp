// Identifier kinds and the clock that gives records their first time.
#include "model/qvf_records.h"

#include <ctime>

namespace quorvane::qvformat::format {

namespace {

std::tm SystemLocalNow() {
  std::tm now{};
  std::time_t seconds = std::time(nullptr);
  if (seconds == static_cast<std::time_t>(-1) || localtime_r(&seconds, &now) == nullptr) {
    return std::tm{};
  }
  return now;
}

QvFClock g_clock = nullptr;

}  // namespace

std::tm QvFLocalNow() { return g_clock ? g_clock() : SystemLocalNow(); }

void SetQvFClock(QvFClock clock) { g_clock = clock; }

void QvFId::assign(std::u16string_view identifier) {
  text.assign(identifier);
  // The prefixes in the order they are tested; the index is the kind.
  static constexpr std::u16string_view kPrefixes[] = {u"SC", u"TM", u"PG", u"PL", u"CT"};
  for (std::int32_t k = 0; k < 5; ++k) {
    if (text.starts_with(kPrefixes[k])) {
      kind = k;
      return;
    }
  }
}

}  // namespace quorvane::qvformat::format
