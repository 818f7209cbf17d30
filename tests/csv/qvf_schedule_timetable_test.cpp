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
  f::QvFSchedule s = reader_.readSchedule(Project("s.csv",
      "週間予定\n1\n2024/3/9,表.csv,TRUE\n,b.csv\n2025/12/31,表.csv,1\n,,\n"));
  EXPECT_EQ(s.version, u"1.0");
  EXPECT_EQ(s.schedule_list.name, U16("週間予定"));
  EXPECT_EQ(s.schedule_list.add, std::optional<bool>(true));
  ASSERT_EQ(s.schedule_list.schedules.size(), 4u);
  const auto& e = s.schedule_list.schedules;
  EXPECT_EQ(f::FormatDate(e[0].date), u"2024/03/09");
  EXPECT_EQ(e[0].ref_timetable.text, u"TM1");
  EXPECT_TRUE(e[0].default_);
  EXPECT_EQ(e[1].ref_timetable.text, u"TM2");
  EXPECT_FALSE(e[1].default_);  // two columns
  EXPECT_EQ(f::FormatDate(e[1].date), f::FormatDate(f::QvFLocalNow()));
  EXPECT_EQ(e[2].ref_timetable.text, u"TM1");  // the same file shares its identifier
  EXPECT_FALSE(e[2].default_);                 // "1" is not true here
  EXPECT_EQ(e[3].ref_timetable.text, u"TM3");  // an empty name is a name
  EXPECT_EQ(reader_.index().timetableFiles(),
            (std::vector<std::u16string>{u"", u"b.csv", U16("表.csv")}));
}

TEST_F(CsvScheduleTimeTable, ScheduleReadShortFilesAndLines) {
  f::QvFSchedule empty = reader_.readSchedule(Project("e.csv", "\nyes\n"));
  EXPECT_EQ(empty.version, u"1.0");
  EXPECT_TRUE(empty.schedule_list.name.empty());
  EXPECT_FALSE(empty.schedule_list.add.has_value());
  EXPECT_TRUE(empty.schedule_list.schedules.empty());

  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Project("o.csv", "n\ntrue\n2024/01/01\n")); }), -102);
  EXPECT_EQ(CodeOf([&] { reader_.readSchedule(Path("missing.csv")); }), -101);
}

TEST_F(CsvScheduleTimeTable, ScheduleWriteAndReadBack) {
  f::QvFSchedule s;
  s.schedule_list.name = U16("名前,ソ");
  for (int i = 0; i < 3; ++i) {
    f::QvFScheduleEntry e;
    f::ParseDate(i == 0 ? u"2024/1/2" : u"2030/11/30", e.date);
    e.ref_timetable = i == 2 ? u"TM9" : u"TM4";
    e.default_ = i == 1;
    s.schedule_list.schedules.push_back(e);
  }
  writer_.outputSchedule(Path("out.csv"), s);
  EXPECT_EQ(Bytes("out.csv"), Cp932("名前\\,ソ\r\nfalse\r\n"
                                    "2024/01/02,TimeTable_20240101_000000_001.csv,false\r\n"
                                    "2030/11/30,TimeTable_20240101_000000_001.csv,true\r\n"
                                    "2030/11/30,TimeTable_20240101_000000_002.csv,false\r\n"));

  f::QvFSchedule back = reader_.readSchedule(Path("out.csv"));
  EXPECT_EQ(back.schedule_list.name, s.schedule_list.name);
  EXPECT_EQ(back.schedule_list.add, std::optional<bool>(false));  // absent comes back false
  ASSERT_EQ(back.schedule_list.schedules.size(), 3u);
  const char16_t* ids[] = {u"TM1", u"TM1", u"TM2"};  // new numbers, same places
  for (int i = 0; i < 3; ++i) {
    const f::QvFScheduleEntry& e = back.schedule_list.schedules[i];
    EXPECT_EQ(f::FormatDate(e.date), f::FormatDate(s.schedule_list.schedules[i].date));
    EXPECT_EQ(e.default_, s.schedule_list.schedules[i].default_);
    EXPECT_EQ(e.ref_timetable.text, ids[i]);
  }

  f::QvFSchedule none;
  none.schedule_list.add = true;
  writer_.outputSchedule(Path("none.csv"), none);
  EXPECT_EQ(Bytes("none.csv"), "\r\ntrue\r\n");
  EXPECT_EQ(CodeOf([&] { writer_.outputSchedule(Path("no/such.csv"), none); }), -3);
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
  const auto& rows = t->table_list.tables;
  ASSERT_EQ(rows.size(), 6u);
  ASSERT_TRUE(rows[0].program.has_value());
  EXPECT_EQ(f::FormatTime(rows[0].program->start_time), u"08:00:00");
  EXPECT_EQ(f::FormatTime(rows[0].program->end_time), u"09:30:00");
  EXPECT_EQ(rows[0].program->ref_program.text, u"PG1");
  EXPECT_EQ(f::FormatTime(rows[1].program->start_time), u"09:05:01");
  EXPECT_EQ(rows[1].program->ref_program.text, u"PG2");

  ASSERT_TRUE(rows[2].command.has_value());
  EXPECT_EQ(f::FormatTime(rows[2].command->start_time), u"10:00:00");
  EXPECT_EQ(rows[2].command->type, 3);
  EXPECT_EQ(rows[2].command->target_input, u"HDMI1");
  EXPECT_EQ(rows[3].command->type, 0);
  EXPECT_TRUE(rows[3].command->target_input.empty());

  EXPECT_FALSE(rows[4].program.has_value());
  EXPECT_FALSE(rows[4].command.has_value());
  EXPECT_EQ(rows[5].program->ref_program.text, u"PG1");
  // Command lines add nothing to the program folders.
  EXPECT_EQ(reader_.index().programFolders(), (std::vector<std::u16string>{U16("番組A"), U16("番組B")}));

  auto two = reader_.readTimeTable(Project("two.csv", "name\n0xD4F0FF\n"));
  EXPECT_TRUE(two->table_list.tables.empty());
}

