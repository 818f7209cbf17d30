// Identifier kinds and the clock that gives records their first time.
#include "model/qvf_records.h"

#include "platform/system_info.h"

namespace quorvane::qvformat::format {

std::tm QvFLocalNow() { return platform::LocalNow(); }

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
