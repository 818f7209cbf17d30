// Schedule and time table files: what the reader takes and what the writer writes.
#include <gtest/gtest.h>

#include <string>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;
using qvtest::U8;

class CsvScheduleTimeTable : public ::testing::Test {
 protected:
  // Writes `utf8` as a code page 932 file and gives its path.
  std::u16string Project(const std::string& name, const std::string& utf8) {
    qvtest::WriteFile(dir_.Sub(name), Cp932(utf8));
    return U16(dir_.Sub(name));
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

TEST_F(CsvScheduleTimeTable, ScheduleReadTakesNamesFlagsAndDates) {
  f::QvFSchedule s = reader_.readSchedule(
      Project("s.csv", "週間予定\n1\n2024/3/9,表.csv,TRUE\n,b.csv\n2025/12/31,表.csv,1\n,,\n"));
  // Two columns give no default, nor does "1"; a file keeps its identifier;
  // an empty name is a name; an empty date is today's.
  std::string entries = U8(s.schedule_list.name + u" " + f::FormatFlag(s.schedule_list.add));
  for (const f::QvFScheduleEntry& e : s.schedule_list.schedules)
    entries +=
        ";" + U8(f::FormatDate(e.date) + u" " + e.ref_timetable.text) + (e.default_ ? " true" : "");
  const std::string today = U8(f::FormatDate(f::QvFLocalNow()));
  EXPECT_EQ(entries,
            "週間予定 true;2024/03/09 TM1 true;" + today + " TM2;2025/12/31 TM1;" + today + " TM3");
}

TEST_F(CsvScheduleTimeTable, ShortFilesAndLines) {
  f::QvFSchedule empty = reader_.readSchedule(Project("e.csv", "\nyes\n"));
  EXPECT_TRUE(!empty.schedule_list.add && empty.schedule_list.schedules.empty());
  EXPECT_TRUE(
      reader_.readTimeTable(Project("two.csv", "name\n0xD4F0FF\n"))->table_list.tables.empty());
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Project("o.csv", "n\ntrue\n2024/01/01\n")); }), -102);
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(U16(dir_.Sub("missing.csv"))); }), -101);
  for (std::string line : {"", "08:00:00,09:00:00", "08:00:00,09:00:00,0", "08:00:00,,1,,3"})
    EXPECT_EQ(CodeOf([&] { reader_.readTimeTable(Project("s.csv", "n\nc\n" + line + "\n")); }),
              -102)
        << line;
  empty.schedule_list.add = true;
  writer_.outputSchedule(U16(dir_.Sub("none.csv")), empty);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("none.csv")), "\r\ntrue\r\n");
  EXPECT_EQ(CodeOf([&] { writer_.outputSchedule(U16(dir_.Sub("no/such.csv")), empty); }), -3);
}

TEST_F(CsvScheduleTimeTable, TimeTableReadRowKinds) {
  auto t =
      reader_.readTimeTable(Project("t.csv",
                                    "朝\n0xD4F0FF\n08:00:00,09:30:00,0,番組A,0,\n9:5:1,,0,番組B\n"
                                    "10:00:00,,1,,3,HDMI1\n11:00:00,x,1,y,,\n12:00:00,,2\n"
                                    "13:00:00,14:00:00,0,番組A,0,\n"));
  // Start, then the program or the command's type and input, of each row.
  std::string rows =
      U8(t->table_list.name + u" " + f::FormatTime(t->table_list.tables.at(0).program->end_time));
  for (const f::QvFTable& row : t->table_list.tables) {
    rows += ";";
    if (row.program)
      rows += U8(f::FormatTime(row.program->start_time) + u" " + row.program->ref_program.text);
    if (row.command)
      rows += U8(f::FormatTime(row.command->start_time) + u" " + f::FormatInt(row.command->type) +
                 u" " + row.command->target_input);
  }
  EXPECT_EQ(rows,
            "朝 09:30:00;08:00:00 PG1;09:05:01 PG2;10:00:00 3 HDMI1;11:00:00 0 ;;13:00:00 PG1");
  // Command lines add nothing to the program folders.
  EXPECT_EQ(reader_.index().programFolders(),
            (std::vector<std::u16string>{U16("番組A"), U16("番組B")}));
}

// A program wins over a command, a row of neither writes no line, and
// program folders are numbered at their first use.
TEST_F(CsvScheduleTimeTable, TimeTableWrite) {
  f::QvFTimeTable t;
  t.table_list.name = U16("夜の表");
  f::QvFTable program_row, command_row;
  f::ParseTime(u"07:05:03", program_row.program.emplace().start_time);
  f::ParseTime(u"23:59:59", program_row.program->end_time);
  program_row.program->ref_program = u"PG8", program_row.command.emplace();
  f::ParseTime(u"12:00:30", command_row.command.emplace().start_time);
  command_row.command->type = -4, command_row.command->target_input = u"in,1";
  f::QvFTable again = program_row;
  again.program->ref_program = u"PG3";
  t.table_list.tables = {program_row, command_row, f::QvFTable(), again, program_row};
  writer_.outputTimeTable(U16(dir_.Sub("tt.csv")), t);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("tt.csv")),
            Cp932("夜の表\r\n0xD4F0FF\r\n07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n12:"
                  "00:30,,1,,-4,in\\,1\r\n"
                  "07:05:03,23:59:59,0,Program_20240101_000000_002,0,\r\n"
                  "07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n"));
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
