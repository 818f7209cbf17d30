#include "workspace/text_conversion.h"

#include <stdexcept>

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

int ReadByteOrderMark(const std::u16string& path) {
  std::string head;
  if (!platform::ReadFilePrefix(path, 2, &head)) {
    throw std::runtime_error("cannot open file");
  }
  if (head.size() < 2) return 0;
  const auto b0 = static_cast<unsigned char>(head[0]);
  const auto b1 = static_cast<unsigned char>(head[1]);
  if (b0 == 0xFF && b1 == 0xFE) return 1;
  if (b0 == 0xFE && b1 == 0xFF) return 2;
  if (b0 == 0xEF && b1 == 0xBB) return 3;
  return 0;
}

}  // namespace quorvane::qvconv::converter
