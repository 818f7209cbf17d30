// QvCsvFile: one project CSV file in memory, as rows of text fields.
//
// The byte form of a project file is not RFC 4180 CSV: the text is code page
// 932, there are no quotes, and the escape character is the backslash, with
// exactly two escapes, "\," for a comma and "\\" for a backslash.  Lines end
// in CR LF when written; LF or CR LF are read.
//
// Nothing here knows what a column means: rows of one file routinely have
// different lengths, and there is no header row.
#ifndef QV_CSV_QV_CSV_FILE_H_
#define QV_CSV_QV_CSV_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvconv::io::csv {

class QvCsvFile {
 public:
  using Row = std::vector<std::u16string>;

  QvCsvFile() = default;
  // Hands its rows to SharedReads when they are a whole file's that waits for
  // its next read.
  ~QvCsvFile();
  QvCsvFile(const QvCsvFile&) = delete;
  QvCsvFile& operator=(const QvCsvFile&) = delete;

  // The longest line that reads, in bytes of code page 932 without its line
  // end.  A longer line ends the read without an error: it and all lines
  // behind it are dropped.
  static constexpr std::size_t kMaxLineBytes = 1023;

  // Appends the rows of the file at `path`.  Every row read has at least one
  // field.  Throws (as QvConvException pointers):
  //   -101 the file cannot be opened for reading,
  //   -102 a backslash before a character other than a backslash or a comma,
  //   -100 a standard exception (memory and the like) during the read.
  void ReadFile(const std::u16string& path);

  // While an object of this class lives, the bytes of the file that ReadFile
  // read last are kept, and a read that follows of the same path takes them
  // instead of reading the file again: a run's walk, in which the checker
  // reads a file and the reader then reads it too, reads it from disk once.
  // When the file object that read them ends first, with only that file's
  // rows, the rows are kept with them and a fresh file object takes those:
  // the file is parsed once too.  What is kept serves one read only.  One
  // SharedReads object at a time.
  class SharedReads {
   public:
    SharedReads();
    ~SharedReads();
    SharedReads(const SharedReads&) = delete;
    SharedReads& operator=(const SharedReads&) = delete;
  };

  // Creates or truncates the file at `path` and writes all rows.  Throws -3
  // when the file cannot be opened for writing, -102 on a standard exception,
  // -999 on any other.
  void WriteFile(const std::u16string& path) const;

  // A copy of row `index`; an empty row (no fields) past the end.
  Row GetRow(std::size_t index) const;
  // The first field of row `index`; empty text when there is none.
  std::u16string GetFirstField(std::size_t index) const;

  // Building rows for writing; a row may have no fields (an empty line).
  void AddRow(Row row) {
    source_.clear();
    rows_.push_back(std::move(row));
  }
  std::size_t RowCount() const { return rows_.size(); }
  const std::vector<Row>& Rows() const { return rows_; }

  // The byte forms of the two file operations, without the file: ReadBytes
  // appends the rows of file content (and throws -102 as ReadFile does),
  // WriteBytes gives the content WriteFile writes.
  void ReadBytes(std::string_view bytes);
  std::string WriteBytes() const;

 private:
  std::vector<Row> rows_;
  std::u16string source_;  // the file whose rows these are, alone and unchanged
  bool cut_short_ = false;  // a line too long ended a read

};

}  // namespace quorvane::qvconv::io::csv

#endif  // QV_CSV_QV_CSV_FILE_H_
