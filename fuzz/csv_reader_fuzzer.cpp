// The CSV project reader: one file's bytes read as each kind of project file
// in turn -- schedule, time table, program, playlist and contents file -- by a
// reader whose index grows across the reads, as it does in a conversion.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "csv/qvf_read_csv.h"
#include "fuzz_support.h"

using quorvane::qvconv::io::csv::QvFReadCsv;
namespace fmt = quorvane::qvformat::format;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  qvfuzz::MakeScratchFolder("Program_1");
  const std::u16string plain = qvfuzz::Widen(qvfuzz::WriteScratch("Schedule.csv", bytes));
  const std::u16string program =
      qvfuzz::Widen(qvfuzz::WriteScratch("Program_1/program.csv", bytes));
  const std::u16string playlist =
      qvfuzz::Widen(qvfuzz::WriteScratch("Program_1/playlist_0.csv", bytes));

  QvFReadCsv reader;
  qvfuzz::Guarded([&] { (void)reader.readSchedule(plain); });
  qvfuzz::Guarded([&] { (void)reader.readTimeTable(plain); });
  qvfuzz::Guarded([&] { (void)reader.readProgram(program); });
  fmt::QvFPlaylist list;
  qvfuzz::Guarded([&] { list = reader.readPlaylist(playlist); });
  qvfuzz::Guarded([&] {
    auto& entry = reader.index().programEntry(u"PG1");
    reader.readContents(plain, list, entry);
  });
  return 0;
}
