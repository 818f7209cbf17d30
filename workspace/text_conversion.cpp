#include "workspace/text_conversion.h"

#include <stdexcept>
#include <utility>

#include "platform/file_system.h"
#include "platform/text_codec.h"

namespace quorvane::qvconv::converter {

std::u16string WideFromCp932(std::string_view bytes) {
  return platform::Utf16FromCp932(bytes);
}

std::string Cp932FromWide(std::u16string_view text) {
  return platform::Cp932FromUtf16(text);
}

std::string Utf8FromWide(std::u16string_view text) {
  return platform::Utf8FromUtf16(text);
}

void ForEachTextPiece(std::string_view bytes, const std::function<void(std::string)>& take) {
  // A text-mode read: the file ends at a Ctrl-Z, and CR LF reads as LF.
  // Neither byte is ever the second byte of a double-byte character.
  bytes = bytes.substr(0, bytes.find('\x1a'));
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') continue;
    text.push_back(bytes[i]);
  }
  // A line end is looked for within the next piece only, so a text without
  // line ends costs its length, not its length times the number of pieces.
  const std::string_view all(text);
  for (std::size_t start = 0; start < all.size();) {
    const std::string_view window = all.substr(start, kTextPieceBytes);
    const std::size_t found = window.find('\n');
    const std::size_t length = found == window.npos ? window.size() : found + 1;
    std::string utf8 = Utf8FromWide(WideFromCp932(window.substr(0, length)));
    if (utf8.size() > kTextBufferBytes) {
      std::size_t end = kTextBufferBytes;
      while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) --end;
      utf8.resize(end);
    }
    take(std::move(utf8));
    start += length;
  }
}

int ReadByteOrderMark(const std::u16string& path) {
  std::string head;
  if (!platform::ReadFilePrefix(path, 2, &head)) {
    throw std::runtime_error("cannot open file");
  }
  return ByteOrderMarkOf(head);
}

int ByteOrderMarkOf(std::string_view bytes) {
  if (bytes.size() < 2) return 0;
  const auto b0 = static_cast<unsigned char>(bytes[0]);
  const auto b1 = static_cast<unsigned char>(bytes[1]);
  if (b0 == 0xFF && b1 == 0xFE) return 1;
  if (b0 == 0xFE && b1 == 0xFF) return 2;
  if (b0 == 0xEF && b1 == 0xBB) return 3;
  return 0;
}

}  // namespace quorvane::qvconv::converter
