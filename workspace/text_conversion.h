// The text conversions between the code pages in use, and the byte order mark
// test.  Project CSV files are code page 932; telop files are recoded to UTF-8.
// Nothing here fails on odd text: bytes that do not decode and characters that
// have no form in the target are replaced (see platform/text_codec.h).
#ifndef QV_WORKSPACE_TEXT_CONVERSION_H_
#define QV_WORKSPACE_TEXT_CONVERSION_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quorvane::qvconv::converter {

// Code page 932 bytes -> text; the decoder of every project CSV file.
std::u16string WideFromCp932(std::string_view bytes);
// Text -> code page 932 bytes; the encoder of every project CSV file.
std::string Cp932FromWide(std::u16string_view text);
// Text -> UTF-8 bytes; used for telop files.
std::string Utf8FromWide(std::u16string_view text);

// How a Windows program reads a text file of the system's code page (932)
// with a text-mode stream, in pieces of at most kTextPieceBytes bytes that
// end at a line feed at the latest, converting each piece on its own to UTF-8
// in a buffer of kTextBufferBytes: reading ends at a Ctrl-Z, a CR LF pair is
// read as LF, a double-byte character cut between two pieces comes out as
// two characters (the lead byte alone and the trail byte alone), and a piece
// whose UTF-8 needs more than the buffer keeps the whole characters that fit.
// `take` gets the UTF-8 of each piece, its LF included.
inline constexpr std::size_t kTextBufferBytes = 1024;
inline constexpr std::size_t kTextPieceBytes = kTextBufferBytes - 1;
void ForEachTextPiece(std::string_view bytes, const std::function<void(std::string)>& take);

// The byte order mark at the start of a file:
//   0 none (or fewer than two bytes), 1 FF FE (UTF-16 LE), 2 FE FF (UTF-16 BE),
//   3 EF BB (UTF-8; the third byte is not looked at).
// Throws std::runtime_error("cannot open file") when the file cannot be opened.
int ReadByteOrderMark(const std::u16string& path);
// The same of a file's bytes already read.
int ByteOrderMarkOf(std::string_view bytes);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_TEXT_CONVERSION_H_
