// Line 2 of a contents file, the one line that describes a playlist item: its
// columns and the kinds of its column 0, as the CSV reader and writer both
// take them.  The line has 19 columns; those not named here hold fixed
// values that nothing reads.
#ifndef QV_CSV_CONTENTS_LINE_H_
#define QV_CSV_CONTENTS_LINE_H_

#include <cstddef>
#include <cstdint>

namespace quorvane::qvconv::io::csv::contents_line {

inline constexpr std::size_t kColumns = 19;

inline constexpr std::size_t kKind = 0;
inline constexpr std::size_t kTime = 1;
inline constexpr std::size_t kColor = 4;
inline constexpr std::size_t kAspect = 5;
inline constexpr std::size_t kVolume = 10;
inline constexpr std::size_t kEffect = 11;
inline constexpr std::size_t kEffectTime = 12;
inline constexpr std::size_t kEndCode = 18;

// The kinds of column 0.
inline constexpr std::int32_t kKindFile = 1;
inline constexpr std::int32_t kKindTelop = 4;
inline constexpr std::int32_t kKindBlankWithColor = 7;
inline constexpr std::int32_t kKindBlank = 8;

}  // namespace quorvane::qvconv::io::csv::contents_line

#endif  // QV_CSV_CONTENTS_LINE_H_
