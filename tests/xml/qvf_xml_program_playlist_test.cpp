// Program and playlist documents: round trips in both vocabularies, values written only when set,
// hand-written ones.
#include <memory>
#include <stdexcept>
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
using Int = std::optional<std::int32_t>;

std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 131;
  return t;
}  // what a fresh record holds

// The item at `index` as the record its kind names; another kind fails.
template <typename Record>
const Record& Item(const QvFPlaylist& playlist, size_t index) {
  const QvFContent* item =
      index < playlist.contents.size() ? playlist.contents[index].get() : nullptr;
  if (item == nullptr || item->kind != Record().kind) throw std::runtime_error("no such item");
  return static_cast<const Record&>(*item);
}

class XmlProgramPlaylist : public testing::TestWithParam<bool> {
 protected:
  qvtest::FixedClock clock_{FixedNow()};

  // Writes the record and reads it back; bytes_ gets what was written after the declaration. With
  // `again`, what was read must write the same bytes, but that an absent valid flag comes back as a
  // present false.
  std::unique_ptr<QvFProgram> Trip(const QvFProgram& program, bool again = false) {
    QvFWriteXml(GetParam()).outputProgram(U16(path_), program);
    bytes_ = Body();
    std::unique_ptr<QvFProgram> read = QvFReadXml(GetParam()).readProgram(U16(path_));
    if (again) QvFWriteXml(GetParam()).outputProgram(U16(path_), *read);
    EXPECT_EQ(Unflagged(Body()), Unflagged(bytes_));
    return read;
  }
  QvFPlaylist Trip(const QvFPlaylist& playlist, bool again = false) {
    QvFWriteXml(GetParam()).outputPlaylist(U16(path_), playlist);
    bytes_ = Body();
    QvFPlaylist read = QvFReadXml(GetParam()).readPlaylist(U16(path_));
    if (again) QvFWriteXml(GetParam()).outputPlaylist(U16(path_), read);
    EXPECT_EQ(Unflagged(Body()), Unflagged(bytes_));
    return read;
  }
  static std::string Unflagged(const std::string& bytes) {
    return qvtest::EraseAll(bytes, {" valid=\"false\"", " v=\"f\""});
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
  std::string path_ = dir_.Sub("document.xml");
  std::string bytes_;
};

using XmlProgramPlaylistRead = XmlProgramPlaylist;

TEST_P(XmlProgramPlaylist, RecordsComeBackWhole) {
  QvFProgram program;
  program.valid = true, program.id.assign(u"PG0001");
  QvFProgramInfo& info = program.program_info;
  info.name = u"frame 日本", info.layout_lock = true, info.program_time.tm_sec = 9;
  info.region = QvFRegion{{}, -10, 20, 3840, 2160};
  info.background_color.a = 128, info.background_color.b = 255;
  for (int type = 1; type < 4; ++type) {
    QvFPane& pane = program.pane_info.panes.emplace_back();
    pane.valid = type == 2, pane.region = QvFRegion{{}, 100 * type, 7, 640, 360 + type};
    pane.playlist_file.ref_playlist.assign(u"PL" + std::u16string(1, u'0' + type));
    pane.playlist_file.type = type, pane.playlist_file.mute = type == 1;
  }
  Trip(program, true);

  QvFPlaylist playlist;
  auto movie = std::make_shared<QvFMovie>();
  movie->ref_content.assign(u"CT0001"), movie->volume = -5,
                                        movie->region = QvFRegion{{}, 1, 2, 300, 400};
  movie->play_time.content_end = kEndNext, movie->play_time.timeout = kTimeoutContinue;
  auto coloured = std::make_shared<QvFNone>();
  coloured->has_background_color = true, coloured->background_color.a = 0;
  playlist.contents = {movie, coloured, std::make_shared<QvFTelop>()};
  // Every effect from 1 and every direction, one image each.
  for (int value = 1; value <= 19; ++value) {
    auto image = std::make_shared<QvFImage>();
    image->type = value % 4, image->aspect = value % 3,
    image->play_time.content_end = kEndStopBackgroundColor;
    QvFImageEffect& effect = image->image_effect.emplace();
    effect.type = value <= 18 ? value : 1, effect.direction = value == 19 ? 0 : value;
    effect.via_backgroundcolor = value % 2 == 0, effect.t = value;
    playlist.contents.push_back(image);
  }
  EXPECT_EQ(Item<QvFMovie>(Trip(playlist, true), 0).volume, -5);
}

// Empty references, values out of range and absent flags are not written; what comes back is the
// plain default.
TEST_P(XmlProgramPlaylist, ValuesWrittenOnlyWhenTheyHoldSomething) {
  QvFProgram program;
  program.program_info.layout_lock.reset();
  program.program_info.playlist_file.ref_playlist.assign(u"PL9999");  // never written
  program.pane_info.panes.emplace_back().playlist_file.ref_playlist.assign(u"PL0001");
  QvFPlaylistFile& odd = program.pane_info.panes.emplace_back().playlist_file;
  odd.type = 7, odd.mute.reset();
  EXPECT_EQ(Trip(program)->program_info.layout_lock, std::optional<bool>(false));
  const std::string program_bytes = bytes_;
  QvFPlaylist playlist;
  auto image = std::make_shared<QvFImage>();
  image->type = 4, image->aspect = 9;
  image->image_effect.emplace().via_backgroundcolor.reset();
  auto telop = std::make_shared<QvFTelop>();
  telop->type = 1, telop->aspect = 3, telop->region = QvFRegion{{}, 5, 6, 7, 8};
  telop->play_time.content_end = 99, telop->play_time.timeout = -1, telop->play_time.valid = true;
  playlist.contents = {image, telop, nullptr};
  EXPECT_FALSE(Item<QvFTelop>(Trip(playlist), 1).region.has_value());
  if (GetParam()) return;
  EXPECT_EQ(
      program_bytes,
      "<pgp><pgi pgt=\"00:00:00\"><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><bc c=\"#000000\"/></pgi>"
      "<pai><pa><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><plf mt=\"f\" rl=\"PL0001\"/></pa>"
      "<pa><re h=\"0\" w=\"0\" x=\"0\" y=\"0\"/><plf/></pa></pai></pgp>");
  EXPECT_EQ(
      bytes_,
      "<pl><i><bc c=\"#000000\"/><pt ce=\"l\" t=\"00:00:00\" to=\"s\"/><ie d=\"no\" t=\"0\"/></i>"
      "<t a=\"0\"><pt t=\"00:00:00\" v=\"t\"/></t></pl>");
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlProgramPlaylist, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Debug" : "Compact";
                         });

