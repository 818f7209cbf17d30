// Program and playlist documents: records written, read back and written again
// in both vocabularies, what is written only when it holds something, and
// hand-written documents with elements in any order or of unknown kinds.
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/qvf_records.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::U16;
using Int = std::optional<std::int32_t>;
using Flag = std::optional<bool>;

std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 131;
  return t;
}

QvFRegion Region(int x, int y, int width, int height) {
  QvFRegion region;
  region.x = x, region.y = y, region.width = width, region.height = height;
  region.name = u"r", region.valid = false;
  return region;
}

QvFColor Colour(int a, int r, int g, int b) {
  QvFColor color;
  color.a = a, color.r = r, color.g = g, color.b = b;
  color.valid = true;
  return color;
}

void SetPlayTime(QvFPlayTime& play_time, int seconds, int content_end, int timeout) {
  play_time.time.tm_hour = seconds / 3600;
  play_time.time.tm_min = seconds / 60 % 60;
  play_time.time.tm_sec = seconds % 60;
  play_time.content_end = content_end;
  play_time.timeout = timeout;
  play_time.valid = true;
}

// Sets the head's valid flag: an absent one comes back as a present false.
template <typename Record>
Record& Valid(Record& record, bool valid = true) {
  record.valid = valid;
  return record;
}

// The item at `index` as the record its kind names; another kind fails.
template <typename Record>
const Record& Item(const QvFPlaylist& playlist, size_t index) {
  const QvFContent* item = index < playlist.contents.size() ? playlist.contents[index].get() : nullptr;
  if (item == nullptr || item->kind != Record().kind) throw std::runtime_error("no such item");
  return static_cast<const Record&>(*item);
}

class XmlProgramPlaylist : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override { SetQvFClock(&FixedNow); }
  void TearDown() override { SetQvFClock(nullptr); }

  // Writes the record and reads it back; `bytes` gets what was written
  // after the declaration.
  std::unique_ptr<QvFProgram> Trip(const QvFProgram& program, std::string& bytes) {
    QvFWriteXml(GetParam()).outputProgram(U16(path_), program);
    bytes = Body();
    return QvFReadXml(GetParam()).readProgram(U16(path_));
  }
  QvFPlaylist Trip(const QvFPlaylist& playlist, std::string& bytes) {
    QvFWriteXml(GetParam()).outputPlaylist(U16(path_), playlist);
    bytes = Body();
    return QvFReadXml(GetParam()).readPlaylist(U16(path_));
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
  std::string path_ = dir_.Sub("document.xml");
};

using XmlProgramPlaylistRead = XmlProgramPlaylist;

TEST_P(XmlProgramPlaylist, ProgramComesBackWhole) {
  QvFProgram written;
  Valid(written).id.assign(u"PG0001");
  QvFProgramInfo& info = Valid(written.program_info, false);
  info.name = u"frame 日本";
  info.program_time.tm_hour = 13, info.program_time.tm_min = 5, info.program_time.tm_sec = 9;
  info.layout_lock = true;
  info.region = Region(-10, 20, 3840, 2160);
  info.background_color = Colour(128, 1, 2, 255);
  Valid(written.pane_info);
  for (int type = 1; type < 4; ++type) {
    QvFPane& pane = Valid(written.pane_info.panes.emplace_back(), type == 2);
    pane.region = Region(100 * type, 7, 640, 360 + type);
    Valid(pane.playlist_file).ref_playlist.assign(u"PL" + std::u16string(1, u'0' + type));
    pane.playlist_file.type = type;
    pane.playlist_file.mute = type == 1;
  }
  std::string first, second;
  const std::unique_ptr<QvFProgram> read = Trip(written, first);
  Trip(*read, second);
  EXPECT_EQ(second, first);
  EXPECT_EQ(read->program_info.background_color.a, 128);
  ASSERT_EQ(read->pane_info.panes.size(), 3u);
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.ref_playlist.kind, kIdPlaylist);
  EXPECT_EQ(read->pane_info.panes[2].playlist_file.type, Int(3));
  EXPECT_EQ(read->pane_info.panes[0].playlist_file.mute, Flag(true));
}

