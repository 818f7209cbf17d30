// Reading the schedule and the time tables of a CSV project.
#include "csv/qvf_read_csv.h"

#include <exception>
#include <utility>

#include "base/qv_conv_exception.h"
#include "model/qvf_text_forms.h"

namespace quorvane::qvconv::io::csv {

namespace {

using converter::QvConvException;
using converter::Guarded;
using converter::ThrowCode;
namespace codes = converter::codes;

// Line 3 is the first data line of both files (row 2).
constexpr std::size_t kFirstDataRow = 2;

// A data line too short for a column that must be read ends the read.
void RequireColumns(const QvCsvFile::Row& row, std::size_t count) {
  if (row.size() < count) ThrowCode(codes::kProjectFileBad);
}

}  // namespace

fmt::QvFSchedule QvFReadCsv::readSchedule(std::u16string path) {
  return Guarded(codes::kProjectFileBad, [&] {
    fmt::QvFSchedule schedule;
    QvCsvFile file;
    file.ReadFile(path);
    // The file has no version of its own.
    schedule.version = u"1.0";
    std::u16string name = file.GetFirstField(0);
    if (!name.empty()) schedule.schedule_list.name = name;
    if (std::optional<bool> add = fmt::ParseBoolValue(file.GetFirstField(1))) {
      schedule.schedule_list.add = add;
    }
    const std::vector<QvCsvFile::Row>& rows = file.Rows();
    for (std::size_t i = kFirstDataRow; i < rows.size(); ++i) {
      const QvCsvFile::Row& row = rows[i];
      RequireColumns(row, 2);
      fmt::QvFScheduleEntry entry;
      fmt::ParseDate(row[0], entry.date);
      entry.ref_timetable.assign(index_.addTimetableId(row[1]));
      if (row.size() > 2) fmt::ParseDefaultFlag(row[2], entry.default_);
      schedule.schedule_list.schedules.push_back(std::move(entry));
    }
    return schedule;
  });
}

std::unique_ptr<fmt::QvFTimeTable> QvFReadCsv::readTimeTable(std::u16string path) {
  return Guarded(codes::kProjectFileBad, [&] {
    auto timetable = std::make_unique<fmt::QvFTimeTable>();
    QvCsvFile file;
    file.ReadFile(path);
    std::u16string name = file.GetFirstField(0);
    if (!name.empty()) timetable->table_list.name = name;
    // Line 2 holds a colour that nothing reads.
    const std::vector<QvCsvFile::Row>& rows = file.Rows();
    for (std::size_t i = kFirstDataRow; i < rows.size(); ++i) {
      const QvCsvFile::Row& row = rows[i];
      RequireColumns(row, 3);
      fmt::QvFTable table;
      if (row[2] == u"0") {
        RequireColumns(row, 4);
        fmt::QvFTableProgram& program = table.program.emplace();
        fmt::ParseTime(row[0], program.start_time);
        fmt::ParseTime(row[1], program.end_time);
        program.ref_program.assign(index_.addProgramId(row[3]));
      } else if (row[2] == u"1") {
        RequireColumns(row, 6);
        fmt::QvFTableCommand& command = table.command.emplace();
        fmt::ParseTime(row[0], command.start_time);
        if (!row[4].empty()) command.type = fmt::ParseInt(row[4]);
        if (!row[5].empty()) command.target_input = row[5];
      }
      timetable->table_list.tables.push_back(std::move(table));
    }
    return timetable;
  });
}

}  // namespace quorvane::qvconv::io::csv
