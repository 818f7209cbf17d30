#include "checker/qv_ch_table.h"

#include <iterator>

#include "base/qv_conv_exception.h"
#include "model/qvf_text.h"

namespace quorvane::qvconv::checker {
namespace {

struct RowText {
  const char16_t* id;
  const char16_t* kind;
  const char16_t* argument;
  bool is_error;
  const char16_t* message_key;
};

constexpr bool W = false;
constexpr bool E = true;

// What the target does not support, check by check.
const RowText kRows[] = {
    {u"SC0301", u"CHECK_SCHEDULE_DATE", u"-", W, u"msg.SC0301"},
    {u"TM0301", u"CHECK_TIMETABLE_TIME", u"-", W, u"msg.TM0301"},
    {u"TM0401", u"CHECK_TIMETABLE_TIME", u"-", W, u"msg.TM0401"},
    {u"PG0301", u"CHECK_DISP_POSITION", u"x", W, u"msg.PG0301"},
    {u"PG0401", u"CHECK_DISP_POSITION", u"y", W, u"msg.PG0401"},
    {u"PG0501", u"CHECK_DISP_SIZE", u"w", E, u"msg.PG0501"},
    {u"PG0601", u"CHECK_DISP_SIZE", u"h", E, u"msg.PG0601"},
    {u"PG0701", u"CHECK_DISP_POSITION", u"x", E, u"msg.PG0701"},
    {u"PG0702", u"CHECK_DISP_POSITION", u"y", E, u"msg.PG0702"},
    {u"PG0900", u"CHECK_PANE_NO", u"-", E, u"msg.PG0900"},
    {u"PG1101", u"CHECK_FRAME_POSITION", u"x", W, u"msg.PG1101"},
    {u"PG1201", u"CHECK_FRAME_POSITION", u"y", W, u"msg.PG1201"},
    {u"PG1301", u"CHECK_DISP_SIZE", u"w", W, u"msg.PG1301"},
    {u"PG1401", u"CHECK_DISP_SIZE", u"h", W, u"msg.PG1401"},
    {u"CI0100", u"CHECK_OK_EXT", u"-", E, u"msg.CI0100"},
    {u"CI0203", u"CHECK_NG_NUM", u"2", E, u"msg.CI0203"},
    {u"CI0204", u"CHECK_NG_NUM", u"3", E, u"msg.CI0204"},
    {u"CI0210", u"CHECK_NG_NUM", u"9", E, u"msg.CI0210"},
    {u"CI0211", u"CHECK_NG_NUM", u"7", E, u"msg.CI0211"},
    {u"CI0300", u"CHECK_COLOR", u"", E, u"msg.CI0300"},
    {u"CI1300", u"CHECK_EFFECT_KIND", u"-", E, u"msg.CI1300"},
    {u"CI1700", u"CHECK_OK_NUM", u"-1", E, u"msg.CI1700"},
    {u"CI1800", u"CHECK_OK_NUM", u"-1", E, u"msg.CI1800"},
    {u"CI1900", u"CHECK_OK_NUM", u"-1", E, u"msg.CI1900"},
    {u"CI2000", u"CHECK_OK_NUM", u"-1", E, u"msg.CI2000"},
    {u"CI2200", u"CHECK_EXIST_STR", u"-", E, u"msg.CI2200"},
    {u"CI2300", u"CHECK_FONT_SIZE", u"", E, u"msg.CI2300"},
};

struct EffectText {
  const char16_t* low_byte;  // the higher three byte patterns are empty
  const char16_t* id;
  bool is_error;
  const char16_t* message_key;
};

// Image effects the target lacks, by the low byte of the effect code.
const EffectText kEffectRows[] = {
    {u"0x0f", u"CI1401", E, u"msg.CI1401"},
    {u"0x0a", u"CI1380", E, u"msg.CI1380"},
    {u"0x0b", u"CI1385", E, u"msg.CI1385"},
};

const char16_t* const kOkExtensions[] = {u"mp4", u"tlp", u"jpeg", u"jpg", u"png", u"gif", u"bmp"};

const char16_t* const kNgExtensions[] = {
    u"mpg", u"mpeg", u"m1v", u"m2a", u"m2p", u"m2v", u"mp2", u"wmv", u"fla", u"swf", u"mov", u"avi",
    u"ppt", u"pptx", u"htm", u"html", u"wav", u"mp3", u"au", u"aiff", u"aif", u"wma", u"mid"};

// Column templates by file kind; "\n" separates the lines (rows 0, 1, ...).
const char16_t kScheduleTemplate[] = u"\n\nSC0301,,";
const char16_t kTimeTableTemplate[] = u"\n\nTM0301,TM0401,,,,";
const char16_t kProgramTemplate[] =
    u"\n,PG0701/PG0301,PG0702/PG0401,PG0501,PG0601,,\nPG0900,,,,,,,,";
const char16_t kContentsTemplate[] =
    u"CI0100\nCI0203/CI0204/CI0210/CI0211,,,,CI0300,,,,,,,CI1300,,,CI1700,CI1800,CI1900,CI2000,\n"
    u"CI2200";

}  // namespace

QvChTable::QvChTable(const std::u16string& id) {
  buildTable();
  if (!selectRow(id)) converter::ThrowCode(converter::codes::kNoCheckRow);
}

void QvChTable::buildTable() {
  built = true;
  current.is_error = false;
  if (ok_extensions.empty()) {
    ok_extensions.assign(std::begin(kOkExtensions), std::end(kOkExtensions));
    ng_extensions.assign(std::begin(kNgExtensions), std::end(kNgExtensions));
  }
  if (rows.empty()) {
    for (const RowText& r : kRows) {
      rows.push_back({r.id, r.kind, r.argument, r.is_error, r.message_key});
    }
  }
  if (effect_rows.empty()) {
    for (const EffectText& r : kEffectRows) {
      QvChEffectRow row;
      row.byte_pattern[0] = r.low_byte;
      row.id = r.id;
      row.is_error = r.is_error;
      row.message_key = r.message_key;
      effect_rows.push_back(row);
    }
  }
}

const QvChTable& QvChTable::Fixed() {
  static const QvChTable fixed = [] {
    QvChTable table;
    table.buildTable();
    for (std::size_t i = 0; i < table.rows.size(); ++i) table.first_row_.emplace(table.rows[i].id, i);
    return table;
  }();
  return fixed;
}

bool QvChTable::selectRow(const std::u16string& id) {
  for (const QvChRow& row : rows) {
    if (row.id == id) {
      current = row;
      return true;
    }
  }
  return false;
}

bool QvChTable::selectRow(const std::u16string& id, QvChSelection& selection) const {
  if (!first_row_.empty()) {
    const auto found = first_row_.find(id);
    if (found == first_row_.end()) return false;
    selection.current = rows[found->second];
    return true;
  }
  for (const QvChRow& row : rows) {
    if (row.id == id) {
      selection.current = row;
      return true;
    }
  }
  return false;
}

QvChSelection QvChTable::selectionOf(const std::u16string& id) const {
  QvChSelection selection;
  if (!selectRow(id, selection)) converter::ThrowCode(converter::codes::kNoCheckRow);
  return selection;
}

std::vector<QvChTemplateRow> QvChTable::ParseTemplate(const std::u16string& text) {
  std::vector<QvChTemplateRow> result;
  if (text.empty()) {
    result.emplace_back();
    return result;
  }
  std::size_t line_start = 0;
  while (true) {
    const std::size_t line_end = text.find(u'\n', line_start);
    const std::size_t length =
        line_end == std::u16string::npos ? std::u16string::npos : line_end - line_start;
    const std::u16string line = text.substr(line_start, length);
    QvChTemplateRow row;
    // n commas make n + 1 cells, so a trailing comma closes the row with one
    // empty cell; an empty line has none.
    if (!line.empty()) row = qvformat::format::SplitAtCommas<char16_t>(line);
    result.push_back(row);
    if (line_end == std::u16string::npos) break;
    line_start = line_end + 1;
  }
  return result;
}

const std::vector<QvChTemplateRow>& QvChTable::templateOf(QvChFileKind kind) const {
  static const std::vector<QvChTemplateRow> schedule = ParseTemplate(kScheduleTemplate);
  static const std::vector<QvChTemplateRow> time_table = ParseTemplate(kTimeTableTemplate);
  static const std::vector<QvChTemplateRow> program = ParseTemplate(kProgramTemplate);
  static const std::vector<QvChTemplateRow> contents = ParseTemplate(kContentsTemplate);
  static const std::vector<QvChTemplateRow> none = ParseTemplate(std::u16string());
  switch (kind) {
    case ChSchedule:
      return schedule;
    case ChTimeTable:
      return time_table;
    case ChProgram:
      return program;
    case ChContentsInfo:
      return contents;
    default:
      return none;
  }
}

}  // namespace quorvane::qvconv::checker
