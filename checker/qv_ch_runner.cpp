// The walk of one file and the operations on schedule dates, time table
// times, numbers and presence.  The layout operations stand in
// qv_ch_layout_checks.cpp, the content operations in qv_ch_content_checks.cpp.
#include "checker/qv_ch_runner.h"

#include <ctime>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "base/qv_conv_exception.h"
#include "checker/qv_ch_text.h"
#include "checker/qv_checker.h"
#include "csv/qv_csv_file.h"
#include "model/qvf_number_scan.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"
#include "platform/system_info.h"
#include "workspace/project_path.h"
#include "workspace/text_conversion.h"

namespace quorvane::qvconv::checker {

using converter::QvConvException;
using qvformat::format::ParseInt;
using qvformat::format::ScanDecimalFields;
using qvformat::format::ScanUnits;

namespace {

// The pane of a data row: in a program file the row number less 2 (rows 0
// and 1 have none), elsewhere none.
int PaneOfRow(QvChFileKind kind, std::size_t row) {
  if (kind != ChProgram || row < 2) return -1;
  return static_cast<int>(row - 2);
}

}  // namespace

void QvChRunner::reportRow(const QvChSelection& row_table) {
  checker.addResult(row_table.current.id, row_table.current.is_error, row_table.current_pane,
                    row_table.current_file, row_table.current.message_key);
}

void QvChRunner::reportBadCell(const QvChSelection& row_table, const std::u16string& message_key) {
  checker.addResult(row_table.current.id, true, row_table.current_pane, row_table.current_file,
                    message_key);
}

void QvChRunner::walkFile(QvChFileKind kind, const std::u16string& path) {
  io::csv::QvCsvFile csv;
  converter::Guarded(converter::codes::kProjectFileBad, [&] { csv.ReadFile(path); });
  file = path;
  const std::vector<QvChTemplateRow>& templates = fixed_table.templateOf(kind);
  const std::size_t template_count = templates.size();
  const std::size_t row_count = csv.RowCount();
  if (row_count == 0) return;

  // A contents file names its content in the first field; the findings of the
  // file carry the content's file name.
  std::u16string file_text;
  if (kind == ChContentsInfo) {
    const std::u16string first = csv.GetFirstField(0);
    const std::size_t slash = first.rfind(u'\\');
    if (slash != std::u16string::npos) file_text = first.substr(slash + 1);
  }

  const std::vector<QvChDataRow>& rows = csv.Rows();
  const QvChDataRow no_row;
  for (std::size_t t = 0; t < template_count; ++t) {
    checkLine(templates[t], t < row_count ? rows[t] : no_row, file_text, PaneOfRow(kind, t));
    if (t + 1 == template_count) {
      for (std::size_t r = t + 1; r < row_count; ++r) {
        checkLine(templates[t], rows[r], file_text, PaneOfRow(kind, r));
      }
    }
  }
}

void QvChRunner::checkLine(const QvChTemplateRow& template_row, const QvChDataRow& data_row,
                           const std::u16string& file_text, int pane) {
  if (template_row.empty() || data_row.empty()) return;
  for (std::size_t c = 0; c < template_row.size(); ++c) {
    const std::u16string& cell = template_row[c];
    if (cell.empty() || data_row.size() <= c) continue;
    if (cell.find(u'/', 1) == std::u16string::npos) {
      checkCell(cell, data_row, c, file_text, pane);
      continue;
    }
    // Several ids, one after the other on the same data cell.
    std::size_t start = 0;
    while (true) {
      const std::size_t slash = cell.find(u'/', start);
      checkCell(cell.substr(start, slash == std::u16string::npos ? slash : slash - start),
                data_row, c, file_text, pane);
      if (slash == std::u16string::npos) break;
      start = slash + 1;
    }
  }
}

void QvChRunner::checkCell(const std::u16string& id, const QvChDataRow& data_row,
                           std::size_t column, const std::u16string& file_text, int pane) {
  if (data_row.empty() || id.empty()) return;
  try {
    table.current_pane = pane;
    fixed_table.selectRow(id, table);
    table.current_file = file_text;
    const std::u16string& kind = table.current.kind;
    if (kind.empty()) return;
    const std::u16string& cell = data_row.at(column);
    // The check operations by the word of their row; a word of no operation
    // checks nothing.
    struct Cell {
      const std::u16string& text;
      const QvChDataRow& row;
      std::size_t column;
      const std::u16string& id;
    };
    using Operation = void (*)(QvChRunner&, const Cell&);
    static const std::pair<std::u16string_view, Operation> kOperations[] = {
        {u"CHECK_OK_NUM", [](QvChRunner& r, const Cell& c) { r.CHECK_OK_NUM(c.text); }},
        {u"CHECK_NG_NUM", [](QvChRunner& r, const Cell& c) { r.CHECK_NG_NUM(c.text); }},
        {u"CHECK_EXIST_STR", [](QvChRunner& r, const Cell& c) { r.CHECK_EXIST_STR(c.text); }},
        {u"CHECK_DISP_POSITION",
         [](QvChRunner& r, const Cell& c) { r.CHECK_DISP_POSITION(c.text); }},
        {u"CHECK_DISP_SIZE",
         [](QvChRunner& r, const Cell& c) {
           // The width row tests width and height together; the height row
           // of the same frame has nothing left to do.
           if (c.id != u"PG0501") return;
           const std::u16string height =
               c.column + 1 < c.row.size() ? c.row[c.column + 1] : std::u16string();
           r.CHECK_DISP_SIZE(c.text, height, r.table);
         }},
        {u"CHECK_SCHEDULE_DATE",
         [](QvChRunner& r, const Cell& c) { r.CHECK_SCHEDULE_DATE(c.row); }},
        {u"CHECK_TIMETABLE_TIME",
         [](QvChRunner& r, const Cell& c) { r.CHECK_TIMETABLE_TIME(c.text); }},
        {u"CHECK_PANE_NO", [](QvChRunner& r, const Cell& c) { r.CHECK_PANE_NO(c.row); }},
        {u"CHECK_OK_EXT", [](QvChRunner& r, const Cell& c) { r.CHECK_OK_EXT(c.text); }},
        {u"CHECK_NG_EXT", [](QvChRunner& r, const Cell& c) { r.CHECK_NG_EXT(c.text); }},
        {u"CHECK_EFFECT_KIND", [](QvChRunner& r, const Cell& c) { r.CHECK_EFFECT_KIND(c.text); }},
        {u"CHECK_COLOR", [](QvChRunner& r, const Cell& c) { r.CHECK_COLOR(c.text); }},
    };
    for (const auto& [word, operation] : kOperations) {
      if (word == kind) {
        operation(*this, Cell{cell, data_row, column, id});
        break;
      }
    }
  } catch (const std::exception&) {
    throw QvConvException(converter::codes::kCheckFailed);
  }
}

void QvChRunner::CHECK_OK_NUM(const std::u16string& cell) {
  const std::u16string& argument = table.current.argument;
  if (cell.empty() || argument.empty()) return;
  try {
    if (ParseInt(cell) != ParseInt(argument)) reportRow();
  } catch (const std::exception&) {
    reportBadCell(table, u"msg.NUMBER");
  }
}

void QvChRunner::CHECK_NG_NUM(const std::u16string& cell) {
  const std::u16string& argument = table.current.argument;
  if (cell.empty() || argument.empty()) return;
  if (!IsDigits(argument, false)) {
    reportBadCell(table, u"msg.NUMBER");
    converter::ThrowCode(converter::codes::kParameterFileBad);
  }
  try {
    if (!extension_reported && ParseInt(cell) == ParseInt(argument)) reportRow();
  } catch (const std::exception&) {
    reportBadCell(table, u"msg.NUMBER");
  }
}

void QvChRunner::CHECK_EXIST_STR(const std::u16string& cell) {
  if (!cell.empty()) reportRow();
}

void QvChRunner::CHECK_SCHEDULE_DATE(const QvChDataRow& data_row) {
  if (data_row.empty()) return;
  try {
    // An empty date is read as today's date, as the schedule reader takes it.
    // A date that the form cannot read is bad data of the file.
    const std::u16string& cell = data_row.at(0);
    std::tm today = platform::LocalNow();
    today.tm_hour = today.tm_min = today.tm_sec = 0;
    today.tm_isdst = 0;
    std::tm date = today;
    if (!cell.empty()) {
      static constexpr int kWidths[] = {4, 2, 2};  // "%4d/%2d/%2d"
      int numbers[3] = {0, 0, 0};
      if (ScanDecimalFields(cell, u'/', kWidths, numbers) < 3) {
        reportBadCell(table, u"msg.DATE");
        return;
      }
      date = std::tm{};
      date.tm_year = numbers[0] - 1900;
      date.tm_mon = numbers[1] - 1;
      date.tm_mday = numbers[2];
      date.tm_isdst = 0;
    }
    const long long difference = static_cast<long long>(
        std::difftime(platform::MakeLocalTime(&date), platform::MakeLocalTime(&today)));
    if (difference < 0) {
      reportRow();
      return;
    }
    if (difference == 0) checker.today_timetable = data_row.at(1);
  } catch (const std::exception&) {
    reportBadCell(table, u"msg.DATE");
  }
}

void QvChRunner::CHECK_TIMETABLE_TIME(const std::u16string& cell) {
  if (cell.empty()) return;
  try {
    if (checker.today_timetable.empty()) return;
    // Only today's time table is tested: the file whose path ends in the
    // schedule's text for today, exactly.
    const std::u16string& today = checker.today_timetable;
    if (file.size() < today.size() ||
        file.compare(file.size() - today.size(), today.size(), today) != 0) {
      return;
    }
    // The cell as 8-bit text of at most 255 bytes, scanned into the hours,
    // minutes and seconds of the current time.
    std::tm moment = platform::LocalNow();
    const std::string bytes = converter::Cp932FromWide(cell).substr(0, 255);
    qvformat::format::ParseTime(qvformat::format::Widen(bytes), moment, ScanUnits::kBytes);
    std::tm now = platform::LocalNow();
    const long long difference = static_cast<long long>(
        std::difftime(platform::MakeLocalTime(&moment), platform::MakeLocalTime(&now)));
    if (difference < 0) reportRow();
  } catch (const std::exception&) {
    reportBadCell(table, u"msg.TIME");
  }
}

}  // namespace quorvane::qvconv::checker
