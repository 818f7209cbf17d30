// The project CSV file: its bytes read from a file into rows, and the rows
// written back to bytes.  A second read of what was written must not fail
// where the first one succeeded: the writer escapes what the reader unescapes.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "csv/qv_csv_file.h"
#include "fuzz_support.h"

using quorvane::qvconv::io::csv::QvCsvFile;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = qvfuzz::WriteScratch(
      "file.csv", std::string_view(reinterpret_cast<const char*>(data), size));
  QvCsvFile file;
  bool read = false;
  qvfuzz::Guarded([&] {
    file.ReadFile(qvfuzz::Widen(path));
    read = true;
  });
  if (!read) return 0;
  for (std::size_t i = 0; i <= file.RowCount(); ++i) {
    (void)file.GetRow(i);
    (void)file.GetFirstField(i);
  }
  qvfuzz::Guarded([&] {
    QvCsvFile again;
    again.ReadBytes(file.WriteBytes());
  });
  return 0;
}
