// QvChFileKind: the kind of a file that the checker looks at.  It chooses the
// column template of the walk and names the file's CheckData in the report.
#ifndef QV_CHECKER_QV_CH_FILE_KIND_H_
#define QV_CHECKER_QV_CH_FILE_KIND_H_

#include <cstdint>

namespace quorvane::qvconv::checker {

enum QvChFileKind : std::int32_t {
  ChSchedule = 0,      // "schedule"
  ChTimeTable = 1,     // "timetable"
  ChInterrupt = 2,     // "interrupt": reported without a walk
  ChProgram = 3,       // "program"
  ChPlaylist = 4,      // "playlist": named, never walked
  ChContentsInfo = 5,  // "contentsinfo": a contents file of a playlist
  ChContents = 6,      // "contents": named, never walked
};

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CH_FILE_KIND_H_
