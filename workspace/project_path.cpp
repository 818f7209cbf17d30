#include "workspace/project_path.h"

namespace quorvane::qvconv::converter {

std::u16string JoinPath(std::u16string_view folder, std::u16string_view relative) {
  std::u16string out;
  out.reserve(folder.size() + 1 + relative.size());
  out += folder;
  out += u'\\';
  out += relative;
  return out;
}

std::u16string FileNameOf(std::u16string_view path) {
  const auto cut = path.rfind(u'\\');
  return std::u16string(cut == std::u16string_view::npos ? path : path.substr(cut + 1));
}

}  // namespace quorvane::qvconv::converter
