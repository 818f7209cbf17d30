// Program and playlist documents: records written, read back and written
// again in both vocabularies, the values a trip drops on purpose, and
// hand-written documents with elements in any order or of unknown kinds.
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/qv_conv_exception.h"
#include "model/qvf_records.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvconv::converter::QvConvException;
using qvtest::U16;
using xercesc::DOMElement;
using Int = std::optional<std::int32_t>;
using Flag = std::optional<bool>;

std::tm FixedNow() {
  std::tm t{};
  t.tm_year = 131;
  return t;
}

template <typename Record>
Record& Head(Record& record, std::u16string_view name, Flag valid) {
  record.name = name;
  record.valid = valid;
  return record;
}

QvFRegion Region(int x, int y, int width, int height) {
  QvFRegion region;
  region.x = x, region.y = y, region.width = width, region.height = height;
  return Head(region, u"r", false);
}

QvFColor Colour(int a, int r, int g, int b) {
  QvFColor color;
  color.a = a, color.r = r, color.g = g, color.b = b;
  return Head(color, u"c", true);
}

void SetPlayTime(QvFPlayTime& play_time, int seconds, int content_end, int timeout) {
  play_time.time.tm_hour = seconds / 3600;
  play_time.time.tm_min = seconds / 60 % 60;
  play_time.time.tm_sec = seconds % 60;
  play_time.content_end = content_end;
  play_time.timeout = timeout;
  play_time.valid = true;
}

// The item at `index` as the record its kind names; a missing item or another
// kind fails the test.
template <typename Record>
const Record& Item(const QvFPlaylist& playlist, size_t index) {
  const QvFContent* item =
      index < playlist.contents.size() ? playlist.contents[index].get() : nullptr;
  if (item == nullptr || item->kind != Record().kind) {
    throw std::runtime_error("no item of that kind at " + std::to_string(index));
  }
  return static_cast<const Record&>(*item);
}

std::vector<const DOMElement*> Children(const DOMElement* parent) {
  std::vector<const DOMElement*> children;
  ForEachChildElement(parent, [&](const DOMElement* child) { children.push_back(child); });
  return children;
}

class XmlProgramPlaylistTrip : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override { SetQvFClock(&FixedNow); }
  void TearDown() override { SetQvFClock(nullptr); }

  // Writes the record and reads it back; the written bytes go to `bytes`.
  std::unique_ptr<QvFProgram> Trip(const QvFProgram& program, std::string& bytes) {
    QvFWriteXml(GetParam()).outputProgram(U16(path_), program);
    bytes = qvtest::ReadFile(path_);
    return QvFReadXml(GetParam()).readProgram(U16(path_));
  }
  QvFPlaylist Trip(const QvFPlaylist& playlist, std::string& bytes) {
    QvFWriteXml(GetParam()).outputPlaylist(U16(path_), playlist);
    bytes = qvtest::ReadFile(path_);
    return QvFReadXml(GetParam()).readPlaylist(U16(path_));
  }
  // The element children of the root last written.
  std::vector<const DOMElement*> WrittenItems() {
    document_.parse(U16(path_));
    return Children(document_.root());
  }
  std::u16string At(const DOMElement* element, int index) {
    return QvFXmlDocument::getAttribute(element, tags_[index]);
  }
  bool Has(const DOMElement* element, int index) {
    return element->hasAttribute(tags_[index].c_str());
  }

  qvtest::ScratchDir dir_;
  std::string path_ = dir_.Sub("document.xml");
  QvFXmlDocument document_;
  const QvFTagTable& tags_ = GetParam() ? static_cast<const QvFTagTable&>(debug_table_) : compact_;
  static inline const QvFTagTable compact_;
  static inline const QvFDebugTagTable debug_table_;
};

// A record whose every value the format carries is written back byte for
// byte after a trip.
TEST_P(XmlProgramPlaylistTrip, ProgramComesBackWhole) {
  QvFProgram written;
  Head(written, u"Morning", true).id.assign(u"PG0001");
  QvFProgramInfo& info = Head(written.program_info, u"frame 日本", false);
  info.id.assign(u"PG0001");
  info.program_time.tm_hour = 13, info.program_time.tm_min = 5, info.program_time.tm_sec = 9;
  info.layout_lock = true;
  info.region = Region(-10, 20, 3840, 2160);
  info.background_color = Colour(128, 1, 2, 255);
  Head(written.pane_info, u"panes", true);
  for (int type = 0; type < 4; ++type) {
    QvFPane& pane = Head(written.pane_info.panes.emplace_back(), u"pane", type % 2 == 0);
    pane.region = Region(100 * type, 7, 640, 360 + type);
    Head(pane.playlist_file, u"", true).ref_playlist.assign(u"PL" + std::u16string(1, u'1' + type));
    pane.playlist_file.type = type;
    pane.playlist_file.mute = type == 1;
  }
  std::string first, second;
  const std::unique_ptr<QvFProgram> read = Trip(written, first);
  Trip(*read, second);
  EXPECT_EQ(second, first);
  EXPECT_EQ(read->program_info.background_color.a, 128);
  ASSERT_EQ(read->pane_info.panes.size(), 4u);
  EXPECT_EQ(read->pane_info.panes[2].playlist_file.ref_playlist.kind, kIdPlaylist);
  EXPECT_EQ(read->pane_info.panes[3].playlist_file.type, Int(3));
}

