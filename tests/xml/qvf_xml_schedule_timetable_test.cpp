// The schedule and time table documents in both vocabularies: round trips,
// the walking rules and every "written if" of their attributes.
#include <ctime>
#include <memory>
#include <string>

#include "model/qvf_records.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::ScratchDir;
using qvtest::U16;

// Records made during a test are stamped 2031/07/04 05:06:07.
std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 131;
  t.tm_mon = 6;
  t.tm_mday = 4;
  t.tm_hour = 5;
  t.tm_min = 6;
  t.tm_sec = 7;
  return t;
}

class XmlDocumentTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override { SetQvFClock(&FixedNow); }
  void TearDown() override { SetQvFClock(nullptr); }

  bool debug() const { return GetParam(); }
  std::u16string Path(const char* name) const { return U16(dir_.Sub(name)); }
  std::string Bytes(const char* name) const { return qvtest::ReadFile(dir_.Sub(name)); }
  void Write(const char* name, const std::string& text) const { qvtest::WriteFile(dir_.Sub(name), text); }

  ScratchDir dir_;
};

QvFSchedule SampleSchedule() {
  QvFSchedule schedule;
  schedule.id.assign(u"SC0001");
  schedule.name = u"週間";
  schedule.version = u"1.0";
  schedule.schedule_list.add = true;
  QvFScheduleEntry first;
  first.default_ = true;
  first.ref_timetable.assign(u"TM0001");
  first.valid = true;
  first.date.tm_year = 124;
  first.date.tm_mon = 0;
  first.date.tm_mday = 2;
  QvFScheduleEntry second;
  second.ref_timetable.assign(u"TM0002");
  second.name = u"holiday";
  second.valid = false;
  schedule.schedule_list.schedules = {first, second};
  return schedule;
}

TEST_P(XmlDocumentTest, ScheduleRoundTrip) {
  QvFWriteXml writer(debug());
  QvFReadXml reader(debug());
  writer.outputSchedule(Path("s.xml"), SampleSchedule());
  const QvFSchedule read = reader.readSchedule(Path("s.xml"));

  EXPECT_EQ(read.id.text, u"SC0001");
  EXPECT_EQ(read.id.kind, kIdSchedule);
  EXPECT_EQ(read.name, u"週間");
  EXPECT_FALSE(read.valid.value_or(true));  // absent comes back as a present false
  EXPECT_EQ(read.version, u"1.0");
  EXPECT_EQ(read.schedule_list.add, std::optional<bool>(true));
  ASSERT_EQ(read.schedule_list.schedules.size(), 2u);
  const QvFScheduleEntry& first = read.schedule_list.schedules[0];
  EXPECT_TRUE(first.default_);
  EXPECT_EQ(first.ref_timetable.text, u"TM0001");
  EXPECT_EQ(first.ref_timetable.kind, kIdTimeTable);
  EXPECT_EQ(first.valid, std::optional<bool>(true));
  EXPECT_EQ(first.date.tm_year, 124);
  EXPECT_EQ(first.date.tm_mon, 0);
  EXPECT_EQ(first.date.tm_mday, 2);
  const QvFScheduleEntry& second = read.schedule_list.schedules[1];
  EXPECT_FALSE(second.default_);
  EXPECT_EQ(second.name, u"holiday");
  EXPECT_EQ(second.valid, std::optional<bool>(false));
  EXPECT_EQ(second.date.tm_year, 131);  // the day of its making

  // Written again, the absent values are now there as the word for false.
  writer.outputSchedule(Path("again.xml"), read);
  const std::string again = Bytes("again.xml");
  const std::string word_false = debug() ? "\"false\"" : "\"f\"";
  const std::string valid = debug() ? "valid=" : " v=";
  EXPECT_NE(again.find("<" + std::string(debug() ? "quorvane_data" : "qv")), std::string::npos);
  EXPECT_NE(again.find(valid + word_false), std::string::npos);
}

