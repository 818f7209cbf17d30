#include "app/run/run_control.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <vector>

#include "app/qv_conv_exception.h"
#include "pipeline/qv_conv_csv_to_xml.h"
#include "pipeline/qv_conv_xml_to_csv.h"
#include "pipeline/qv_conv_xml_to_xml.h"
#include "platform/file_system.h"
#include "workspace/qv_conv_package_input.h"
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

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f';
}

bool IsQuote(char16_t c) { return c == u'"' || c == u'\''; }

bool StartsWith(const std::u16string& text, std::u16string_view prefix) {
  return std::u16string_view(text).substr(0, prefix.size()) == prefix;
}

// Ends the process with `code`, the log's last line first.
[[noreturn]] void EndRun(std::int32_t code, bool by_failure) {
  run_log::Finish(code, by_failure);
  std::exit(code);
}

// Ends the process with the code of a failure.  The exception is freed first
// so that a leak checker has nothing to say at the exit.
[[noreturn]] void ExitWith(QvConvException* failure) {
  const std::int32_t code = failure->code();
  delete failure;
  EndRun(code, true);
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
  while (!value.empty() && IsBlank(value.back())) value.pop_back();
  std::size_t first = 0;
  while (first < value.size() && IsBlank(value[first])) ++first;
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

  QvConvRunConfig config(options.input, options.output, options.parameter_file);
  config.SetCheck(options.check_seen, options.check);
  config.SetUnpackage(options.unpackage);
  config.SetWorkRoot(u"");
  try {
    config.SetDisplayRegion(options.region_seen ? options.region : kDefaultRegion);
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

void ParseAndRun(const ArgumentTable& table) {
  // The log is opened before anything else, so that it also tells of a bad
  // command line.
  const std::u16string log = LogPathOf(table);
  if (!log.empty()) {
    std::vector<std::u16string> arguments;
    for (int i = 0; i < kArgumentSlots && !table.slots[i].empty(); ++i) {
      arguments.push_back(table.slots[i]);
    }
    run_log::Open(log, arguments);
  }
  Dispatch(ParseCommandLine(table));
}

void Dispatch(QvConvRunConfig config) {
  try {
    if (config.InputPath().empty()) run_log::Cause("bad command line: no input", u"");
    if (config.InputPath().empty()) ThrowCode(codes::kBadCommandLine);
    if (!config.CheckOnly() && config.OutputPath().empty()) {
      run_log::Cause("bad command line: no output", u"");
      ThrowCode(codes::kBadCommandLine);
    }

    // Kept alive until the pipeline has ended: it holds the shared unzip
    // folder of an opened package for this run.
    std::unique_ptr<QvConvPackageInput> package;
    if (config.Unpackage()) {
      run_log::Step("open the archive", config.InputPath());
      package = std::make_unique<QvConvPackageInput>(config);
      package->IsXmlPackage();
      package->Unpack();
      // A plain archive is extracted and that is the whole run.
      if (!package->IsXmlPackage()) return;
    }

    const std::int32_t in = config.InputKind();
    const std::int32_t out = config.OutputKind();
    const bool known_in = in == KindProject || in == KindCompact || in == KindDebug;
    const bool known_out = out == KindProject || out == KindCompact || out == KindDebug;
    if (!known_in || !known_out) ThrowCode(codes::kBadKind);

    if (out == KindProject) {
      // With a project on both sides the input is read as XML all the same.
      QvConvXmlToCsv(config).Run();
    } else if (in == KindProject) {
      QvConvCsvToXml(config).Run();
    } else {
      QvConvXmlToXml(config).Run();
    }
  } catch (QvConvException* failure) {
    ExitWith(failure);
  } catch (...) {
    EndRun(codes::kUnknownFailure, true);
  }
}

void RunGuarded(const ArgumentTable& table) {
  try {
    ParseAndRun(table);
  } catch (QvConvException* failure) {
    ExitWith(failure);
  } catch (...) {
    EndRun(codes::kUnknownFailure, true);
  }
  EndRun(codes::kFinished, false);
}

void Main(int argc, char** argv) {
  auto table = std::make_unique<ArgumentTable>();
  for (int i = 0; i < argc && argv[i] != nullptr; ++i) {
    if (i >= kArgumentSlots) {
      table->overflow = true;
      break;
    }
    table->slots[i] = platform::PathFromNative(argv[i]);
  }
  RunGuarded(*table);
}

}  // namespace quorvane::qvconv::converter
