#include "workspace/project_path.h"

namespace quorvane::qvconv::converter {

std::u16string WithForwardSlashes(std::u16string_view relative) {
  std::u16string out(relative);
  for (char16_t& c : out) {
    if (c == u'\\') c = u'/';
  }
  return out;
}

std::u16string JoinPath(std::u16string_view folder, std::u16string_view relative) {
  std::u16string out(folder);
  out += u'/';
  out += WithForwardSlashes(relative);
  return out;
}

std::u16string FileNameOf(std::u16string_view path) {
  const auto cut = path.find_last_of(u"\\/");
  return std::u16string(cut == std::u16string_view::npos ? path : path.substr(cut + 1));
}

bool HasParentStep(std::u16string_view path) {
  std::size_t start = 0;
  while (start <= path.size()) {
    std::size_t end = path.find_first_of(u"\\/", start);
    if (end == std::u16string_view::npos) end = path.size();
    if (path.substr(start, end - start) == u"..") return true;
    start = end + 1;
  }
  return false;
}

}  // namespace quorvane::qvconv::converter