TEST_P(XmlDocumentTest, ScheduleAttributesWrittenOnlyWhenThere) {
  QvFWriteXml writer(debug());
  QvFSchedule empty;
  writer.outputSchedule(Path("empty.xml"), empty);
  const std::string bytes = Bytes("empty.xml");
  if (debug()) {
    EXPECT_NE(bytes.find("<quorvane_data>"), std::string::npos);
    EXPECT_NE(bytes.find("<schedule_list/>"), std::string::npos);
  } else {
    EXPECT_NE(bytes.find("?><qv><sl/></qv>"), std::string::npos) << bytes;
  }

  QvFSchedule one;
  one.schedule_list.schedules.emplace_back();
  writer.outputSchedule(Path("one.xml"), one);
  // default and date are always written; an empty reference is not.
  const std::string entry = debug() ? "<schedule date=\"2031/07/04\" default=\"false\"/>"
                                    : "<s df=\"f\" dt=\"2031/07/04\"/>";
  EXPECT_NE(Bytes("one.xml").find(entry), std::string::npos) << Bytes("one.xml");
}

TEST_P(XmlDocumentTest, ScheduleReadingRules) {
  QvFReadXml reader(debug());
  const std::string root = debug() ? "quorvane_data" : "qv";
  const std::string list = debug() ? "schedule_list" : "sl";
  const std::string entry = debug() ? "schedule" : "s";
  const std::string dflt = debug() ? "default" : "df";
  const std::string date = debug() ? "date" : "dt";
  const std::string word_true = debug() ? "true" : "t";

  // Only element nodes count: a comment and white space before the list do not.
  Write("comment.xml", "<" + root + "><!-- c -->\n  <" + list + "><" + entry + " " + dflt + "=\"" +
                           word_true + "\" " + date + "=\"2024/3/9\"/><" + entry + " " + dflt +
                           "=\"TRUE\"/><" + entry + " " + dflt + "=\"1\"/><x/><" + entry + "/></" +
                           list + "><" + list + "><" + entry + "/></" + list + "></" + root + ">");
  const QvFSchedule read = reader.readSchedule(Path("comment.xml"));
  EXPECT_TRUE(read.version.empty());
  ASSERT_EQ(read.schedule_list.schedules.size(), 4u);  // the second list is not read
  EXPECT_TRUE(read.schedule_list.schedules[0].default_);
  EXPECT_EQ(read.schedule_list.schedules[0].date.tm_mon, 2);
  EXPECT_EQ(read.schedule_list.schedules[0].date.tm_mday, 9);
  EXPECT_TRUE(read.schedule_list.schedules[1].default_);   // any casing of "true"
  EXPECT_FALSE(read.schedule_list.schedules[2].default_);  // "1" is not true here
  EXPECT_EQ(read.schedule_list.add, std::optional<bool>(false));

  // Another element before the list: no list at all.
  Write("other_first.xml", "<" + root + " ver=\"9\"><x/><" + list + "><" + entry + "/></" + list +
                               "></" + root + ">");
  EXPECT_TRUE(reader.readSchedule(Path("other_first.xml")).schedule_list.schedules.empty());
}

TEST_P(XmlDocumentTest, TheOtherVocabularyReadsAsEmptyRecords) {
  QvFWriteXml writer(debug());
  QvFReadXml other(!debug());
  writer.outputSchedule(Path("s.xml"), SampleSchedule());
  const QvFSchedule schedule = other.readSchedule(Path("s.xml"));
  EXPECT_TRUE(schedule.id.text.empty());
  EXPECT_TRUE(schedule.version.empty());
  EXPECT_FALSE(schedule.schedule_list.add.has_value());
  EXPECT_TRUE(schedule.schedule_list.schedules.empty());

  QvFTimeTable timetable;
  timetable.id.assign(u"TM0001");
  timetable.table_list.tables.emplace_back();
  writer.outputTimeTable(Path("t.xml"), timetable);
  const std::unique_ptr<QvFTimeTable> read = other.readTimeTable(Path("t.xml"));
  ASSERT_NE(read, nullptr);
  EXPECT_TRUE(read->id.text.empty());
  EXPECT_TRUE(read->table_list.tables.empty());
}

