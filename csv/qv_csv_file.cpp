// The byte form of project CSV files: code page 932 lines, comma separated,
// with the backslash escapes "\," and "\\".
#include "csv/qv_csv_file.h"

#include <exception>
#include <utility>

#include "base/qv_conv_exception.h"
#include "model/qvf_text.h"
#include "platform/file_system.h"
#include "workspace/run_log.h"
#include "workspace/text_conversion.h"

namespace quorvane::qvconv::io::csv {

namespace {

using converter::QvConvException;
using converter::Guarded;
using qvformat::format::ReplaceAll;
using converter::ThrowCode;
namespace codes = converter::codes;

// Splits one decoded line into its fields and unescapes them.  A backslash
// flips the escape state; an escaped comma belongs to the field, an escaped
// backslash too; any other escaped character is a format error.  A backslash
// at the very end of the line stays in the field.
QvCsvFile::Row SplitLine(std::u16string_view line) {
  QvCsvFile::Row row(1);
  bool escaped = false;
  for (const char16_t c : line) {
    std::u16string& field = row.back();
    if (c == u'\\') {
      // The first of a pair waits for the second; the second is the backslash.
      if (escaped) field += u'\\';
      escaped = !escaped;
    } else if (c == u',') {
      if (escaped) {
        field += u',';
        escaped = false;
      } else {
        row.emplace_back();
      }
    } else if (escaped) {
      ThrowCode(codes::kProjectFileBad);
    } else {
      field += c;
    }
  }
  if (escaped) row.back() += u'\\';
  return row;
}

std::u16string EscapeField(std::u16string field) {
  field = ReplaceAll(std::move(field), u"\\", u"\\\\");
  field = ReplaceAll(std::move(field), u",", u"\\,");
  return field;
}

// The file that ReadFile read last, while a SharedReads object lives: its
// bytes, and its rows once the object that read them has ended.
struct KeptRead {
  bool on = false;
  bool full = false;  // waits for the next read of `path`
  std::u16string path;
  std::string bytes;
  bool parsed = false;  // `rows` are the rows of `bytes`
  std::vector<QvCsvFile::Row> rows;
};
KeptRead kept;

}  // namespace

QvCsvFile::SharedReads::SharedReads() { kept.on = true; }

QvCsvFile::SharedReads::~SharedReads() { kept = KeptRead(); }

QvCsvFile::~QvCsvFile() {
  // The rows of a whole file that waits for its next read spare that read the parse.
  // A read that was cut short is read again, so that it tells of it again.
  if (kept.full && !kept.parsed && !cut_short_ && !source_.empty() && kept.path == source_) {
    kept.rows = std::move(rows_);
    kept.parsed = true;
  }
}

void QvCsvFile::ReadFile(const std::u16string& path) {
  Guarded(codes::kCsvIoFailed, [&] {
    std::string bytes;
    std::string_view text;  // the bytes read, or those kept for the next read
    const bool fresh = rows_.empty();
    if (kept.full && kept.path == path) {
      kept.full = false;
      if (kept.parsed && fresh) {
        rows_ = std::move(kept.rows);
        return;
      }
      bytes = std::move(kept.bytes);
      text = bytes;
    } else {
      kept.full = false;
      if (!platform::ReadFile(path, &bytes)) ThrowCode(codes::kProjectFileMissing);
      text = bytes;
      if (kept.on) {
        kept.path = path;
        kept.bytes = std::move(bytes);
        kept.parsed = false;
        kept.rows.clear();
        kept.full = true;
        text = kept.bytes;
      }
    }
    ReadBytes(text);
    if (fresh) source_ = path;
  });
}

void QvCsvFile::ReadBytes(std::string_view bytes) {
  // Read as text: a Ctrl-Z byte marks the end of the file.  It is never part
  // of a double-byte character of code page 932.
  bytes = bytes.substr(0, bytes.find('\x1a'));
  std::vector<Row> rows;
  std::size_t pos = 0;
  while (pos < bytes.size()) {
    std::size_t end = bytes.find('\n', pos);
    bool has_line_end = end != std::string_view::npos;
    std::string_view line = bytes.substr(pos, has_line_end ? end - pos : std::string_view::npos);
    // Read as text: a CR LF pair is one line end.
    if (has_line_end && !line.empty() && line.back() == '\r') line.remove_suffix(1);
    // A line too long for the line buffer ends the read; the rows so far stay.
    if (line.size() > kMaxLineBytes) {
      converter::run_log::LineTooLong(rows.size() + 1);
      cut_short_ = true;
      break;
    }
    line = line.substr(0, line.find('\0'));
    rows.push_back(SplitLine(converter::WideFromCp932(line)));
    if (!has_line_end) break;
    pos = end + 1;
  }
  for (Row& row : rows) rows_.push_back(std::move(row));
}

std::string QvCsvFile::WriteBytes() const {
  std::string bytes;
  for (const Row& row : rows_) {
    std::u16string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) line += u',';
      if (!row[i].empty()) line += EscapeField(row[i]);
    }
    line += u'\n';
    // Written as text: every LF becomes CR LF.  No trail byte of code page
    // 932 is 0x0A, so the bytes can be scanned as they are.
    for (char c : converter::Cp932FromWide(line)) {
      if (c == '\n') bytes += '\r';
      bytes += c;
    }
  }
  return bytes;
}

void QvCsvFile::WriteFile(const std::u16string& path) const {
  try {
    converter::run_log::Step("write", path);
    platform::OutputFile file;
    if (!file.Open(path)) ThrowCode(codes::kCannotCreate);
    file.Append(WriteBytes());
    // The stream's own failures (a full disk) are not looked at: a file that
    // could be made counts as written.
    file.Close();
  } catch (QvConvException*) {
    throw;
  } catch (const std::exception&) {
    ThrowCode(codes::kProjectFileBad);
  } catch (...) {
    ThrowCode(codes::kUnknownFailure);
  }
}

QvCsvFile::Row QvCsvFile::GetRow(std::size_t index) const {
  return index < rows_.size() ? rows_[index] : Row{};
}

std::u16string QvCsvFile::GetFirstField(std::size_t index) const {
  if (index >= rows_.size() || rows_[index].empty()) return {};
  return rows_[index].front();
}

}  // namespace quorvane::qvconv::io::csv