TEST_P(XmlProgramPlaylistTrip, ProgramAttributesWrittenOnlyWhenTheyHoldSomething) {
  QvFProgram program;
  program.program_info.layout_lock.reset();
  program.program_info.playlist_file.ref_playlist.assign(u"PL9999");
  program.pane_info.panes.emplace_back().playlist_file.ref_playlist.assign(u"PL0001");
  QvFPlaylistFile& odd = program.pane_info.panes.emplace_back().playlist_file;
  odd.type = 7;
  odd.mute.reset();
  std::string bytes;
  const std::unique_ptr<QvFProgram> read = Trip(program, bytes);

  const std::vector<const DOMElement*> root = WrittenItems();
  ASSERT_EQ(root.size(), 2u);  // the frame, and the pane list
  EXPECT_EQ(Children(root[0]).size(), 2u);  // the frame's own playlist reference is not written
  EXPECT_FALSE(Has(root[0], tag::kLayoutLock));
  const std::vector<const DOMElement*> panes = Children(root[1]);
  ASSERT_EQ(panes.size(), 2u);
  const std::vector<const DOMElement*> first = Children(panes[0]);
  ASSERT_EQ(first.size(), 2u);
  // A pane without a region writes all four numbers and no head.
  EXPECT_EQ(At(first[0], tag::kWidth), u"0");
  EXPECT_FALSE(Has(first[0], tag::kId) || Has(first[0], tag::kValid));
  EXPECT_FALSE(Has(first[1], tag::kPaneType));
  EXPECT_EQ(At(first[1], tag::kMute), tags_[tag::kFalse]);
  const DOMElement* odd_plf = Children(panes[1])[1];
  EXPECT_FALSE(Has(odd_plf, tag::kRefPlaylist) || Has(odd_plf, tag::kPaneType) ||
               Has(odd_plf, tag::kMute));

  EXPECT_TRUE(read->program_info.playlist_file.ref_playlist.text.empty());
  EXPECT_EQ(read->program_info.layout_lock, Flag(false));
  EXPECT_EQ(read->valid, Flag(false));  // an absent valid comes back false
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, Int(0));
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.mute, Flag(false));

  Trip(QvFProgram(), bytes);
  EXPECT_EQ(WrittenItems().size(), 2u);  // the pane list stands even without panes
}

TEST_P(XmlProgramPlaylistTrip, PlaylistItemsOfEveryKindComeBackWhole) {
  QvFPlaylist written;
  Head(written, u"list", true).id.assign(u"PL0003");
  auto movie = std::make_shared<QvFMovie>();
  Head(*movie, u"film", false).ref_content.assign(u"CT0001");
  movie->volume = -5;
  movie->background_color = Colour(255, 0xd4, 0xf0, 0xff);
  SetPlayTime(movie->play_time, 90, kEndNext, kTimeoutContinue);
  movie->region = Region(1, 2, 300, 400);
  auto coloured = std::make_shared<QvFNone>();
  Head(*coloured, u"", true).has_background_color = true;
  coloured->background_color = Colour(0, 9, 8, 7);
  SetPlayTime(coloured->play_time, 5, 0, 0);
  auto image = std::make_shared<QvFImage>();
  Head(*image, u"picture", true).ref_content.assign(u"CT0002");
  image->type = 2, image->aspect = 3;
  image->background_color = Colour(128, 1, 2, 3);
  SetPlayTime(image->play_time, 86398, kEndStopBackgroundColor, kTimeoutStop);
  QvFImageEffect& effect = Head(image->image_effect.emplace(), u"fx", true);
  effect.type = kEffectRandom, effect.direction = kDirectionRandom, effect.t = 25;
  effect.via_backgroundcolor = true;
  image->region = Region(0, 0, 1920, 1080);
  auto telop = std::make_shared<QvFTelop>();
  Head(*telop, u"ticker", false).ref_content.assign(u"CT0004");
  SetPlayTime(telop->play_time, 3600, kEndLoop, kTimeoutStop);
  written.contents = {movie, coloured, image, telop};
  // Every effect from 1 and every direction, one image each.
  for (int value = 1; value <= 19; ++value) {
    auto fx = std::make_shared<QvFImage>();
    Head(*fx, u"", true).image_effect.emplace().type = value <= 18 ? value : 1;
    Head(*fx->image_effect, u"", true).direction = value == 19 ? 0 : value;
    fx->image_effect->via_backgroundcolor = false;
    SetPlayTime(fx->play_time, value, kEndStopLast, kTimeoutContinue);
    Head(fx->background_color, u"", true);
    written.contents.push_back(fx);
  }
  std::string first, second;
  const QvFPlaylist read = Trip(written, first);
  Trip(read, second);
  EXPECT_EQ(second, first);

  ASSERT_EQ(read.contents.size(), written.contents.size());
  EXPECT_EQ(Item<QvFMovie>(read, 0).volume, -5);
  EXPECT_EQ(Item<QvFMovie>(read, 0).ref_content.kind, kIdContent);
  EXPECT_TRUE(Item<QvFNone>(read, 1).has_background_color);
  EXPECT_EQ(Item<QvFImage>(read, 2).image_effect->type, Int(kEffectRandom));
  EXPECT_EQ(Item<QvFImage>(read, 2).play_time.content_end, kEndStopBackgroundColor);
  for (int value = 1; value <= 19; ++value) {
    const QvFImage& fx = Item<QvFImage>(read, 3 + value);
    EXPECT_EQ(fx.image_effect->type, Int(value <= 18 ? value : 1));
    EXPECT_EQ(fx.image_effect->direction, value == 19 ? 0 : value);
  }
}

