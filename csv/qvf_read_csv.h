// QvFReadCsv: reads the files of a CSV project into scenario records.
//
// One object serves all the files of a conversion; its index grows with
// every file and carries names and identifiers from one step to the next, so
// the order of the calls is fixed: the schedule (which fills the time table
// names), the time tables (program folders), each program (its playlists)
// with its playlists (contents paths) and their contents files (content
// paths).
//
// Readers never judge values: a read takes what parses and leaves the rest
// at the record's default.  A line too short for a column that must be read
// ends the read with -102; nothing is ever read past a row's end.
//
// Failures are QvConvException pointers: what QvCsvFile::ReadFile throws
// (-101, -102, -100) passes unchanged, any other standard exception becomes
// -102.
#ifndef QV_CSV_QVF_READ_CSV_H_
#define QV_CSV_QVF_READ_CSV_H_

#include <memory>
#include <string>
#include <string_view>

#include "csv/qv_csv_file.h"
#include "csv/qvf_csv_index.h"
#include "model/qvf_reader.h"
#include "model/qvf_records.h"

namespace quorvane::qvconv::io::csv {

namespace fmt = quorvane::qvformat::format;

class QvFReadCsv final : public fmt::io::QvFReader {
 public:
  QvFReadCsv() = default;
  QvFReadCsv(const QvFReadCsv&) = delete;
  QvFReadCsv& operator=(const QvFReadCsv&) = delete;

  // The schedule file: line 1 the list's name, line 2 its add flag, then one
  // entry a line (date, time table file, default flag).  Fills timetable_ids.
  fmt::QvFSchedule readSchedule(std::u16string path) override;

  // A time table file: line 1 the name, line 2 unread, then one row a line,
  // told by column 2: "0" a program, "1" a command, anything else an empty
  // row.  Fills program_ids.  Never null.
  std::unique_ptr<fmt::QvFTimeTable> readTimeTable(std::u16string path) override;

  // ---- Programs and playlists ---------------------------------------------
  // (defined in qvf_read_csv_program.cpp)

  // "<folder>/program.csv": the program of a folder that program_ids names.
  // Makes its entry and fills playlist_ids, playlist_colors and background_text.
  std::unique_ptr<fmt::QvFProgram> readProgram(std::u16string path) override;

  // "<folder>/playlist_<n>.csv", after readProgram of that folder: appends the
  // contents file paths to contents_paths of the entry; the items themselves
  // come from readContents.
  fmt::QvFPlaylist readPlaylist(std::u16string path) override;

  // One contents file: appends its item, if any, to `playlist`, and fills
  // content_ids and content_files.
  void readContents(std::u16string path, fmt::QvFPlaylist& playlist, QvFCsvProgramEntry& entry);

  // ---- End of programs and playlists ---------------------------------------

  QvFCsvIndex& index() { return index_; }
  const QvFCsvIndex& index() const { return index_; }

 private:
  QvFCsvIndex index_;
};

}  // namespace quorvane::qvconv::io::csv

#endif  // QV_CSV_QVF_READ_CSV_H_
