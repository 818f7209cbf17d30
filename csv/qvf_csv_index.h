// QvFCsvIndex: the table of names that the CSV reader meets while it reads a
// project, and the identifiers it hands out for them.
//
// Files of a project point at each other by name, records by identifier.  The
// reader gives each new name the next number of its kind ("TM1", "TM2", ...)
// in the order it meets them, and the conversion walks the keys of these maps
// to find the next files to read.  All maps are ordered by key in 16-bit code
// units; keys are exact (case sensitive) text.  Nothing is ever removed.
#ifndef QV_CSV_QVF_CSV_INDEX_H_
#define QV_CSV_QVF_CSV_INDEX_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvconv::io::csv {

using QvFNameMap = std::map<std::u16string, std::u16string>;

// The add form of a lookup: the value of `key`, or else a new value `prefix`
// + (size of the map + 1) in decimal, stored under `key`.
std::u16string AddNumberedId(QvFNameMap& map, std::u16string_view prefix,
                             const std::u16string& key);
// The plain form of a lookup: the value of `key`; a key not in the map enters
// it with empty text, and empty text comes back.
std::u16string LookupId(QvFNameMap& map, const std::u16string& key);

// What the reader keeps of one program.
struct QvFCsvProgramEntry {
  QvFNameMap playlist_ids;                     // playlist file name -> "PL" identifier
  std::vector<std::u16string> contents_paths;  // contents file paths of all its playlists
  std::u16string background_text;              // colour text of pane line 0
  QvFNameMap playlist_colors;                  // playlist file name -> colour text of its pane line

  std::u16string addPlaylistId(const std::u16string& file) {
    return AddNumberedId(playlist_ids, u"PL", file);
  }
  std::u16string playlistId(const std::u16string& file) { return LookupId(playlist_ids, file); }
};

// One movie, image or telop item read: its identifier and content path.
struct QvFCsvContentFile {
  std::u16string id;    // "CT" identifier
  std::u16string path;  // the content path as read
};

class QvFCsvIndex {
 public:
  QvFNameMap timetable_ids;  // time table file name -> "TM" identifier
  QvFNameMap program_ids;    // program folder name -> "PG" identifier
  std::map<std::u16string, std::unique_ptr<QvFCsvProgramEntry>>
      program_entries;                           // "PG" id -> entry
  QvFNameMap content_ids;                        // content path -> "CT" identifier
  std::vector<QvFCsvContentFile> content_files;  // in order of reading, with repeats

  // Add forms.
  std::u16string addTimetableId(const std::u16string& file) {
    return AddNumberedId(timetable_ids, u"TM", file);
  }
  std::u16string addProgramId(const std::u16string& folder) {
    return AddNumberedId(program_ids, u"PG", folder);
  }
  std::u16string addContentId(const std::u16string& path) {
    return AddNumberedId(content_ids, u"CT", path);
  }

  // Plain forms.
  std::u16string timetableId(const std::u16string& file) { return LookupId(timetable_ids, file); }
  std::u16string programId(const std::u16string& folder) { return LookupId(program_ids, folder); }
  std::u16string contentId(const std::u16string& path) { return LookupId(content_ids, path); }

  // The entry of a program identifier, made when it is new.
  QvFCsvProgramEntry& programEntry(const std::u16string& id);
  // The entry of a program identifier, or null when there is none.
  QvFCsvProgramEntry* findProgramEntry(const std::u16string& id) const;

  // Key lists in map order: what the conversion walks.
  std::vector<std::u16string> timetableFiles() const { return Keys(timetable_ids); }
  std::vector<std::u16string> programFolders() const { return Keys(program_ids); }
  static std::vector<std::u16string> Keys(const QvFNameMap& map);
};

}  // namespace quorvane::qvconv::io::csv

#endif  // QV_CSV_QVF_CSV_INDEX_H_