TEST_P(XmlProgramPlaylistTrip, PlaylistValuesThatTheFormatDoesNotCarry) {
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
  SetPlayTime(none->play_time, 1, kEndNext, kTimeoutStop);  // written in the short form
  auto unknown = std::make_shared<QvFNone>();
  unknown->kind = 5;  // a kind without a record writes nothing
  playlist.contents = {movie, image, telop, none, unknown, nullptr};
  std::string bytes;
  const QvFPlaylist read = Trip(playlist, bytes);

  const std::vector<const DOMElement*> items = WrittenItems();
  ASSERT_EQ(items.size(), 4u);
  // Direction 0 has a word and is written, unlike effect 0.
  const DOMElement* effect = Children(items[1]).at(2);
  EXPECT_FALSE(Has(effect, tag::kEffectType) || Has(effect, tag::kViaBackgroundColor));
  EXPECT_EQ(At(effect, tag::kDirection), tags_[tag::kDirectionFirst]);
  EXPECT_EQ(Children(items[2]).size(), 1u);  // a telop's play time alone, no region

  ASSERT_EQ(read.contents.size(), 4u);
  EXPECT_EQ(Item<QvFMovie>(read, 0).type * 10 + Item<QvFMovie>(read, 0).aspect, 10);
  EXPECT_EQ(Item<QvFImage>(read, 1).type + Item<QvFImage>(read, 1).aspect, 0);  // out of range
  EXPECT_EQ(Item<QvFImage>(read, 1).image_effect->type, Int(0));
  EXPECT_EQ(Item<QvFImage>(read, 1).image_effect->via_backgroundcolor, Flag(false));
  const QvFTelop& telop_back = Item<QvFTelop>(read, 2);
  EXPECT_EQ(std::vector({telop_back.type, telop_back.aspect}), std::vector({1, 0}));
  EXPECT_FALSE(telop_back.region.has_value());
  EXPECT_EQ(telop_back.play_time.content_end, 0);
  EXPECT_EQ(Item<QvFNone>(read, 3).play_time.timeout, 0);

  Trip(QvFPlaylist(), bytes);
  EXPECT_TRUE(WrittenItems().empty());
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlProgramPlaylistTrip, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Debug" : "Compact";
                         });

class XmlProgramPlaylistRead : public testing::Test {
 protected:
  std::unique_ptr<QvFProgram> Program(const std::string& text, bool debug = false) {
    qvtest::WriteFile(path_, text);
    return QvFReadXml(debug).readProgram(U16(path_));
  }
  QvFPlaylist Playlist(const std::string& text, bool debug = false) {
    qvtest::WriteFile(path_, text);
    return QvFReadXml(debug).readPlaylist(U16(path_));
  }

  qvtest::ScratchDir dir_;
  std::string path_ = dir_.Sub("hand.xml");
};

