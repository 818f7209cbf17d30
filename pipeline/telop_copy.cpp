#include "pipeline/telop_copy.h"

#include "platform/file_system.h"
#include "platform/text_codec.h"
#include "workspace/run_log.h"
#include "workspace/text_conversion.h"

namespace quorvane::qvconv::converter {

std::string TelopAsUtf8(std::string_view bytes, int byte_order_mark) {
  if (byte_order_mark == 1) {
    const std::u16string units = platform::Utf16FromUtf16Bytes(bytes.substr(2), false);
    std::u16string text;
    text.reserve(units.size());
    for (char16_t c : units) {
      if (c >= 0xD800 && c <= 0xDFFF) break;  // beyond what the reader takes
      if (c != u'\n') text.push_back(c);
    }
    return Utf8FromWide(text);
  }
  // Anything else is read in text mode, piece by piece, and written in text
  // mode: every line feed is written as CR LF.
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  ForEachTextPiece(bytes, [&](const std::string& utf8) {
    for (const char c : utf8) {
      if (c == '\n') text += '\r';
      text += c;
    }
  });
  return text;
}

void CopyTelopAsText(const std::u16string& source, const std::u16string& destination) {
  const int mark = ReadByteOrderMark(source);
  std::string bytes;
  if (!platform::ReadFile(source, &bytes)) {
    run_log::Loss("telop", source, "cannot be read: left out of the package");
    return;
  }
  platform::OutputFile out;
  if (!out.Open(destination)) {
    run_log::Loss("telop copy", destination, "cannot be made: the telop is left out");
    return;
  }
  out.Append(TelopAsUtf8(bytes, mark));
  // As with any text stream, a write that fails (a full disk) is not looked at.
  out.Close();
}

}  // namespace quorvane::qvconv::converter
