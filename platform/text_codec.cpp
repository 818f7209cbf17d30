#include "platform/text_codec.h"

#include <iconv.h>

#include <cerrno>
#include <mutex>

namespace quorvane::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kCp932Undecodable = 0x30FB;  // what the Windows decoder gives

// One converter per direction, opened on first use and kept for the process.
class Converter {
 public:
  Converter(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~Converter() {
    if (ok()) iconv_close(cd_);
  }
  bool ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }
  iconv_t get() {
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);  // back to the initial state
    return cd_;
  }
  std::mutex& mutex() { return mutex_; }

 private:
  iconv_t cd_;
  std::mutex mutex_;
};

Converter& Cp932Decoder() {
  static Converter c("UTF-16LE", "CP932");
  return c;
}
Converter& Cp932Encoder() {
  static Converter c("CP932", "UTF-16LE");
  return c;
}

std::u16string FromLittleEndianBytes(const char* data, std::size_t size) {
  std::u16string out;
  out.reserve(size / 2);
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    out.push_back(static_cast<char16_t>(static_cast<unsigned char>(data[i]) |
                                        (static_cast<unsigned char>(data[i + 1]) << 8)));
  }
  return out;
}

// Five single bytes that Windows' code page 932 reads as characters of their
// own and iconv's table leaves out: 0x80 and, in the private use area, 0xA0
// and 0xFD to 0xFF.  Both directions keep them, so they come back as they were.
constexpr unsigned char kExtraBytes[] = {0x80, 0xA0, 0xFD, 0xFE, 0xFF};
constexpr char16_t kExtraCharacters[] = {0x0080, 0xF8F0, 0xF8F1, 0xF8F2, 0xF8F3};

int ExtraIndexOfByte(unsigned char b) {
  for (int i = 0; i < 5; ++i) {
    if (kExtraBytes[i] == b) return i;
  }
  return -1;
}

int ExtraIndexOfCharacter(char16_t c) {
  for (int i = 0; i < 5; ++i) {
    if (kExtraCharacters[i] == c) return i;
  }
  return -1;
}

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

std::u16string Utf16FromCp932(std::string_view bytes) {
  std::u16string out;
  if (bytes.empty()) return out;
  // Plain ASCII needs no converter: the common case of numbers and ids.
  bool ascii = true;
  for (char c : bytes) {
    if (static_cast<unsigned char>(c) >= 0x80) {
      ascii = false;
      break;
    }
  }
  if (ascii) return std::u16string(bytes.begin(), bytes.end());

  Converter& conv = Cp932Decoder();
  std::lock_guard<std::mutex> lock(conv.mutex());
  if (!conv.ok()) {
    for (char c : bytes) {
      out.push_back(static_cast<unsigned char>(c) < 0x80 ? static_cast<char16_t>(c)
                                                          : kCp932Undecodable);
    }
    return out;
  }
  iconv_t cd = conv.get();
  std::string buffer(bytes.size() * 2 + 8, '\0');
  char* in = const_cast<char*>(bytes.data());
  std::size_t in_left = bytes.size();
  while (in_left > 0) {
    char* dst = buffer.data();
    std::size_t dst_left = buffer.size();
    std::size_t rc = iconv(cd, &in, &in_left, &dst, &dst_left);
    out += FromLittleEndianBytes(buffer.data(), buffer.size() - dst_left);
    if (rc == static_cast<std::size_t>(-1)) {
      if (errno == E2BIG) continue;
      // An invalid or cut-off sequence: one undecodable character for its
      // first byte (and its trail byte, if it is one), then go on.
      const auto lead = static_cast<unsigned char>(*in);
      std::size_t skip = 1;
      if (const int extra = ExtraIndexOfByte(lead); extra >= 0) {
        out.push_back(kExtraCharacters[extra]);
        ++in;
        --in_left;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        continue;
      }
      if (in_left >= 2 && ((lead >= 0x81 && lead <= 0x9F) || (lead >= 0xE0 && lead <= 0xFC))) {
        const auto trail = static_cast<unsigned char>(in[1]);
        if (trail >= 0x40 && trail <= 0xFC && trail != 0x7F) skip = 2;
      }
      out.push_back(kCp932Undecodable);
      in += skip;
      in_left -= skip;
      iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
  }
  return out;
}

std::string Cp932FromUtf16(std::u16string_view text) {
  std::string out;
  if (text.empty()) return out;
  bool ascii = true;
  for (char16_t c : text) {
    if (c >= 0x80) {
      ascii = false;
      break;
    }
  }
  if (ascii) {
    out.reserve(text.size());
    for (char16_t c : text) out.push_back(static_cast<char>(c));
    return out;
  }
  Converter& conv = Cp932Encoder();
  std::lock_guard<std::mutex> lock(conv.mutex());
  out.reserve(text.size() * 2);
  // Character by character is simple and keeps one bad character from
  // touching its neighbours; runs of ASCII skip the converter.
  std::string bytes(4, '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    char16_t c = text[i];
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
      continue;
    }
    if (const int extra = ExtraIndexOfCharacter(c); extra >= 0) {
      out.push_back(static_cast<char>(kExtraBytes[extra]));
      continue;
    }
    if (!conv.ok() || IsHighSurrogate(c) || IsLowSurrogate(c)) {
      // No character outside the basic plane has a code page 932 form.
      if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) ++i;
      out.push_back('?');
      continue;
    }
    char unit[2] = {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    char* in = unit;
    std::size_t in_left = 2;
    char* dst = bytes.data();
    std::size_t dst_left = bytes.size();
    iconv_t cd = conv.get();
    if (iconv(cd, &in, &in_left, &dst, &dst_left) == static_cast<std::size_t>(-1)) {
      out.push_back('?');
    } else {
      out.append(bytes.data(), bytes.size() - dst_left);
    }
  }
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