TEST_F(XmlProgramPlaylistRead, ProgramElementsInAnyOrder) {
  const auto read = Program(
      "<pgp i=\"PG0002\" v=\"t\"><!-- panes first -->"
      "<pai><x/><pa n=\"p1\"><plf rl=\"PL0007\" tp=\"t\" mt=\"t\"><pa/></plf>"
      "<re x=\"1\" y=\"2\"/><re x=\"5\"/></pa><pg><pa/></pg><pa><plf tp=\"contents\"/></pa></pai>"
      "<pgi pgt=\"1:2:3\" lk=\"true\"><plf rl=\"PL0009\" tp=\"s\"/><bc c=\"0x102030\"/>"
      "<re w=\"10\"/></pgi></pgp>");
  EXPECT_EQ(read->valid, Flag(true));
  const QvFProgramInfo& info = read->program_info;
  EXPECT_EQ(info.program_time.tm_min, 2);
  EXPECT_EQ(info.layout_lock, Flag(false));  // the debug word is no true here
  EXPECT_EQ(info.playlist_file.ref_playlist.text, u"PL0009");
  EXPECT_EQ(info.playlist_file.type, Int(kPaneSound));
  EXPECT_EQ(info.background_color.g, 0x20);
  EXPECT_EQ(info.region.width, 10);
  // Nested panes and panes outside the list are no panes of the program.
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  const QvFPane& first = read->pane_info.panes[0];
  EXPECT_EQ(first.playlist_file.ref_playlist.text, u"PL0007");
  EXPECT_EQ(first.playlist_file.type, Int(kPaneTelop));
  EXPECT_EQ(first.playlist_file.mute, Flag(true));
  EXPECT_EQ(std::vector({first.region.x, first.region.y}), std::vector({5, 0}));  // the last
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, Int(0));  // an unknown word
}

TEST_F(XmlProgramPlaylistRead, PlaylistItemsWithoutARecordAreLeftOut) {
  const QvFPlaylist read = Playlist(
      "<pl i=\"PL1\"><o><m/></o><c/><u><i/></u><a/><p><t/></p><cc><n/></cc><x/>"
      "<t rc=\"CT2\"/><pl><m/></pl><n/></pl>");
  ASSERT_EQ(read.contents.size(), 2u);
  EXPECT_EQ(read.contents[0]->kind, kContentTelop);
  EXPECT_EQ(read.contents[1]->kind, kContentNone);
  const QvFPlaylist debug = Playlist(
      "<playlist><others/><command/><url/><audio/><pip/><conditional_content><movie/>"
      "</conditional_content><telop/><none/><movie/><image/></playlist>",
      true);
  ASSERT_EQ(debug.contents.size(), 4u);
  EXPECT_EQ(debug.contents[0]->kind, kContentTelop);
  EXPECT_EQ(debug.contents[3]->kind, kContentImage);
}

TEST_F(XmlProgramPlaylistRead, PlaylistWordsAndTheirFallbacks) {
  const QvFPlaylist read = Playlist(
      "<pl><m tp=\"avi\" a=\"2\"><pt t=\"0:1:2\" ce=\"sb\" to=\"c\"/></m>"
      "<m vo=\" 12x\"><pt ce=\"next\" to=\"continue\"/></m>"
      "<i tp=\"tiff\" a=\"7\"><ie tp=\"wipe\" d=\"none\" vbc=\"t\" t=\"3\"/></i>"
      "<t tp=\"txt\"><bc c=\"not a colour\"/><re w=\"9\"/></t>"
      "<n><pt t=\"0:0:7\" ce=\"n\" to=\"c\"/><bc c=\"#11223344\"/></n></pl>");
  ASSERT_EQ(read.contents.size(), 5u);
  const QvFMovie& other = Item<QvFMovie>(read, 0);
  EXPECT_EQ(std::vector({other.type, other.aspect, other.play_time.time.tm_sec,
                         other.play_time.content_end, other.play_time.timeout}),
            std::vector({1, 2, 2, 2, 1}));
  // Debug words in a compact document are unknown: stop_last and stop.
  const QvFMovie& bare = Item<QvFMovie>(read, 1);
  EXPECT_EQ(std::vector({bare.type, bare.aspect, bare.volume, bare.play_time.content_end,
                         bare.play_time.timeout}),
            std::vector({1, 2, 12, 1, 0}));
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
}

TEST_F(XmlProgramPlaylistRead, BadColoursAndForeignRoots) {
  EXPECT_THROW(Program("<pgp><pgi><bc c=\"102030\"/></pgi></pgp>"), std::out_of_range);
  EXPECT_THROW(Playlist("<pl><n><bc c=\"0X112233\"/></n></pl>"), std::out_of_range);
  // A root of another name, or of the other vocabulary, gives an empty record.
  EXPECT_TRUE(Playlist("<pgp i=\"PL1\"><m/></pgp>").contents.empty());
  EXPECT_TRUE(Playlist("<playlist><movie/></playlist>").contents.empty());
  const auto other = Program("<program><pane_info><pane/></pane_info></program>");
  EXPECT_TRUE(other->pane_info.panes.empty());
  EXPECT_EQ(other->program_info.layout_lock, Flag(false));
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
