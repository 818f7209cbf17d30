#include "app/run/command_line.h"

#include <exception>
#include <stdexcept>
#include <vector>

#include "app/run/parameter_file.h"
#include "base/qv_conv_exception.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

constexpr char16_t kCheck[] = u"-check";
constexpr char16_t kUnpackage[] = u"-unpackage";
constexpr char16_t kDisplayRegion[] = u"-td";
constexpr char16_t kPackage[] = u"-package";
constexpr char16_t kParameterFile[] = u"-param";
constexpr char16_t kLog[] = u"-log";

// The region of a 4K display, when the command line names none.
constexpr char16_t kDefaultRegion[] = u"(0,0,3840,2160)";

bool IsQuote(char16_t c) { return c == u'"' || c == u'\''; }

bool StartsWith(const std::u16string& text, std::u16string_view prefix) {
  return std::u16string_view(text).substr(0, prefix.size()) == prefix;
}

// Fields separated by ",", as a line reader with that delimiter gives them:
// no field at all for empty text, and none after a comma at the very end.
std::vector<std::u16string> SplitFields(const std::u16string& text) {
  if (text.empty()) return {};
  std::vector<std::u16string> fields = qvformat::format::SplitAtCommas<char16_t>(text);
  if (fields.back().empty()) fields.pop_back();
  return fields;
}

// What the option loop gathers before the configuration is built.
struct Options {
  std::u16string input;
  std::u16string output;
  std::u16string check;
  std::u16string region;
  std::u16string parameter_file;
  std::u16string log;
  bool check_seen = false;
  bool unpackage = false;
  bool region_seen = false;
  bool parameter_seen = false;
  bool log_seen = false;
};

// Tells the log which argument made the command line bad.
void NoteBadArgument(const ArgumentTable& table, int at, int count) {
  if (at == 0) {
    run_log::Cause("bad command line: more arguments than the table has slots", u"");
  } else if (at < count) {
    run_log::Cause("bad command line: the argument", table.slots[at]);
  }
}

void ReadArgument(const std::u16string& argument, Options* options) {
  if (argument[0] != u'-') {
    if (!options->input.empty()) ThrowCode(codes::kBadCommandLine);
    options->input = argument;
  } else if (StartsWith(argument, kCheck)) {
    options->check_seen = true;
    options->check = OptionValue(kCheck, argument);
    options->output = options->check;
  } else if (StartsWith(argument, kUnpackage)) {
    options->unpackage = true;
    options->output = OptionValue(kUnpackage, argument);
  } else if (StartsWith(argument, kDisplayRegion)) {
    if (options->region_seen) ThrowCode(codes::kBadCommandLine);
    options->region_seen = true;
    options->region = OptionValue(kDisplayRegion, argument);
  } else if (StartsWith(argument, kPackage)) {
    if (!options->output.empty()) ThrowCode(codes::kBadCommandLine);
    options->output = OptionValue(kPackage, argument);
  } else if (StartsWith(argument, kParameterFile)) {
    if (options->parameter_seen) ThrowCode(codes::kBadCommandLine);
    options->parameter_seen = true;
    options->parameter_file = OptionValue(kParameterFile, argument);
  } else if (StartsWith(argument, kLog)) {
    if (options->log_seen) ThrowCode(codes::kBadCommandLine);
    options->log_seen = true;
    options->log = OptionValue(kLog, argument);
    // A log needs a file: "-log''" names none.
    if (options->log.empty()) ThrowCode(codes::kBadCommandLine);
  } else {
    ThrowCode(codes::kBadCommandLine);
  }
}

}  // namespace

std::u16string OptionValue(std::u16string_view option, const std::u16string& argument) {
  std::u16string value = argument.substr(option.size());
  if (!value.empty() && IsQuote(value.front())) value.erase(0, 1);
  // No value at all is the standard failure that the loop makes code -1.
  if (value.empty()) throw std::out_of_range("option without a value");
  if (IsQuote(value.back())) value.pop_back();
  while (!value.empty() && qvformat::format::IsAsciiSpace(value.back())) value.pop_back();
  std::size_t first = 0;
  while (first < value.size() && qvformat::format::IsAsciiSpace(value[first])) ++first;
  return value.substr(first);
}

QvConvRunConfig ParseCommandLine(const ArgumentTable& table) {
  // An empty argument ends the command line; a full table is its own bound.
  int count = 0;
  while (count < kArgumentSlots && !table.slots[count].empty()) ++count;

  Options options;
  int at = 0;
  try {
    if (count == kArgumentSlots && table.overflow) ThrowCode(codes::kBadCommandLine);
    for (at = 1; at < count; ++at) ReadArgument(table.slots[at], &options);
  } catch (QvConvException*) {
    NoteBadArgument(table, at, count);
    throw;
  } catch (const std::exception&) {
    NoteBadArgument(table, at, count);
    ThrowCode(codes::kBadCommandLine);
  }

  QvConvRunConfig config(options.input, options.output);
  if (!options.parameter_file.empty()) ReadParameterFile(options.parameter_file, &config);
  config.SetCheck(options.check_seen, options.check);
  config.SetUnpackage(options.unpackage);
  config.SetWorkRoot(u"");
  try {
    SetDisplayRegion(options.region_seen ? options.region : kDefaultRegion, &config);
  } catch (QvConvException*) {
    run_log::Cause("bad command line: the region", options.region);
    throw;
  }
  return config;
}

std::u16string LogPathOf(const ArgumentTable& table) {
  for (int i = 1; i < kArgumentSlots && !table.slots[i].empty(); ++i) {
    if (!StartsWith(table.slots[i], kLog)) continue;
    try {
      return OptionValue(kLog, table.slots[i]);
    } catch (const std::exception&) {
      return {};
    }
  }
  return {};
}

void SetDisplayRegion(const std::u16string& text, QvConvRunConfig* config) {
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
  config->SetDisplayRegion({ParseInt(fields[0]), ParseInt(fields[1]), ParseInt(fields[2]),
                           ParseInt(fields[3])});
}

}  // namespace quorvane::qvconv::converter
