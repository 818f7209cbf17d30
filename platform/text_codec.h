// Conversions between UTF-16 text and the byte encodings in use: code page 932
// (Windows-31J, the encoding of project files), UTF-8 and UTF-16 with either
// byte order.  No conversion fails: bytes that do not decode become a
// replacement character, characters that have no form in the target become the
// target's default character.
#ifndef QV_PLATFORM_TEXT_CODEC_H_
#define QV_PLATFORM_TEXT_CODEC_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// Code page 932 -> UTF-16.  A byte sequence that is not code page 932
// becomes U+30FB, as the Windows decoder gives it.
std::u16string Utf16FromCp932(std::string_view bytes);
// UTF-16 -> code page 932.  A character that has no form in it becomes "?".
std::string Cp932FromUtf16(std::u16string_view text);

// UTF-16 -> UTF-8.  A lone surrogate becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view text);
// UTF-8 -> UTF-16.  A byte that is not part of a well-formed sequence becomes U+FFFD.
std::u16string Utf16FromUtf8(std::string_view bytes);

// UTF-16 code units from bytes of either byte order; an odd last byte is dropped.
std::u16string Utf16FromUtf16Bytes(std::string_view bytes, bool big_endian);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_TEXT_CODEC_H_
