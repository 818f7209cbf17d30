// Writing the schedule and the time tables of a CSV project, and the names of
// the project tree.
#include "csv/qvf_write_csv.h"

#include <cstdio>
#include <ctime>
#include <exception>
#include <string>

#include "base/qv_conv_exception.h"
#include "model/qvf_content_files.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"
#include "platform/system_info.h"

namespace quorvane::qvconv::io::csv {

namespace {

using converter::Guarded;
using converter::QvConvException;
namespace codes = converter::codes;

// The colour text of line 2 of a time table; nothing reads it.
constexpr char16_t kTimeTableColor[] = u"0xD4F0FF";

// "%03d".
std::u16string ThreeDigits(long long number) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%03lld", number);
  return fmt::Widen(buffer);
}

std::u16string StampOf(const std::tm& now) {
  char buffer[96];
  std::snprintf(buffer, sizeof buffer, "%04d%02d%02d_%02d%02d%02d", now.tm_year + 1900,
                now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
  return fmt::Widen(buffer);
}

// The name stored for `id`, or a new one: `prefix` + stamp + "_%03d" of the
// next number + `suffix`.
std::u16string NumberedName(QvFNameMap& names, const std::u16string& id, std::u16string_view prefix,
                            const std::u16string& stamp, std::u16string_view suffix) {
  auto found = names.find(id);
  if (found != names.end()) return found->second;
  std::u16string name(prefix);
  name += stamp;
  name += u'_';
  name += ThreeDigits(static_cast<long long>(names.size()) + 1);
  name += suffix;
  names.emplace(id, name);
  return name;
}

}  // namespace

QvFWriteCsv::QvFWriteCsv() : stamp_(StampOf(platform::LocalNow())) {}

QvFWriteCsv::QvFWriteCsv(std::u16string stamp) : stamp_(std::move(stamp)) {}

void QvFWriteCsv::outputSchedule(std::u16string path, fmt::QvFSchedule schedule) {
  Guarded(codes::kCsvIoFailed, [&] {
    QvCsvFile file;
    file.AddRow({schedule.schedule_list.name});
    file.AddRow({fmt::FormatFlag(schedule.schedule_list.add)});
    for (const fmt::QvFScheduleEntry& entry : schedule.schedule_list.schedules) {
      file.AddRow({fmt::FormatDate(entry.date), timetableFileName(entry.ref_timetable.text),
                   fmt::FormatFlag(entry.default_)});
    }
    file.WriteFile(path);
  });
}

void QvFWriteCsv::outputTimeTable(std::u16string path, const fmt::QvFTimeTable& timetable) {
  Guarded(codes::kCsvIoFailed, [&] {
    QvCsvFile file;
    file.AddRow({timetable.table_list.name});
    file.AddRow({kTimeTableColor});
    for (const fmt::QvFTable& table : timetable.table_list.tables) {
      if (table.program) {
        const fmt::QvFTableProgram& program = *table.program;
        file.AddRow({fmt::FormatTime(program.start_time), fmt::FormatTime(program.end_time), u"0",
                     programFolderName(program.ref_program.text), u"0", u""});
      } else if (table.command) {
        // The reader takes a command from a kind "1" line: start time in
        // column 0, the code in column 4, the input in column 5.
        const fmt::QvFTableCommand& command = *table.command;
        file.AddRow({fmt::FormatTime(command.start_time), u"", u"1", u"",
                     fmt::FormatInt(command.type), command.target_input});
      }
      // A row with neither carries nothing and is not written.
    }
    file.WriteFile(path);
  });
}

std::u16string QvFWriteCsv::scheduleFileName() const { return u"Schedule_" + stamp_ + u"_001.csv"; }

std::u16string QvFWriteCsv::timetableFileName(const std::u16string& id) {
  return NumberedName(timetable_files_, id, u"TimeTable_", stamp_, u".csv");
}

std::u16string QvFWriteCsv::programFolderName(const std::u16string& id) {
  return NumberedName(program_folders_, id, u"Program_", stamp_, u"");
}

std::u16string QvFWriteCsv::programFileName() { return u"program.csv"; }

std::u16string QvFWriteCsv::playlistFileName(std::int32_t pane) {
  return u"playlist_" + fmt::FormatInt(pane) + u".csv";
}

std::u16string QvFWriteCsv::informationFolderName() { return u"information"; }

std::u16string QvFWriteCsv::contentsFolderName() { return u"contents"; }

std::u16string QvFWriteCsv::contentsFileName(std::int32_t pane, std::int32_t item) {
  return u"information\\contents_" + fmt::FormatInt(pane) + u"_" + ThreeDigits(item) + u".csv";
}

std::u16string QvFWriteCsv::contentReference(const std::u16string& file) {
  return u"..\\contents\\" + file;
}

std::u16string QvFWriteCsv::movieFileName(const std::u16string& id) {
  return id + std::u16string(fmt::kMovieExtension);
}

std::u16string QvFWriteCsv::telopFileName(const std::u16string& id) {
  return id + std::u16string(fmt::kTelopExtension);
}

std::u16string QvFWriteCsv::imageFileName(const std::u16string& id, std::int32_t type) {
  // An image of a type without an extension is written as a JPEG.
  const std::u16string_view extension = fmt::ImageExtension(type);
  return id + std::u16string(extension.empty() ? fmt::ImageExtension(0) : extension);
}

}  // namespace quorvane::qvconv::io::csv
