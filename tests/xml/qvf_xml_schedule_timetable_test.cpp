// The schedule and time table documents: round trips in both vocabularies,
// the attributes written only when there, and the walking rules.
#include <ctime>
#include <memory>
#include <string>

#include "model/qvf_records.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::U16;
using Flag = std::optional<bool>;

// Records made during a test are stamped 2031/07/04 05:06:07.
std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 131, t.tm_mon = 6, t.tm_mday = 4, t.tm_hour = 5, t.tm_min = 6, t.tm_sec = 7;
  return t;
}

class XmlScheduleTimeTable : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override { SetQvFClock(&FixedNow); }
  void TearDown() override { SetQvFClock(nullptr); }

  // Writes the record and reads it back; `bytes` gets what follows the declaration.
  QvFSchedule Trip(const QvFSchedule& schedule, std::string& bytes, bool debug) {
    QvFWriteXml(debug).outputSchedule(U16(path_), schedule);
    bytes = Body();
    return QvFReadXml(debug).readSchedule(U16(path_));
  }
  std::unique_ptr<QvFTimeTable> Trip(const QvFTimeTable& timetable, std::string& bytes, bool debug) {
    QvFWriteXml(debug).outputTimeTable(U16(path_), timetable);
    bytes = Body();
    return QvFReadXml(debug).readTimeTable(U16(path_));
  }
  std::string Body() {
    const std::string bytes = qvtest::ReadFile(path_);
    return bytes.substr(bytes.find("?>") + 2);
  }
  std::u16string Hand(const std::string& text) {
    qvtest::WriteFile(path_, text);
    return U16(path_);
  }

  qvtest::ScratchDir dir_;
  std::string path_ = dir_.Sub("d.xml");
};

TEST_P(XmlScheduleTimeTable, RoundTripsGiveTheSameBytes) {
  QvFSchedule schedule;
  schedule.id.assign(u"SC0001");
  schedule.name = u"週間", schedule.valid = true, schedule.version = u"1.0";
  schedule.schedule_list.add = true, schedule.schedule_list.valid = false;
  for (int i = 0; i < 2; ++i) {
    QvFScheduleEntry& entry = schedule.schedule_list.schedules.emplace_back();
    entry.default_ = i == 0, entry.valid = i == 1, entry.name = u"holiday";
    entry.ref_timetable.assign(i == 0 ? u"TM0001" : u"TM0002");
    entry.date.tm_year = 124 + i, entry.date.tm_mon = 0, entry.date.tm_mday = 2;
  }
  std::string first, second;
  const QvFSchedule read = Trip(schedule, first, GetParam());
  Trip(read, second, GetParam());
  EXPECT_EQ(second, first);
  EXPECT_EQ(read.id.kind, kIdSchedule);
  EXPECT_EQ(read.schedule_list.add, Flag(true));
  ASSERT_EQ(read.schedule_list.schedules.size(), 2u);
  EXPECT_TRUE(read.schedule_list.schedules[0].default_);
  EXPECT_EQ(read.schedule_list.schedules[1].ref_timetable.kind, kIdTimeTable);
  EXPECT_EQ(read.schedule_list.schedules[1].date.tm_year, 125);
  // The other vocabulary reads as an empty record.
  EXPECT_TRUE(QvFReadXml(!GetParam()).readSchedule(U16(path_)).schedule_list.schedules.empty());

  QvFTimeTable timetable;
  timetable.id.assign(u"TM0007");
  timetable.name = u"平日", timetable.valid = true;
  timetable.table_list.name = u"rows", timetable.table_list.valid = false;
  QvFTable& program_row = timetable.table_list.tables.emplace_back();
  program_row.valid = true;
  program_row.program.emplace().ref_program.assign(u"PG0003");
  program_row.program->type = u"loop", program_row.program->valid = true;
  program_row.program->end_time.tm_min = 45;
  QvFTable& command_row = timetable.table_list.tables.emplace_back();
  command_row.valid = false;
  command_row.command.emplace().type = 3;
  command_row.command->valid = true, command_row.command->target_input = u"HDMI1";
  timetable.table_list.tables.emplace_back().valid = true;
  const std::unique_ptr<QvFTimeTable> back = Trip(timetable, first, GetParam());
  Trip(*back, second, GetParam());
  EXPECT_EQ(second, first);
  const auto& rows = back->table_list.tables;
  ASSERT_EQ(rows.size(), 3u);
  ASSERT_TRUE(rows[0].program && !rows[0].command && rows[1].command && !rows[1].program);
  EXPECT_EQ(rows[0].program->end_time.tm_min, 45);
  EXPECT_EQ(rows[1].command->target_input, u"HDMI1");
  EXPECT_EQ(rows[1].command->start_time.tm_min, 6);  // the moment of making
  EXPECT_FALSE(rows[2].program || rows[2].command);
  EXPECT_TRUE(QvFReadXml(!GetParam()).readTimeTable(U16(path_))->table_list.tables.empty());
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlScheduleTimeTable, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                           return info.param ? std::string("Debug") : std::string("Compact");
                         });