TEST_P(XmlProgramPlaylist, PlaylistItemsOfEveryKindComeBackWhole) {
  QvFPlaylist written;
  Valid(written).id.assign(u"PL0003");
  auto movie = std::make_shared<QvFMovie>();
  Valid(*movie).ref_content.assign(u"CT0001");
  movie->volume = -5;
  movie->background_color = Colour(255, 0xd4, 0xf0, 0xff);
  SetPlayTime(movie->play_time, 90, kEndNext, kTimeoutContinue);
  movie->region = Region(1, 2, 300, 400);
  auto coloured = std::make_shared<QvFNone>();
  Valid(*coloured).has_background_color = true;
  SetPlayTime(coloured->play_time, 5, 0, 0);
  coloured->background_color = Colour(0, 9, 8, 7);
  auto telop = std::make_shared<QvFTelop>();
  Valid(*telop, false).ref_content.assign(u"CT0004");
  SetPlayTime(telop->play_time, 3600, kEndLoop, kTimeoutStop);
  written.contents = {movie, coloured, telop};
  // Every effect from 1 and every direction, one image each.
  for (int value = 1; value <= 19; ++value) {
    auto image = std::make_shared<QvFImage>();
    Valid(*image).type = value % 4, image->aspect = value % 3;
    Valid(image->background_color);
    Valid(image->image_effect.emplace()).type = value <= 18 ? value : 1;
    image->image_effect->direction = value == 19 ? 0 : value;
    image->image_effect->via_backgroundcolor = value % 2 == 0;
    image->image_effect->t = value;
    SetPlayTime(image->play_time, 86380 + value, kEndStopBackgroundColor, kTimeoutStop);
    written.contents.push_back(image);
  }
  std::string first, second;
  const QvFPlaylist read = Trip(written, first);
  Trip(read, second);
  EXPECT_EQ(second, first);

  ASSERT_EQ(read.contents.size(), written.contents.size());
  EXPECT_EQ(Item<QvFMovie>(read, 0).volume, -5);
  EXPECT_EQ(Item<QvFMovie>(read, 0).ref_content.kind, kIdContent);
  EXPECT_TRUE(Item<QvFNone>(read, 1).has_background_color);
  EXPECT_EQ(Item<QvFTelop>(read, 2).play_time.time.tm_hour, 1);
  for (int value = 1; value <= 19; ++value) {
    const QvFImage& image = Item<QvFImage>(read, 2 + value);
    EXPECT_EQ(image.image_effect->type, Int(value <= 18 ? value : 1));
    EXPECT_EQ(image.image_effect->direction, value == 19 ? 0 : value);
    EXPECT_EQ(image.play_time.content_end, kEndStopBackgroundColor);
  }
}

