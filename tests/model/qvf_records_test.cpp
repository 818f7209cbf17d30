// Records: defaults that readers rely on, identifier kinds, and the copy
// rules (deep for programs, shared items for playlists).
#include "model/qvf_records.h"

#include <gtest/gtest.h>

#include <memory>

namespace quorvane::qvformat::format {
namespace {

std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 99;
  t.tm_hour = 23;
  return t;
}

TEST(ModelRecords, DefaultsKeepAbsentApartFromFalse) {
  EXPECT_FALSE(QvFSchedule().schedule_list.add.has_value());
  EXPECT_FALSE(QvFProgram().program_info.playlist_file.type.has_value());
  // Every time field starts at the clock.
  SetQvFClock(&FixedNow);
  QvFScheduleEntry entry;
  QvFTableCommand command;
  SetQvFClock(nullptr);
  EXPECT_EQ(entry.date.tm_year, 99);
  EXPECT_EQ(command.start_time.tm_hour, 23);
  EXPECT_GE(QvFPlayTime().time.tm_year, 100);
}

TEST(ModelRecords, IdentifierKindComesFromItsPrefix) {
  EXPECT_EQ(QvFId(u"TM12").kind, kIdTimeTable);
  EXPECT_EQ(QvFId(u"").kind, kIdProgram);
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
  EXPECT_EQ(program.pane_info.panes[0].playlist_file.ref_playlist.text, u"PL1");

  QvFPlaylist playlist;
  playlist.contents.push_back(std::make_shared<QvFMovie>());
  QvFPlaylist shared = playlist;
  AsMovie(shared.contents[0].get())->volume = 40;
  EXPECT_EQ(AsMovie(playlist.contents[0].get())->volume, 40);
  EXPECT_EQ(AsImage(playlist.contents[0].get()), nullptr);
}

}  // namespace
}  // namespace quorvane::qvformat::format
