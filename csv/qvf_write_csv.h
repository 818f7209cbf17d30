// QvFWriteCsv: writes scenario records as the files of a CSV project, and
// makes the names of the project tree:
//
//   Schedule_<stamp>_001.csv
//   TimeTable_<stamp>_<n>.csv
//   Program_<stamp>_<n>/program.csv
//   Program_<stamp>_<n>/playlist_<i>.csv
//   Program_<stamp>_<n>/information/contents_<i>_<k>.csv
//   contents/<id><extension>
//
// One object serves all the files of a conversion.  The stamp is the local
// time of its construction; time table and program numbers are handed out at
// first use, from 1, in the order the writer meets the identifiers.
//
// Failures are QvConvException pointers: what QvCsvFile::WriteFile throws
// (-3, -102, -999) passes unchanged, any other standard exception becomes -100.
#ifndef QV_CSV_QVF_WRITE_CSV_H_
#define QV_CSV_QVF_WRITE_CSV_H_

#include <cstdint>
#include <string>

#include "csv/qv_csv_file.h"
#include "csv/qvf_csv_index.h"
#include "model/qvf_records.h"
#include "model/qvf_writer.h"

namespace quorvane::qvconv::io::csv {

namespace fmt = quorvane::qvformat::format;

class QvFWriteCsv final : public fmt::io::QvFWriter {
 public:
  // The stamp is the local time now, "%04d%02d%02d_%02d%02d%02d".
  QvFWriteCsv();
  // A fixed stamp (tests, and runs that must repeat their names).
  explicit QvFWriteCsv(std::u16string stamp);
  QvFWriteCsv(const QvFWriteCsv&) = delete;
  QvFWriteCsv& operator=(const QvFWriteCsv&) = delete;

  // Line 1 the list's name, line 2 its add flag, then one line an entry.
  void outputSchedule(std::u16string path, fmt::QvFSchedule schedule) override;

  // Line 1 the name, line 2 "0xD4F0FF", then a line of six fields for each
  // row: a program as kind "0"; a command (in a row without a program) as
  // kind "1" (start time, "", "1", "", type, target input).  A row with
  // neither carries nothing and is not written.
  void outputTimeTable(std::u16string path, const fmt::QvFTimeTable& timetable) override;

  // ---- Programs and playlists ---------------------------------------------
  // (defined in qvf_write_csv_program.cpp)

  void outputProgram(std::u16string path, fmt::QvFProgram program) override;

  // Does nothing: a playlist file needs its pane number and folder, which
  // this signature does not have.  The conversion calls outputPlaylistFile.
  void outputPlaylist(std::u16string path, fmt::QvFPlaylist playlist) override;

  // Writes "playlist_<index>.csv" into `folder` and the contents files of its
  // items below "information".  A null playlist gives an empty file.
  // `content_names` maps content identifier text to content file name; this
  // operation adds the names of the items it writes.
  void outputPlaylistFile(std::int32_t index, std::u16string folder,
                          const fmt::QvFPlaylist* playlist, QvFNameMap& content_names);

  // Writes the contents file at `path` for one item.
  void outputContents(std::u16string path, const fmt::QvFContent& item, QvFNameMap& content_names);

  // ---- End of programs and playlists ---------------------------------------

  // ---- Names of the project tree --------------------------------------------

  // "Schedule_" + stamp + "_001.csv".
  std::u16string scheduleFileName() const;
  // The file name of a time table identifier, "TimeTable_" + stamp + "_%03d.csv",
  // numbered at first use.
  std::u16string timetableFileName(const std::u16string& id);
  // The folder name of a program identifier, "Program_" + stamp + "_%03d",
  // numbered at first use.
  std::u16string programFolderName(const std::u16string& id);
  static std::u16string programFileName();                    // "program.csv"
  static std::u16string playlistFileName(std::int32_t pane);  // "playlist_%d.csv"
  static std::u16string informationFolderName();              // "information"
  static std::u16string contentsFolderName();                 // "contents"
  // "information\contents_%d_%03d.csv": the text a playlist file holds.
  static std::u16string contentsFileName(std::int32_t pane, std::int32_t item);
  // "..\contents\" + file name: the text line 1 of a contents file holds.
  static std::u16string contentReference(const std::u16string& file);
  static std::u16string movieFileName(const std::u16string& id);  // id + ".mp4"
  static std::u16string telopFileName(const std::u16string& id);  // id + ".tlp"
  // id + ".jpg" (type 0 and unknown types), ".png" (1), ".gif" (2), ".bmp" (3).
  static std::u16string imageFileName(const std::u16string& id, std::int32_t type);

  const std::u16string& stamp() const { return stamp_; }
  const QvFNameMap& timetableFiles() const { return timetable_files_; }
  const QvFNameMap& programFolders() const { return program_folders_; }

 private:
  std::u16string stamp_;
  QvFNameMap timetable_files_;  // "TM" identifier text -> time table file name
  QvFNameMap program_folders_;  // "PG" identifier text -> program folder name
};

}  // namespace quorvane::qvconv::io::csv

#endif  // QV_CSV_QVF_WRITE_CSV_H_