// Empty references, values out of range and absent flags are not written;
// what comes back is the plain default.
TEST_P(XmlProgramPlaylist, ValuesWrittenOnlyWhenTheyHoldSomething) {
  QvFProgram program;
  program.program_info.layout_lock.reset();
  program.program_info.playlist_file.ref_playlist.assign(u"PL9999");  // never written
  program.pane_info.panes.emplace_back().playlist_file.ref_playlist.assign(u"PL0001");
  QvFPlaylistFile& odd = program.pane_info.panes.emplace_back().playlist_file;
  odd.type = 7;
  odd.mute.reset();
  std::string bytes;
  const std::unique_ptr<QvFProgram> read = Trip(program, bytes);
  if (!GetParam()) {
    EXPECT_EQ(bytes, "<pgp><pgi pgt=\"00:00:00\"><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><bc c=\"#000000\"/></pgi>"
              "<pai><pa><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><plf mt=\"f\" rl=\"PL0001\"/></pa>"
              "<pa><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><plf/></pa></pai></pgp>");
  }
  EXPECT_TRUE(read->program_info.playlist_file.ref_playlist.text.empty());
  EXPECT_EQ(read->program_info.layout_lock, Flag(false));
  EXPECT_EQ(read->valid, Flag(false));
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, Int(0));
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.mute, Flag(false));
  Trip(QvFProgram(), bytes);
  if (!GetParam()) {
    EXPECT_EQ(bytes, "<pgp><pgi lk=\"f\" pgt=\"00:00:00\"><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/>"
              "<bc c=\"#000000\"/></pgi><pai/></pgp>");
  }

  QvFPlaylist playlist;
  auto movie = std::make_shared<QvFMovie>();
  movie->type = 1, movie->aspect = 2;
  auto image = std::make_shared<QvFImage>();
  image->type = 4, image->aspect = 9;
  image->image_effect.emplace().type = kEffectNone;
  image->image_effect->via_backgroundcolor.reset();
  auto telop = std::make_shared<QvFTelop>();
  telop->type = 1, telop->aspect = 3;
  telop->region = Region(5, 6, 7, 8);
  SetPlayTime(telop->play_time, 1, 99, -1);
  auto none = std::make_shared<QvFNone>();
  SetPlayTime(none->play_time, 1, kEndNext, kTimeoutStop);
  auto unknown = std::make_shared<QvFNone>();
  unknown->kind = 5;
  playlist.contents = {movie, image, telop, none, unknown, nullptr};
  const QvFPlaylist back = Trip(playlist, bytes);
  if (!GetParam()) {
    EXPECT_EQ(bytes, "<pl><m a=\"0\" vo=\"0\"><bc c=\"#000000\"/><pt ce=\"l\" t=\"00:00:00\" to=\"s\"/></m>"
              "<i><bc c=\"#000000\"/><pt ce=\"l\" t=\"00:00:00\" to=\"s\"/><ie d=\"no\" t=\"0\"/></i>"
              "<t a=\"0\"><pt t=\"00:00:01\" v=\"t\"/></t><n><pt t=\"00:00:01\" v=\"t\"/></n></pl>");
  }
  ASSERT_EQ(back.contents.size(), 4u);
  EXPECT_EQ(Item<QvFImage>(back, 1).type + Item<QvFImage>(back, 1).aspect, 0);
  EXPECT_EQ(Item<QvFImage>(back, 1).image_effect->via_backgroundcolor, Flag(false));
  const QvFTelop& telop_back = Item<QvFTelop>(back, 2);
  EXPECT_EQ(std::vector({telop_back.type, telop_back.aspect}), std::vector({1, 0}));
  EXPECT_FALSE(telop_back.region.has_value());
  EXPECT_EQ(telop_back.play_time.content_end, 0);
  EXPECT_EQ(Item<QvFNone>(back, 3).play_time.timeout, 0);
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlProgramPlaylist, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Debug" : "Compact";
                         });

TEST_F(XmlProgramPlaylistRead, ProgramElementsInAnyOrder) {
  const auto read = QvFReadXml(false).readProgram(Hand(
      "<pgp v=\"t\"><!-- panes first -->"
      "<pai><x/><pa><plf rl=\"PL7\" tp=\"t\" mt=\"t\"><pa/></plf>"
      "<re x=\"1\" y=\"2\"/><re x=\"5\"/></pa><pg><pa/></pg><pa><plf tp=\"contents\"/></pa></pai>"
      "<pgi pgt=\"1:2:3\" lk=\"true\"><plf rl=\"PL9\" tp=\"s\"/><bc c=\"0x102030\"/>"
      "<re w=\"10\"/></pgi></pgp>"));
  EXPECT_EQ(read->valid, Flag(true));
  const QvFProgramInfo& info = read->program_info;
  EXPECT_EQ(info.program_time.tm_min, 2);
  EXPECT_EQ(info.layout_lock, Flag(false));  // the debug word is no true here
  EXPECT_EQ(info.playlist_file.ref_playlist.text, u"PL9");
  EXPECT_EQ(info.playlist_file.type, Int(kPaneSound));
  EXPECT_EQ(info.background_color.g, 0x20);
  EXPECT_EQ(info.region.width, 10);
  // Nested panes and panes outside the list are no panes of the program.
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  const QvFPane& first = read->pane_info.panes[0];
  EXPECT_EQ(first.playlist_file.type, Int(kPaneTelop));
  EXPECT_EQ(first.playlist_file.mute, Flag(true));
  EXPECT_EQ(std::vector({first.region.x, first.region.y}), std::vector({5, 0}));  // the last
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, Int(0));  // an unknown word
}