QvFTimeTable SampleTimeTable() {
  QvFTimeTable timetable;
  timetable.id.assign(u"TM0007");
  timetable.name = u"平日";
  timetable.valid = true;
  timetable.table_list.name = u"rows";
  QvFTable program_row;
  program_row.program.emplace();
  program_row.program->ref_program.assign(u"PG0003");
  program_row.program->type = u"loop";
  program_row.program->start_time.tm_hour = 9;
  program_row.program->start_time.tm_min = 0;
  program_row.program->start_time.tm_sec = 30;
  program_row.program->end_time.tm_hour = 17;
  program_row.program->end_time.tm_min = 45;
  program_row.program->end_time.tm_sec = 0;
  QvFTable command_row;
  command_row.valid = false;
  command_row.command.emplace();
  command_row.command->type = 3;
  command_row.command->target_input = u"HDMI1";
  command_row.command->start_time.tm_hour = 23;
  QvFTable empty_row;
  timetable.table_list.tables = {program_row, command_row, empty_row};
  return timetable;
}

TEST_P(XmlDocumentTest, TimeTableRoundTrip) {
  QvFWriteXml writer(debug());
  QvFReadXml reader(debug());
  writer.outputTimeTable(Path("t.xml"), SampleTimeTable());
  const std::unique_ptr<QvFTimeTable> read = reader.readTimeTable(Path("t.xml"));

  EXPECT_EQ(read->id.text, u"TM0007");
  EXPECT_EQ(read->id.kind, kIdTimeTable);
  EXPECT_EQ(read->name, u"平日");
  EXPECT_EQ(read->valid, std::optional<bool>(true));
  EXPECT_EQ(read->table_list.name, u"rows");
  EXPECT_EQ(read->table_list.valid, std::optional<bool>(false));
  ASSERT_EQ(read->table_list.tables.size(), 3u);

  const QvFTable& program_row = read->table_list.tables[0];
  ASSERT_TRUE(program_row.program.has_value());
  EXPECT_FALSE(program_row.command.has_value());
  EXPECT_EQ(program_row.program->ref_program.text, u"PG0003");
  EXPECT_EQ(program_row.program->type, u"loop");
  EXPECT_EQ(program_row.program->start_time.tm_hour, 9);
  EXPECT_EQ(program_row.program->start_time.tm_sec, 30);
  EXPECT_EQ(program_row.program->end_time.tm_hour, 17);
  EXPECT_EQ(program_row.program->end_time.tm_min, 45);

  const QvFTable& command_row = read->table_list.tables[1];
  EXPECT_EQ(command_row.valid, std::optional<bool>(false));
  ASSERT_TRUE(command_row.command.has_value());
  EXPECT_FALSE(command_row.program.has_value());
  EXPECT_EQ(command_row.command->type, 3);
  EXPECT_EQ(command_row.command->target_input, u"HDMI1");
  EXPECT_EQ(command_row.command->start_time.tm_hour, 23);
  EXPECT_EQ(command_row.command->start_time.tm_min, 6);  // the moment of making

  const QvFTable& empty_row = read->table_list.tables[2];
  EXPECT_FALSE(empty_row.program.has_value());
  EXPECT_FALSE(empty_row.command.has_value());
}

