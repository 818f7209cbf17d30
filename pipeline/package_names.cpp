#include "pipeline/package_names.h"

#include "base/qv_conv_exception.h"

namespace quorvane::qvconv::converter {

bool IsPlainName(std::u16string_view name) {
  if (name.empty() || name == u"." || name == u"..") return false;
  return name.find_first_of(std::u16string_view(u"/\\\0", 3)) == std::u16string_view::npos;
}

std::u16string DocumentPath(const std::u16string& folder, const std::u16string& id) {
  if (!IsPlainName(id)) ThrowCode(codes::kXmlUnreadable);
  return folder + u"/" + id + u".xml";
}

}  // namespace quorvane::qvconv::converter
