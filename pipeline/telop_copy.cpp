#include "pipeline/telop_copy.h"

#include <stdexcept>

#include "platform/file_system.h"
#include "platform/text_codec.h"
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
  return Utf8FromWide(WideFromCp932(bytes));
}

void CopyTelopAsText(const std::u16string& source, const std::u16string& destination) {
  const int mark = ReadByteOrderMark(source);
  std::string bytes;
  if (!platform::ReadFile(source, &bytes)) return;
  platform::OutputFile out;
  if (!out.Open(destination)) return;
  out.Append(TelopAsUtf8(bytes, mark));
  // A copy cut short by a full disk is a failed copy, not a quiet one.
  if (!out.Close()) throw std::runtime_error("cannot write file");
}

}  // namespace quorvane::qvconv::converter
