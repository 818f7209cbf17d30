// Records: defaults that readers rely on (absent apart from false), identifier and item kinds.
#include "model/qvf_records.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/fake_env.h"

namespace quorvane::qvformat::format {
namespace {

std::tm FixedNow() { std::tm t{}; t.tm_year = 99, t.tm_hour = 23; return t; }

TEST(ModelRecords, DefaultsAndKinds) {
  EXPECT_FALSE(QvFSchedule().schedule_list.add.has_value());
  EXPECT_FALSE(QvFProgram().program_info.playlist_file.type.has_value());
  // Every time field starts at the clock.
  std::optional<qvtest::FixedClock> clock(std::in_place, FixedNow());
  QvFScheduleEntry entry;
  QvFTableCommand command;
  clock.reset();
  EXPECT_EQ(entry.date.tm_year, 99);
  EXPECT_EQ(command.start_time.tm_hour, 23);
  EXPECT_GE(QvFPlayTime().time.tm_year, 100);

  // An identifier's kind comes from its prefix, an item's from its record.
  EXPECT_EQ(QvFId(u"TM12").kind, kIdTimeTable);
  EXPECT_EQ(QvFId(u"").kind, kIdProgram);
  EXPECT_EQ(QvFId(u"tm1").kind, kIdProgram);  // exact case

  // A text without a prefix keeps the kind the identifier had.
  QvFId id;
  id = u"CT1";
  id = u"other";
  EXPECT_EQ(id.text, u"other");
  EXPECT_EQ(id.kind, kIdContent);

  const QvFMovie movie;
  EXPECT_EQ(AsMovie(&movie), &movie);
  EXPECT_EQ(AsImage(&movie), nullptr);
}

}  // namespace
}  // namespace quorvane::qvformat::format