TEST_P(XmlDocumentTest, TimeTableAttributesWrittenOnlyWhenThere) {
  QvFWriteXml writer(debug());
  QvFTimeTable timetable;
  QvFTable both;
  both.program.emplace();
  both.command.emplace();
  QvFTable command_only;
  command_only.command.emplace();
  command_only.command->start_time.tm_hour = 1;
  command_only.command->start_time.tm_min = 2;
  command_only.command->start_time.tm_sec = 3;
  timetable.table_list.tables = {both, command_only, QvFTable()};
  writer.outputTimeTable(Path("t.xml"), timetable);
  const std::string bytes = Bytes("t.xml");

  if (debug()) {
    EXPECT_NE(bytes.find("<program end_time=\"05:06:07\" start_time=\"05:06:07\"/>"),
              std::string::npos) << bytes;
    EXPECT_NE(bytes.find("<command start_time=\"01:02:03\" type=\"0\"/>"), std::string::npos);
    EXPECT_EQ(bytes.find("target_input"), std::string::npos);
    EXPECT_NE(bytes.find("<table/>"), std::string::npos);
  } else {
    // The one attribute written with an empty value: a compact command's "ti".
    EXPECT_EQ(bytes.substr(bytes.find("?>") + 2),
              "<tt><tl><tb><pg et=\"05:06:07\" st=\"05:06:07\"/></tb>"
              "<tb><co st=\"01:02:03\" ti=\"\" tp=\"0\"/></tb><tb/></tl></tt>");
  }
}

TEST_P(XmlDocumentTest, TimeTableReadingRules) {
  QvFReadXml reader(debug());
  const bool d = debug();
  const std::string tt = d ? "timetable" : "tt", tl = d ? "table_list" : "tl",
                    tb = d ? "table" : "tb", pg = d ? "program" : "pg", co = d ? "command" : "co",
                    rp = d ? "ref_program" : "rp", st = d ? "start_time" : "st",
                    tp = d ? "type" : "tp", ti = d ? "target_input" : "ti";
  // Two lists add up; within a table the last row of a kind stands, and a
  // table may hold both kinds; unknown children and attributes pass.
  Write("rules.xml",
        "<" + tt + "><" + tl + "><" + tb + "><" + pg + " " + rp + "=\"PG1\"/><" + pg + " " + rp +
            "=\"PG2\" " + st + "=\"7:5:1\"/><" + co + " " + tp + "=\"abc\" " + ti +
            "=\"x\"/><zz/></" + tb + "></" + tl + "><other/><" + tl + "><" + tb + "/><" + tb +
            "><" + co + " " + tp + "=\"12\"/><" + co + " " + st + "=\"10:11\"/></" + tb +
            "></" + tl + "></" + tt + ">");
  const std::unique_ptr<QvFTimeTable> read = reader.readTimeTable(Path("rules.xml"));
  ASSERT_EQ(read->table_list.tables.size(), 3u);
  const QvFTable& first = read->table_list.tables[0];
  ASSERT_TRUE(first.program.has_value());
  ASSERT_TRUE(first.command.has_value());
  EXPECT_EQ(first.program->ref_program.text, u"PG2");
  EXPECT_EQ(first.program->start_time.tm_hour, 7);
  EXPECT_EQ(first.command->type, 0);  // "abc" reads as 0
  EXPECT_EQ(first.command->target_input, u"x");
  const QvFTable& third = read->table_list.tables[2];
  ASSERT_TRUE(third.command.has_value());
  EXPECT_EQ(third.command->type, 0);  // the second command replaced the first
  EXPECT_EQ(third.command->start_time.tm_hour, 10);
  EXPECT_EQ(third.command->start_time.tm_min, 11);
  EXPECT_EQ(third.command->start_time.tm_sec, 7);  // kept from the moment of making

  // One-digit times are written back with two digits; only the program of a
  // table with both rows is written.
  QvFWriteXml writer(debug());
  writer.outputTimeTable(Path("again.xml"), *read);
  const std::string again = Bytes("again.xml");
  EXPECT_NE(again.find("\"07:05:01\""), std::string::npos);
  EXPECT_EQ(again.find("\"abc\""), std::string::npos);
  EXPECT_EQ(again.find("\"x\""), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlDocumentTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                           return info.param ? std::string("Debug") : std::string("Compact");
                         });

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