TEST_F(CsvScheduleTimeTable, TimeTableLinesTooShortEndTheRead) {
  for (std::string line : {"", "08:00:00,09:00:00", "08:00:00,09:00:00,0", "08:00:00,,1,,3"}) {
    EXPECT_EQ(CodeOf([&] { reader_.readTimeTable(Project("s.csv", "n\nc\n" + line + "\n")); }), -102)
        << line;
  }
}

TEST_F(CsvScheduleTimeTable, TimeTableWriteAndReadBack) {
  f::QvFTimeTable t;
  t.table_list.name = U16("夜の表");
  f::QvFTable program_row;
  program_row.program.emplace();
  program_row.program->start_time = At(7, 5, 3);
  program_row.program->end_time = At(23, 59, 59);
  program_row.program->ref_program = u"PG8";
  program_row.command.emplace();  // a program wins over a command
  f::QvFTable command_row;
  command_row.command.emplace();
  command_row.command->start_time = At(12, 0, 30);
  command_row.command->type = -4;
  command_row.command->target_input = u"in,1";
  f::QvFTable empty_row;
  f::QvFTable again = program_row;
  again.program->ref_program = u"PG3";
  t.table_list.tables = {program_row, command_row, empty_row, again, program_row};

  writer_.outputTimeTable(Path("tt.csv"), t);
  EXPECT_EQ(Bytes("tt.csv"), Cp932("夜の表\r\n0xD4F0FF\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n"
                                   "12:00:30,,1,,-4,in\\,1\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_002,0,\r\n"
                                   "07:05:03,23:59:59,0,Program_20240101_000000_001,0,\r\n"));

  auto back = reader_.readTimeTable(Path("tt.csv"));
  EXPECT_EQ(back->table_list.name, t.table_list.name);
  const auto& rows = back->table_list.tables;
  ASSERT_EQ(rows.size(), 4u);  // the empty row is not written
  EXPECT_EQ(f::FormatTime(rows[0].program->start_time), u"07:05:03");
  EXPECT_EQ(f::FormatTime(rows[0].program->end_time), u"23:59:59");
  EXPECT_EQ(rows[0].program->ref_program.text, u"PG1");
  ASSERT_TRUE(rows[1].command.has_value());
  EXPECT_EQ(f::FormatTime(rows[1].command->start_time), u"12:00:30");
  EXPECT_EQ(rows[1].command->type, -4);
  EXPECT_EQ(rows[1].command->target_input, u"in,1");
  EXPECT_EQ(rows[2].program->ref_program.text, u"PG2");
  EXPECT_EQ(rows[3].program->ref_program.text, u"PG1");

}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
