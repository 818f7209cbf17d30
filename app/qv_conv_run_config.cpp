#include "app/qv_conv_run_config.h"

#include <climits>
#include <vector>

#include "app/qv_conv_exception.h"

namespace quorvane::qvconv::converter {
namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f';
}

// The integer at the start of `text`, as the runtime's wide text to integer
// conversion reads it: leading blanks skipped, an optional sign, digits up to
// the first non-digit; no digits give 0, and a value beyond the range of an
// int32 stops at its bound.
std::int32_t LeadingInteger(const std::u16string& text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
    negative = text[i] == u'-';
    ++i;
  }
  long long value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i] - u'0');
    if (value > static_cast<long long>(INT_MAX) + 1) value = static_cast<long long>(INT_MAX) + 1;
  }
  if (negative) value = -value;
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<std::int32_t>(value);
}

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
  display_region_.x = LeadingInteger(fields[0]);
  display_region_.y = LeadingInteger(fields[1]);
  display_region_.width = LeadingInteger(fields[2]);
  display_region_.height = LeadingInteger(fields[3]);
}

}  // namespace quorvane::qvconv::converter
