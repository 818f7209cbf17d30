// QvFReader: the abstract reader through which a document of a scenario comes
// in, one operation per document kind.  Each conversion keeps its concrete
// reader (CSV or XML) as a local object; there is no deletion through this
// class, so it has no virtual destructor.
#ifndef QV_MODEL_QVF_READER_H_
#define QV_MODEL_QVF_READER_H_

#include <memory>
#include <string>

#include "model/qvf_records.h"

namespace quorvane::qvformat::format::io {

class QvFReader {
 public:
  // The schedule at `path`.
  virtual QvFSchedule readSchedule(std::u16string path) = 0;
  // A new time table; the caller owns it.
  virtual std::unique_ptr<QvFTimeTable> readTimeTable(std::u16string path) = 0;
  // A new program; the caller owns it.
  virtual std::unique_ptr<QvFProgram> readProgram(std::u16string path) = 0;
  // The playlist at `path`.
  virtual QvFPlaylist readPlaylist(std::u16string path) = 0;

 protected:
  QvFReader() = default;
  QvFReader(const QvFReader&) = default;
  QvFReader& operator=(const QvFReader&) = default;
  ~QvFReader() = default;
};

}  // namespace quorvane::qvformat::format::io

#endif  // QV_MODEL_QVF_READER_H_
