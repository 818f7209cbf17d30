// The checker: one file's bytes walked as each kind of project file that has
// a template -- schedule, time table, program and contents file -- into one
// report, which is then saved.  Cells of any count and content, numbers out
// of range and unknown extensions must end in findings or the check's own
// failure, never in a read past a row.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "checker/qv_checker.h"
#include "fuzz_support.h"

namespace checker = quorvane::qvconv::checker;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  qvfuzz::MakeScratchFolder("Program_1");
  const std::u16string file =
      qvfuzz::Widen(qvfuzz::WriteScratch("Program_1/contents_1_001.csv", bytes));
  const std::u16string report = qvfuzz::Widen(qvfuzz::ScratchFolder() + "/report.xml");

  checker::QvChecker check;
  qvfuzz::Guarded([&] { check.createReport(); });
  check.setSource(qvfuzz::Widen(qvfuzz::ScratchFolder() + "/Program_1"));
  check.display_region = {0, 0, 1920, 1080};
  // The first byte, if any, chooses a pane override as the pipeline may set one.
  check.pane_override = size > 0 ? data[0] % 9 - 1 : -1;
  for (checker::QvChFileKind kind :
       {checker::ChSchedule, checker::ChTimeTable, checker::ChProgram, checker::ChContentsInfo}) {
    qvfuzz::Guarded([&] { check.checkFile(kind, file); });
  }
  qvfuzz::Guarded([&] { check.writeReport(report); });
  return 0;
}
