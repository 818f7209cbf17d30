// Schedule and time table files: what the reader takes, what the writer
// writes, and a written project read back.
#include <gtest/gtest.h>

#include <string>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/csv/csv_test_util.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;

std::tm At(int hour, int minute, int second) {
  std::tm t = f::QvFLocalNow();
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  return t;
}

class CsvScheduleTimeTable : public ::testing::Test {
 protected:
  // Writes `utf8` as a code page 932 file and gives its path.
  std::u16string Project(const std::string& name, const std::string& utf8) {
    qvtest::WriteFile(dir_.Sub(name), Cp932(utf8));
    return U16(dir_.Sub(name));
  }
  std::u16string Path(const std::string& name) { return U16(dir_.Sub(name)); }
  std::string Bytes(const std::string& name) { return qvtest::ReadFile(dir_.Sub(name)); }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

TEST_F(CsvScheduleTimeTable, ScheduleReadTakesNamesFlagsAndDates) {
  f::QvFSchedule s = reader_.readSchedule(
      Project("s.csv", "週間予定\n1\n2024/3/9,表.csv,TRUE\n,b.csv\n2025/12/31,表.csv,1\n,,\n"));
  EXPECT_EQ(s.schedule_list.name, U16("週間予定"));
  EXPECT_EQ(s.schedule_list.add, std::optional<bool>(true));
  // Two columns give no default, nor does "1"; a file keeps its identifier;
  // an empty name is a name; an empty date is today's.
  std::string entries;
  for (const f::QvFScheduleEntry& e : s.schedule_list.schedules) {
    entries += qvtest::U8(f::FormatDate(e.date) + u" " + e.ref_timetable.text) +
               (e.default_ ? " true;" : ";");
  }
  const std::string today = qvtest::U8(f::FormatDate(f::QvFLocalNow()));
  EXPECT_EQ(entries, "2024/03/09 TM1 true;" + today + " TM2;2025/12/31 TM1;" + today + " TM3;");
  EXPECT_EQ(reader_.index().timetableFiles(),
            (std::vector<std::u16string>{u"", u"b.csv", U16("表.csv")}));
}

TEST_F(CsvScheduleTimeTable, ScheduleShortFilesAndLines) {
  f::QvFSchedule empty = reader_.readSchedule(Project("e.csv", "\nyes\n"));
  EXPECT_EQ(empty.version, u"1.0");
  EXPECT_FALSE(empty.schedule_list.add.has_value());
  EXPECT_TRUE(empty.schedule_list.schedules.empty());
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Project("o.csv", "n\ntrue\n2024/01/01\n")); }), -102);
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Path("missing.csv")); }), -101);

  empty.schedule_list.add = true;
  writer_.outputSchedule(Path("none.csv"), empty);
  EXPECT_EQ(Bytes("none.csv"), "\r\ntrue\r\n");
  EXPECT_EQ(CodeOf([&] { writer_.outputSchedule(Path("no/such.csv"), empty); }), -3);
}

TEST_F(CsvScheduleTimeTable, TimeTableReadRowKinds) {
  auto t = reader_.readTimeTable(Project("t.csv",
                                         "朝\n0xD4F0FF\n"
                                         "08:00:00,09:30:00,0,番組A,0,\n"
                                         "9:5:1,,0,番組B\n"
                                         "10:00:00,,1,,3,HDMI1\n"
                                         "11:00:00,x,1,y,,\n"
                                         "12:00:00,,2\n"
                                         "13:00:00,14:00:00,0,番組A,0,\n"));
  EXPECT_EQ(t->table_list.name, U16("朝"));
  // Start, then the program or the command's type and input, of each row.
  std::string rows;
  for (const f::QvFTable& row : t->table_list.tables) {
    if (row.program) {
      rows +=
          qvtest::U8(f::FormatTime(row.program->start_time) + u" " + row.program->ref_program.text);
    } else if (row.command) {
      rows += qvtest::U8(f::FormatTime(row.command->start_time) + u" " +
                         f::FormatInt(row.command->type) + u" " + row.command->target_input);
    }
    rows += ";";
  }
  EXPECT_EQ(rows, "08:00:00 PG1;09:05:01 PG2;10:00:00 3 HDMI1;11:00:00 0 ;;13:00:00 PG1;");
  EXPECT_EQ(f::FormatTime(t->table_list.tables[0].program->end_time), u"09:30:00");
  // Command lines add nothing to the program folders.
  EXPECT_EQ(reader_.index().programFolders(),
            (std::vector<std::u16string>{U16("番組A"), U16("番組B")}));

  auto two = reader_.readTimeTable(Project("two.csv", "name\n0xD4F0FF\n"));
  EXPECT_TRUE(two->table_list.tables.empty());
}

TEST_F(CsvScheduleTimeTable, TimeTableLinesTooShortEndTheRead) {
  for (std::string line : {"", "08:00:00,09:00:00", "08:00:00,09:00:00,0", "08:00:00,,1,,3"}) {
    EXPECT_EQ(CodeOf([&] { reader_.readTimeTable(Project("s.csv", "n\nc\n" + line + "\n")); }),
              -102)
        << line;
  }
}

// A program wins over a command, a row of neither writes no line, and
// program folders are numbered at their first use.
TEST_F(CsvScheduleTimeTable, TimeTableWrite) {
  f::QvFTimeTable t;
  t.table_list.name = U16("夜の表");
  f::QvFTable program_row;
  program_row.program.emplace();
  program_row.program->start_time = At(7, 5, 3);
  program_row.program->end_time = At(23, 59, 59);
  program_row.program->ref_program = u"PG8";
  program_row.command.emplace();
  f::QvFTable command_row;
  command_row.command.emplace();
  command_row.command->start_time = At(12, 0, 30);
  command_row.command->type = -4;
  command_row.command->target_input = u"in,1";
  f::QvFTable again = program_row;
  again.program->ref_program = u"PG3";
  t.table_list.tables = {program_row, command_row, f::QvFTable(), again, program_row};
  writer_.outputTimeTable(Path("tt.csv"), t);
  EXPECT_EQ(Bytes("tt.csv"), Cp932("夜の表\r\n0xD4F0FF\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n"
                                   "12:00:30,,1,,-4,in\\,1\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_002,0,\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n"));
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
