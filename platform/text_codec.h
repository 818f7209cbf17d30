// Conversions between UTF-16 text and the byte encodings in use: code page 932
// (the encoding of project files, exactly as Windows converts it without
// flags), UTF-8 and UTF-16 with either byte order.  No conversion fails: bytes
// that do not decode become a replacement character, characters that have no
// form in the target become the target's default character.
#ifndef QV_PLATFORM_TEXT_CODEC_H_
#define QV_PLATFORM_TEXT_CODEC_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// Code page 932 -> UTF-16, by Windows' table.  A lead byte and the byte behind
// it are one character: U+30FB when the table has no such pair, the second
// byte not a trail byte included.  A lead byte at the end, or before a NUL
// byte, is U+30FB on its own (the NUL then reads as U+0000).
std::u16string Utf16FromCp932(std::string_view bytes);
// UTF-16 -> code page 932, by Windows' table with its best-fit entries (an
// accented Latin letter becomes the plain letter).  Any other character
// becomes "?", one for each UTF-16 unit, so a character outside the basic
// plane gives "??".
std::string Cp932FromUtf16(std::u16string_view text);

// UTF-16 -> UTF-8.  A lone surrogate becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view text);
// UTF-8 -> UTF-16.  A byte that is not part of a well-formed sequence becomes U+FFFD.
std::u16string Utf16FromUtf8(std::string_view bytes);

// UTF-16 code units from bytes of either byte order; an odd last byte is dropped.
std::u16string Utf16FromUtf16Bytes(std::string_view bytes, bool big_endian);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_TEXT_CODEC_H_
