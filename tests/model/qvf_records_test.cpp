// Records: defaults straight from the constructors, identifier kinds, and the
// copy rules (deep for programs, shared items for playlists).
#include "model/qvf_records.h"

#include <gtest/gtest.h>

#include <memory>

namespace quorvane::qvformat::format {
namespace {

std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 99;
  t.tm_mon = 11;
  t.tm_mday = 31;
  t.tm_hour = 23;
  t.tm_min = 59;
  t.tm_sec = 58;
  return t;
}

TEST(ModelRecords, ConstructorsGiveTheDocumentedDefaults) {
  QvFSchedule schedule;
  EXPECT_TRUE(schedule.version.empty());
  EXPECT_FALSE(schedule.schedule_list.add.has_value());
  EXPECT_TRUE(schedule.schedule_list.schedules.empty());
  EXPECT_FALSE(schedule.valid.has_value());
  EXPECT_EQ(schedule.id.kind, kIdProgram);

  QvFProgram program;
  EXPECT_TRUE(program.pane_info.panes.empty());
  EXPECT_EQ(program.program_info.layout_lock, std::optional<bool>(false));
  EXPECT_EQ(program.program_info.background_color.a, 255);
  EXPECT_FALSE(program.program_info.playlist_file.type.has_value());

  QvFPlaylistFile file;
  EXPECT_FALSE(file.type.has_value());
  EXPECT_EQ(file.mute, std::optional<bool>(false));

  QvFImage image;
  EXPECT_EQ(image.kind, kContentImage);
  EXPECT_FALSE(image.region.has_value());
  EXPECT_FALSE(image.image_effect.has_value());

  QvFImageEffect effect;
  EXPECT_EQ(effect.type, std::optional<std::int32_t>(0));
  EXPECT_EQ(effect.via_backgroundcolor, std::optional<bool>(false));

  QvFNone none;
  EXPECT_EQ(none.kind, kContentNone);
  EXPECT_FALSE(none.has_background_color);
  EXPECT_EQ(QvFMovie().kind, kContentMovie);
  EXPECT_EQ(QvFTelop().kind, kContentTelop);

  QvFTable row;
  EXPECT_FALSE(row.program.has_value());
  EXPECT_FALSE(row.command.has_value());
}

TEST(ModelRecords, TimeFieldsStartAtTheClock) {
  SetQvFClock(&FixedNow);
  QvFScheduleEntry entry;
  QvFTableProgram program;
  QvFPlayTime play_time;
  SetQvFClock(nullptr);
  EXPECT_EQ(entry.date.tm_year, 99);
  EXPECT_EQ(entry.date.tm_mday, 31);
  EXPECT_EQ(program.start_time.tm_hour, 23);
  EXPECT_EQ(program.end_time.tm_sec, 58);
  EXPECT_EQ(play_time.time.tm_min, 59);
  // Back on the system clock, a year of this century at least.
  EXPECT_GE(QvFScheduleEntry().date.tm_year, 100);
}

TEST(ModelRecords, IdentifierKindComesFromItsPrefix) {
  EXPECT_EQ(QvFId(u"SC1").kind, kIdSchedule);
  EXPECT_EQ(QvFId(u"TM12").kind, kIdTimeTable);
  EXPECT_EQ(QvFId(u"PG1").kind, kIdProgram);
  EXPECT_EQ(QvFId(u"PL3").kind, kIdPlaylist);
  EXPECT_EQ(QvFId(u"CT7").kind, kIdContent);
  EXPECT_EQ(QvFId(u"").kind, kIdProgram);
  EXPECT_EQ(QvFId(u"XY1").kind, kIdProgram);
  EXPECT_EQ(QvFId(u"tm1").kind, kIdProgram);  // exact case

  // A text without a prefix keeps the kind the identifier had.
  QvFId id;
  id = u"CT1";
  id = u"other";
  EXPECT_EQ(id.text, u"other");
  EXPECT_EQ(id.kind, kIdContent);
}

TEST(ModelRecords, ProgramCopiesAreDeepPlaylistCopiesShareItems) {
  QvFProgram program;
  program.pane_info.panes.emplace_back();
  program.pane_info.panes[0].playlist_file.ref_playlist = u"PL1";
  QvFProgram copy = program;
  copy.pane_info.panes[0].playlist_file.ref_playlist = u"PL2";
  copy.program_info.region.x = 5;
  EXPECT_EQ(program.pane_info.panes[0].playlist_file.ref_playlist.text, u"PL1");
  EXPECT_EQ(program.program_info.region.x, 0);

  QvFPlaylist playlist;
  playlist.contents.push_back(std::make_shared<QvFMovie>());
  QvFPlaylist shared = playlist;
  AsMovie(shared.contents[0].get())->volume = 40;
  EXPECT_EQ(AsMovie(playlist.contents[0].get())->volume, 40);
}

TEST(ModelRecords, ItemCastsFollowKind) {
  std::shared_ptr<QvFContent> item = std::make_shared<QvFTelop>();
  EXPECT_NE(AsTelop(item.get()), nullptr);
  EXPECT_EQ(AsMovie(item.get()), nullptr);
  EXPECT_EQ(AsImage(item.get()), nullptr);
  EXPECT_EQ(AsNone(item.get()), nullptr);
  EXPECT_EQ(AsMovie(static_cast<QvFContent*>(nullptr)), nullptr);
}

}  // namespace
}  // namespace quorvane::qvformat::format