TEST_F(XmlProgramPlaylistRead, PlaylistWordsKindsAndFallbacks) {
  const QvFPlaylist read = QvFReadXml(false).readPlaylist(Hand(
      "<pl><o><m/></o><c/><u><i/></u><a/><p><t/></p><cc><n/></cc><x/>"
      "<m tp=\"avi\" a=\"2\"><pt t=\"0:1:2\" ce=\"sb\" to=\"c\"/></m>"
      "<m vo=\" 12x\"><pt ce=\"next\" to=\"continue\"/></m>"
      "<i tp=\"tiff\" a=\"7\"><ie tp=\"wipe\" d=\"none\" vbc=\"t\" t=\"3\"/></i>"
      "<t tp=\"txt\"><bc c=\"not a colour\"/><re w=\"9\"/></t>"
      "<n><pt t=\"0:0:7\" ce=\"n\" to=\"c\"/><bc c=\"#11223344\"/></n><pl><m/></pl></pl>"));
  ASSERT_EQ(read.contents.size(), 5u);  // kinds without a record are left out
  const QvFMovie& other = Item<QvFMovie>(read, 0);
  EXPECT_EQ(std::vector({other.type, other.aspect, other.play_time.time.tm_sec,
                         other.play_time.content_end, other.play_time.timeout}),
            std::vector({1, 2, 2, 2, 1}));
  // Debug words in a compact document are unknown: stop_last and stop.
  const QvFMovie& bare = Item<QvFMovie>(read, 1);
  EXPECT_EQ(std::vector({bare.volume, bare.play_time.content_end, bare.play_time.timeout}),
            std::vector({12, 1, 0}));
  const QvFImage& odd = Item<QvFImage>(read, 2);
  EXPECT_EQ(std::vector({odd.type, odd.aspect, odd.image_effect->direction, odd.image_effect->t}),
            std::vector({4, 2, 0, 3}));
  EXPECT_EQ(odd.image_effect->type, Int(kEffectNone));
  EXPECT_EQ(odd.image_effect->via_backgroundcolor, Flag(true));
  // A telop's colour is passed over, even one that would not parse.
  const QvFTelop& telop = Item<QvFTelop>(read, 3);
  EXPECT_EQ(std::vector({telop.type, telop.aspect, telop.region.value_or(QvFRegion()).width}),
            std::vector({1, 2, 9}));
  const QvFNone& none = Item<QvFNone>(read, 4);
  EXPECT_TRUE(none.has_background_color);
  EXPECT_EQ(std::vector({none.background_color.a, none.play_time.time.tm_sec,
                         none.play_time.content_end, none.play_time.timeout}),
            std::vector({0x11, 7, 3, 1}));

  const QvFPlaylist debug = QvFReadXml(true).readPlaylist(Hand(
      "<playlist><others/><command/><url/><audio/><pip/><conditional_content><movie/>"
      "</conditional_content><telop/><none/><movie/><image/></playlist>"));
  ASSERT_EQ(debug.contents.size(), 4u);
  EXPECT_EQ(debug.contents[3]->kind, kContentImage);
}

TEST_F(XmlProgramPlaylistRead, BadColoursAndForeignRoots) {
  QvFReadXml reader(false);
  EXPECT_THROW(reader.readProgram(Hand("<pgp><pgi><bc c=\"102030\"/></pgi></pgp>")), std::out_of_range);
  EXPECT_THROW(reader.readPlaylist(Hand("<pl><n><bc c=\"0X112233\"/></n></pl>")), std::out_of_range);
  // A root of another name, or of the other vocabulary, gives an empty record.
  EXPECT_TRUE(reader.readPlaylist(Hand("<pgp><m/></pgp>")).contents.empty());
  EXPECT_TRUE(reader.readPlaylist(Hand("<playlist><movie/></playlist>")).contents.empty());
  EXPECT_TRUE(reader.readProgram(Hand("<program><pane_info><pane/></pane_info></program>"))
                  ->pane_info.panes.empty());
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