TEST_F(XmlScheduleTimeTable, AttributesWrittenOnlyWhenThere) {
  QvFSchedule schedule;
  schedule.schedule_list.schedules.emplace_back();
  std::string bytes;
  const QvFSchedule read = Trip(schedule, bytes, false);
  // default and date are always written; an empty reference is not.
  EXPECT_EQ(bytes, "<qv><sl><s df=\"f\" dt=\"2031/07/04\"/></sl></qv>");
  // Absent values come back as a present false and are then written.
  EXPECT_EQ(read.valid, Flag(false));
  Trip(read, bytes, true);
  EXPECT_NE(bytes.find("valid=\"false\""), std::string::npos);

  QvFTimeTable timetable;
  QvFTable& both = timetable.table_list.tables.emplace_back();
  both.program.emplace();
  both.command.emplace();
  timetable.table_list.tables.emplace_back().command.emplace().start_time.tm_hour = 1;
  timetable.table_list.tables.emplace_back();
  Trip(timetable, bytes, false);
  // Only the program of a row with both is written; a compact command's "ti"
  // is the one attribute written with an empty value.
  EXPECT_EQ(bytes,
            "<tt><tl><tb><pg et=\"05:06:07\" st=\"05:06:07\"/></tb>"
            "<tb><co st=\"01:06:07\" ti=\"\" tp=\"0\"/></tb><tb/></tl></tt>");
  Trip(timetable, bytes, true);
  EXPECT_EQ(bytes.find("target_input"), std::string::npos);
}

TEST_F(XmlScheduleTimeTable, ScheduleReadingRules) {
  // Only element nodes count; the second list is not read; only "true" in
  // any casing (or the word "t") is a true default.
  QvFSchedule read = QvFReadXml(false).readSchedule(Hand(
      "<qv><!-- c -->\n  <sl><s df=\"t\" dt=\"2024/3/9\"/><s df=\"TRUE\"/><s df=\"1\"/><x/><s/>"
      "</sl><sl><s/></sl></qv>"));
  EXPECT_TRUE(read.version.empty());
  const auto& entries = read.schedule_list.schedules;
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].date.tm_mon * 100 + entries[0].date.tm_mday, 209);
  EXPECT_TRUE(entries[0].default_ && entries[1].default_);
  EXPECT_FALSE(entries[2].default_);
  EXPECT_EQ(read.schedule_list.add, Flag(false));
  // Another element before the list: no list at all.
  read = QvFReadXml(false).readSchedule(Hand("<qv ver=\"9\"><x/><sl><s/></sl></qv>"));
  EXPECT_TRUE(read.schedule_list.schedules.empty());
}

TEST_F(XmlScheduleTimeTable, TimeTableReadingRules) {
  // Two lists add up; within a table the last row of a kind stands, and a
  // table may hold both kinds; unknown children and attributes pass.
  const auto read = QvFReadXml(false).readTimeTable(Hand(
      "<tt><tl><tb><pg rp=\"PG1\"/><pg rp=\"PG2\" st=\"7:5:1\"/><co tp=\"abc\" ti=\"x\"/><zz/></tb>"
      "</tl><other/><tl><tb/><tb><co tp=\"12\"/><co st=\"10:11\"/></tb></tl></tt>"));
  const auto& rows = read->table_list.tables;
  ASSERT_EQ(rows.size(), 3u);
  ASSERT_TRUE(rows[0].program && rows[0].command && rows[2].command);
  EXPECT_EQ(rows[0].program->ref_program.text, u"PG2");
  EXPECT_EQ(rows[0].command->type, 0);  // "abc" reads as 0
  EXPECT_EQ(rows[0].command->target_input, u"x");
  const std::tm& start = rows[2].command->start_time;
  EXPECT_EQ(rows[2].command->type, 0);  // the second command replaced the first
  EXPECT_EQ(start.tm_hour * 10000 + start.tm_min * 100 + start.tm_sec, 101107);
  // One-digit times are written back with two digits.
  QvFWriteXml(false).outputTimeTable(U16(path_), *read);
  EXPECT_NE(qvtest::ReadFile(path_).find("\"07:05:01\""), std::string::npos);
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