TEST_F(XmlProgramPlaylistRead, HandWrittenInAnyOrderWithUnknownWordsAndBadColours) {
  QvFReadXml reader(false);
  const auto read = reader.readProgram(Hand(
      "<pgp><!-- panes first --><pai><x/><pa><plf tp=\"t\"><pa/></plf><re x=\"1\" y=\"2\"/><re "
      "x=\"5\"/>"
      "</pa><pg><pa/></pg><pa><plf tp=\"contents\"/></pa></pai><pgi><plf tp=\"s\"/></pgi></pgp>"));
  EXPECT_EQ(read->program_info.playlist_file.type, Int(kPaneSound));
  // Nested panes and panes outside the list are no panes of the program; of two regions the last
  // stands.
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  const QvFPane& first = read->pane_info.panes[0];
  EXPECT_EQ(std::vector({first.playlist_file.type.value_or(-1), first.region.x, first.region.y}),
            std::vector<int>({kPaneTelop, 5, 0}));
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, Int(0));  // an unknown word

  // Kinds without a record are left out; debug words in a compact document
  // are unknown (stop_last and stop); a telop's colour is passed over.
  const QvFPlaylist playlist =
      reader.readPlaylist(Hand("<pl><o><m/></o><c/><u><i/></u><a/><p><t/></p><cc><n/></cc><x/><m "
                               "vo=\" 12x\"><pt ce=\"next\" to=\"continue\"/>"
                               "</m><i tp=\"tiff\" a=\"7\"><ie tp=\"wipe\" d=\"none\"/></i><t><bc "
                               "c=\"not a colour\"/></t><pl><m/></pl></pl>"));
  ASSERT_EQ(playlist.contents.size(), 3u);
  const QvFMovie& bare = Item<QvFMovie>(playlist, 0);
  EXPECT_EQ(std::vector({bare.volume, bare.play_time.content_end, bare.play_time.timeout}),
            std::vector({12, 1, 0}));
  const QvFImage& odd = Item<QvFImage>(playlist, 1);
  EXPECT_EQ(std::vector({odd.type, odd.aspect, odd.image_effect->direction,
                         odd.image_effect->type.value_or(-1)}),
            std::vector<int>({4, 2, 0, kEffectNone}));

  EXPECT_THROW(reader.readProgram(Hand("<pgp><pgi><bc c=\"102030\"/></pgi></pgp>")),
               std::out_of_range);
  EXPECT_THROW(reader.readPlaylist(Hand("<pl><n><bc c=\"0X112233\"/></n></pl>")),
               std::out_of_range);
  // A root of another name, or of the other vocabulary, gives an empty record.
  EXPECT_TRUE(reader.readPlaylist(Hand("<pgp><m/></pgp>")).contents.empty());
  EXPECT_TRUE(reader.readPlaylist(Hand("<playlist><movie/></playlist>")).contents.empty());
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
