#include "app/run/run_control.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <vector>

#include "app/run/qv_conv_package_input.h"
#include "base/qv_conv_exception.h"
#include "pipeline/qv_conv_csv_to_xml.h"
#include "pipeline/qv_conv_xml_to_csv.h"
#include "pipeline/qv_conv_xml_to_xml.h"
#include "platform/file_system.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

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

}  // namespace

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
      const bool xml_package = package->IsXmlPackage();
      package->Unpack();
      // A plain archive is extracted and that is the whole run.
      if (!xml_package) return;
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
