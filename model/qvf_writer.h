// QvFWriter: the abstract writer through which a document of a scenario goes
// out, one operation per document kind.  Each conversion keeps its concrete
// writer (CSV or XML) as a local object; there is no deletion through this
// class, so it has no virtual destructor.
#ifndef QV_MODEL_QVF_WRITER_H_
#define QV_MODEL_QVF_WRITER_H_

#include <string>

#include "model/qvf_records.h"

namespace quorvane::qvformat::format::io {

class QvFWriter {
 public:
  // Writes the schedule to `path`.
  virtual void outputSchedule(std::u16string path, QvFSchedule schedule) = 0;
  // Writes the time table to `path`; the caller keeps the record.
  virtual void outputTimeTable(std::u16string path, const QvFTimeTable& timetable) = 0;
  // Writes the program to `path`.
  virtual void outputProgram(std::u16string path, QvFProgram program) = 0;
  // Writes the playlist to `path`.  The copy shares its items with the
  // caller's playlist; the writer reads them and does not own them.
  virtual void outputPlaylist(std::u16string path, QvFPlaylist playlist) = 0;

 protected:
  QvFWriter() = default;
  QvFWriter(const QvFWriter&) = default;
  QvFWriter& operator=(const QvFWriter&) = default;
  ~QvFWriter() = default;
};

}  // namespace quorvane::qvformat::format::io

#endif  // QV_MODEL_QVF_WRITER_H_
