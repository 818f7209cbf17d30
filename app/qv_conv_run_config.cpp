#include "app/qv_conv_run_config.h"

#include <vector>

#include "app/qv_conv_exception.h"
#include "model/qvf_text_forms.h"

namespace quorvane::qvconv::converter {
namespace {

// Fields separated by ",", as a line reader with that delimiter gives them:
// no field at all for empty text, and none after a comma at the very end.
std::vector<std::u16string> SplitFields(const std::u16string& text) {
  std::vector<std::u16string> fields;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t comma = text.find(u',', start);
    if (comma == std::u16string::npos) {
      fields.push_back(text.substr(start));
      break;
    }
    fields.push_back(text.substr(start, comma - start));
    start = comma + 1;
  }
  return fields;
}

}  // namespace

QvConvRunConfig::QvConvRunConfig(const std::u16string& input, const std::u16string& output,
                                 const std::u16string& parameterFile)
    : input_path_(input), output_path_(output) {
  if (!parameterFile.empty()) ReadParameterFile(parameterFile);
}

void QvConvRunConfig::SetCheck(bool flag, const std::u16string& path) {
  check_only_ = flag;
  if (!path.empty()) check_path_ = path;
}

void QvConvRunConfig::SetDisplayRegion(const std::u16string& text) {
  if (text.empty()) return;
  std::u16string bare;
  for (char16_t c : text) {
    if (c != u'(' && c != u')') bare.push_back(c);
  }
  const std::vector<std::u16string> fields = SplitFields(bare);
  if (fields.size() != 4) ThrowCode(codes::kBadCommandLine);
  // Each field as the runtime's wide text to integer conversion reads it:
  // white space (U+3000 too) and a sign before the digits, the 32-bit bounds.
  using qvformat::format::ParseInt;
  display_region_.x = ParseInt(fields[0]);
  display_region_.y = ParseInt(fields[1]);
  display_region_.width = ParseInt(fields[2]);
  display_region_.height = ParseInt(fields[3]);
}

}  // namespace quorvane::qvconv::converter
