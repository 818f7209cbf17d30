// Schedule and time table documents: round trips, attributes written only when there, walking
// rules.
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "model/qvf_records.h"
#include "tests/support/fake_env.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::U16;

std::tm FixedNow() {  // 2031/07/04 05:06:07
  std::tm t{};
  t.tm_year = 131, t.tm_mon = 6, t.tm_mday = 4, t.tm_hour = 5, t.tm_min = 6, t.tm_sec = 7;
  return t;
}

class XmlScheduleTimeTable : public ::testing::TestWithParam<bool> {
 protected:
  qvtest::FixedClock clock_{FixedNow()};

  // Writes, reads back and writes again: the same bytes (bytes_), but that an
  // absent valid or add flag comes back as a present false.
  QvFSchedule Trip(const QvFSchedule& schedule, bool debug) {
    QvFWriteXml(debug).outputSchedule(U16(path_), schedule);
    QvFSchedule read = QvFReadXml(debug).readSchedule(U16(path_));
    Again([&] { QvFWriteXml(debug).outputSchedule(U16(path_), read); });
    return read;
  }
  std::unique_ptr<QvFTimeTable> Trip(const QvFTimeTable& timetable, bool debug) {
    QvFWriteXml(debug).outputTimeTable(U16(path_), timetable);
    std::unique_ptr<QvFTimeTable> read = QvFReadXml(debug).readTimeTable(U16(path_));
    Again([&] { QvFWriteXml(debug).outputTimeTable(U16(path_), *read); });
    return read;
  }
  template <typename Write>
  void Again(Write write) {
    bytes_ = Body(), write();
    const std::vector<std::string> flags = {" valid=\"false\"", " v=\"f\"",     " add=\"false\"",
                                            " ad=\"f\"",        " valid=\"f\"", " v=\"false\"",
                                            " add=\"f\"",       " ad=\"false\""};
    EXPECT_EQ(qvtest::EraseAll(Body(), flags), qvtest::EraseAll(bytes_, flags));
  }
  std::string Body() {
    const std::string b = qvtest::ReadFile(path_);
    return b.substr(b.find("?>") + 2);
  }
  std::u16string Hand(const std::string& text) {
    qvtest::WriteFile(path_, text);
    return U16(path_);
  }

  qvtest::ScratchDir dir_;
  std::string path_ = dir_.Sub("d.xml");
  std::string bytes_;
};

TEST_P(XmlScheduleTimeTable, RoundTripsGiveTheSameBytes) {
  QvFSchedule schedule;
  schedule.id.assign(u"SC0001"), schedule.name = u"週間", schedule.version = u"1.0",
                                 schedule.schedule_list.add = true;
  QvFScheduleEntry& entry = schedule.schedule_list.schedules.emplace_back();
  entry.default_ = true, entry.valid = true, entry.name = u"holiday",
  entry.ref_timetable.assign(u"TM0001");
  EXPECT_EQ(Trip(schedule, GetParam()).schedule_list.schedules.at(0).ref_timetable.kind,
            kIdTimeTable);

  QvFTimeTable timetable;
  timetable.id.assign(u"TM0007"), timetable.name = u"平日", timetable.table_list.name = u"rows";
  QvFTableProgram& program = timetable.table_list.tables.emplace_back().program.emplace();
  program.ref_program.assign(u"PG0003"), program.type = u"loop", program.end_time.tm_min = 45;
  QvFTableCommand& command = timetable.table_list.tables.emplace_back().command.emplace();
  command.type = 3, command.target_input = u"HDMI1";
  EXPECT_EQ(Trip(timetable, GetParam())->table_list.tables.at(1).command->start_time.tm_min,
            6);  // made now
}

INSTANTIATE_TEST_SUITE_P(CompactAndDebug, XmlScheduleTimeTable, ::testing::Bool());

TEST_F(XmlScheduleTimeTable, WrittenAttributesAndHandWrittenDocuments) {
  // default and date are always written; an empty reference is not.
  QvFSchedule schedule;
  schedule.schedule_list.schedules.emplace_back();
  Trip(schedule, false);
  EXPECT_EQ(bytes_, "<qv><sl><s df=\"f\" dt=\"2031/07/04\"/></sl></qv>");
  // Only the program of a row with both is written; a compact command's "ti"
  // is the one attribute written with an empty value.
  QvFTimeTable timetable;
  QvFTable& both = timetable.table_list.tables.emplace_back();
  both.program.emplace(), both.command.emplace();
  timetable.table_list.tables.emplace_back().command.emplace().start_time.tm_hour = 1;
  Trip(timetable, false);
  EXPECT_EQ(bytes_,
            "<tt><tl><tb><pg et=\"05:06:07\" st=\"05:06:07\"/></tb>"
            "<tb><co st=\"01:06:07\" ti=\"\" tp=\"0\"/></tb></tl></tt>");

  // Only element nodes count; the second list is not read; only "true" in any casing (or "t") is a
  // true default.
  const auto entries =
      QvFReadXml(false)
          .readSchedule(Hand("<qv><!-- c -->\n  <sl><s df=\"t\" dt=\"2024/3/9\"/><s "
                             "df=\"TRUE\"/><s df=\"1\"/><x/><s/></sl><sl><s/></sl></qv>"))
          .schedule_list.schedules;
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].date.tm_mon * 100 + entries[0].date.tm_mday, 209);
  EXPECT_TRUE(entries[0].default_ && entries[1].default_ && !entries[2].default_);

  // Two lists add up; within a table the last row of a kind stands, and a
  // table may hold both kinds; unknown children and attributes pass.
  const auto hand = QvFReadXml(false).readTimeTable(Hand(
      "<tt><tl><tb><pg rp=\"PG1\"/><pg rp=\"PG2\" st=\"7:5:1\"/><co tp=\"abc\" ti=\"x\"/><zz/></tb>"
      "</tl><other/><tl><tb/><tb><co tp=\"12\"/><co st=\"10:11\"/></tb></tl></tt>"));
  const auto& rows = hand->table_list.tables;
  ASSERT_TRUE(rows.size() == 3 && rows[0].program && rows[0].command && rows[2].command);
  // "abc" reads as 0; the second command replaced the first; "7:5:1" is read.
  EXPECT_EQ(std::vector({rows[0].command->type, rows[2].command->type,
                         rows[2].command->start_time.tm_min, rows[0].program->start_time.tm_min}),
            std::vector({0, 0, 11, 5}));
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
