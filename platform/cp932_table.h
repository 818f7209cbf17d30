// The data of code page 932 as Windows converts it without flags, taken from
// Microsoft's published best-fit table by tools/gen_cp932_table.py, which
// writes cp932_table.cpp.  Only the codec in text_codec.cpp reads it; it
// builds its lookup tables from this data once.
//
// A byte code is a single byte (below 0x100) or a pair, lead << 8 | trail.
// - Decoding: every single byte that is not a lead byte is listed; a pair that
//   is not listed decodes to kDefaultCharacter.
// - Encoding: a character encodes to the last byte code in byte order that
//   decodes to it, unless EncodeOverrides() names it (duplicates that Windows
//   writes otherwise, best-fit characters that decode to something else, and
//   characters that have no form); every other character is kDefaultByte.
#ifndef QV_PLATFORM_CP932_TABLE_H_
#define QV_PLATFORM_CP932_TABLE_H_

#include <cstdint>
#include <span>

namespace quorvane::platform::cp932 {

struct LeadRange {
  std::uint8_t first;
  std::uint8_t last;
};

// Byte codes first .. first + count - 1 decode to value, value + 1, ... or, in
// a listed run, to ListedCharacters()[value], [value + 1], ...
struct DecodeRun {
  std::uint16_t first;
  std::uint16_t count;
  std::uint16_t value;
  std::uint16_t listed;  // 0 or 1
};

struct EncodeOverride {
  char16_t character;
  std::uint16_t code;
};

extern const char kDefaultByte;             // "?"
extern const char16_t kDefaultCharacter;    // U+30FB, katakana middle dot

std::span<const LeadRange> LeadRanges();
std::span<const DecodeRun> DecodeRuns();    // in byte code order
std::span<const char16_t> ListedCharacters();
std::span<const EncodeOverride> EncodeOverrides();

}  // namespace quorvane::platform::cp932

#endif  // QV_PLATFORM_CP932_TABLE_H_
