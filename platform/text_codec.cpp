#include "platform/text_codec.h"

#include <cstdint>
#include <vector>

#include "platform/cp932_table.h"

namespace quorvane::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

std::u16string FromLittleEndianBytes(const char* data, std::size_t size) {
  std::u16string out;
  out.reserve(size / 2);
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    out.push_back(static_cast<char16_t>(static_cast<unsigned char>(data[i]) |
                                        (static_cast<unsigned char>(data[i + 1]) << 8)));
  }
  return out;
}

// The lookup tables of code page 932, built once from the generated data.
struct Cp932Tables {
  // Per byte: the character of a single byte, or, for a lead byte, 0 here and
  // its row of pairs (from 1) in `row`.
  char16_t single[256] = {};
  std::uint8_t row[256] = {};
  std::vector<char16_t> pairs;        // 256 trail bytes per lead byte
  std::vector<std::uint16_t> encode;  // per UTF-16 unit: its byte code

  Cp932Tables() : encode(0x10000, static_cast<unsigned char>(cp932::kDefaultByte)) {
    int rows = 0;
    for (const cp932::LeadRange& range : cp932::LeadRanges()) {
      for (int b = range.first; b <= range.last; ++b) row[b] = static_cast<std::uint8_t>(++rows);
    }
    // Every trail byte that the table does not list reads as the default character.
    pairs.assign(static_cast<std::size_t>(rows) * 256, cp932::kDefaultCharacter);
    const std::span<const char16_t> listed = cp932::ListedCharacters();
    for (const cp932::DecodeRun& run : cp932::DecodeRuns()) {
      for (unsigned n = 0; n < run.count; ++n) {
        const unsigned code = run.first + n;
        const char16_t c =
            run.listed ? listed[run.value + n] : static_cast<char16_t>(run.value + n);
        if (code < 0x100) {
          single[code] = c;
        } else {
          pairs[(row[code >> 8] - 1u) * 256u + (code & 0xFF)] = c;
        }
        encode[c] = static_cast<std::uint16_t>(code);  // runs come in byte order: the last wins
      }
    }
    for (const cp932::EncodeOverride& o : cp932::EncodeOverrides()) encode[o.character] = o.code;
  }
};

const Cp932Tables& Cp932() {
  static const Cp932Tables tables;
  return tables;
}

}  // namespace

std::u16string Utf16FromCp932(std::string_view bytes) {
  const Cp932Tables& t = Cp932();
  std::u16string out(bytes.size(), u'\0');
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t size = bytes.size();
  std::size_t n = 0;
  for (std::size_t i = 0; i < size;) {
    const unsigned b = in[i++];
    const unsigned r = t.row[b];
    if (r == 0) {
      out[n++] = t.single[b];
    } else if (i == size || in[i] == 0) {
      // A lead byte at the end, or before a NUL, which stays a character of its own.
      out[n++] = cp932::kDefaultCharacter;
    } else {
      // Any other second byte belongs to the pair, whether it is a trail byte or not.
      out[n++] = t.pairs[(r - 1) * 256 + in[i++]];
    }
  }
  out.resize(n);
  return out;
}

std::string Cp932FromUtf16(std::u16string_view text) {
  const Cp932Tables& t = Cp932();
  std::string out(text.size() * 2, '\0');
  std::size_t n = 0;
  // Unit by unit: each half of a surrogate pair has no form and becomes "?".
  for (const char16_t c : text) {
    const std::uint16_t code = t.encode[c];
    if (code >= 0x100) out[n++] = static_cast<char>(code >> 8);
    out[n++] = static_cast<char>(code & 0xFF);
  }
  out.resize(n);
  return out;
}

std::string Utf8FromUtf16(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t cp = text[i];
    if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (IsHighSurrogate(text[i]) || IsLowSurrogate(text[i])) {
      cp = kReplacement;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

std::u16string Utf16FromUtf8(std::string_view bytes) {
  std::u16string out;
  out.reserve(bytes.size());
  std::size_t i = 0;
  const std::size_t n = bytes.size();
  auto byte = [&](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
  while (i < n) {
    const unsigned char b = byte(i);
    if (b < 0x80) {
      out.push_back(b);
      ++i;
      continue;
    }
    int length = 0;
    char32_t cp = 0;
    char32_t min = 0;
    if (b >= 0xC2 && b <= 0xDF) {
      length = 2, cp = b & 0x1F, min = 0x80;
    } else if (b >= 0xE0 && b <= 0xEF) {
      length = 3, cp = b & 0x0F, min = 0x800;
    } else if (b >= 0xF0 && b <= 0xF4) {
      length = 4, cp = b & 0x07, min = 0x10000;
    }
    bool ok = length > 0 && i + length <= n;
    for (int k = 1; ok && k < length; ++k) {
      const unsigned char c = byte(i + k);
      if ((c & 0xC0) != 0x80) {
        ok = false;
      } else {
        cp = (cp << 6) | (c & 0x3F);
      }
    }
    if (ok && (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))) ok = false;
    if (!ok) {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
    i += length;
  }
  return out;
}

std::u16string Utf16FromUtf16Bytes(std::string_view bytes, bool big_endian) {
  if (!big_endian) return FromLittleEndianBytes(bytes.data(), bytes.size());
  std::u16string out;
  out.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    out.push_back(static_cast<char16_t>((static_cast<unsigned char>(bytes[i]) << 8) |
                                        static_cast<unsigned char>(bytes[i + 1])));
  }
  return out;
}

}  // namespace quorvane::platform
