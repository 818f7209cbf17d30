// Playlist documents: items of every kind written and read back in both
// vocabularies, the values that a trip changes on purpose, and hand-written
// documents with items that have no record.
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
using qvtest::ScratchDir;
using qvtest::U16;

void SetHead(QvFRecord& record, std::u16string_view id, std::u16string_view name,
             std::optional<bool> valid) {
  record.id.assign(id);
  record.name = name;
  record.valid = valid;
}

void ExpectHead(const QvFRecord& read, const QvFRecord& written) {
  EXPECT_EQ(read.id.text, written.id.text);
  EXPECT_EQ(read.id.kind, written.id.kind);
  EXPECT_EQ(read.name, written.name);
  EXPECT_EQ(read.valid, std::optional<bool>(written.valid.value_or(false)));
}

void ExpectColor(const QvFColor& read, const QvFColor& written) {
  ExpectHead(read, written);
  EXPECT_EQ(read.a, written.a);
  EXPECT_EQ(read.r, written.r);
  EXPECT_EQ(read.g, written.g);
  EXPECT_EQ(read.b, written.b);
}

void ExpectRegion(const std::optional<QvFRegion>& read, const std::optional<QvFRegion>& written) {
  ASSERT_EQ(read.has_value(), written.has_value());
  if (!read) return;
  ExpectHead(*read, *written);
  EXPECT_EQ(read->x, written->x);
  EXPECT_EQ(read->y, written->y);
  EXPECT_EQ(read->width, written->width);
  EXPECT_EQ(read->height, written->height);
}

// Time as far as it counts, and how the item ends.
void ExpectPlayTime(const QvFPlayTime& read, const QvFPlayTime& written, bool long_form) {
  ExpectHead(read, written);
  EXPECT_EQ(read.time.tm_hour, written.time.tm_hour);
  EXPECT_EQ(read.time.tm_min, written.time.tm_min);
  EXPECT_EQ(read.time.tm_sec, written.time.tm_sec);
  EXPECT_EQ(read.content_end, long_form ? written.content_end : 0);
  EXPECT_EQ(read.timeout, long_form ? written.timeout : 0);
}

void SetPlayTime(QvFPlayTime& play_time, int h, int m, int s, int content_end, int timeout) {
  play_time.time.tm_hour = h;
  play_time.time.tm_min = m;
  play_time.time.tm_sec = s;
  play_time.content_end = content_end;
  play_time.timeout = timeout;
}

QvFColor Colour(int a, int r, int g, int b) {
  QvFColor color;
  color.a = a;
  color.r = r;
  color.g = g;
  color.b = b;
  return color;
}

QvFRegion Region(int x, int y, int width, int height) {
  QvFRegion region;
  region.x = x;
  region.y = y;
  region.width = width;
  region.height = height;
  return region;
}

// One playlist with items of every kind, in a mixed order.
QvFPlaylist MixedPlaylist() {
  QvFPlaylist playlist;
  SetHead(playlist, u"PL0003", u"list", true);

  auto movie = std::make_shared<QvFMovie>();
  SetHead(*movie, u"CT0001", u"film", false);
  movie->ref_content.assign(u"CT0001");
  movie->type = 0;
  movie->aspect = 0;
  movie->volume = -5;
  movie->background_color = Colour(255, 0xd4, 0xf0, 0xff);
  SetHead(movie->background_color, u"", u"behind", true);
  SetPlayTime(movie->play_time, 0, 1, 30, kEndNext, kTimeoutContinue);
  movie->region = Region(1, 2, 300, 400);
  SetHead(*movie->region, u"", u"own", std::nullopt);
  playlist.contents.push_back(movie);

  auto none_coloured = std::make_shared<QvFNone>();
  none_coloured->has_background_color = true;
  none_coloured->background_color = Colour(0, 9, 8, 7);
  SetPlayTime(none_coloured->play_time, 0, 0, 5, 0, 0);
  playlist.contents.push_back(none_coloured);

  auto image = std::make_shared<QvFImage>();
  SetHead(*image, u"", u"picture", std::nullopt);
  image->ref_content.assign(u"CT0002");
  image->type = 2;
  image->aspect = 3;
  image->background_color = Colour(128, 1, 2, 3);
  SetPlayTime(image->play_time, 23, 59, 58, kEndStopBackgroundColor, kTimeoutStop);
  image->image_effect.emplace();
  SetHead(*image->image_effect, u"", u"fx", true);
  image->image_effect->type = kEffectRandom;
  image->image_effect->direction = kDirectionRandom;
  image->image_effect->via_backgroundcolor = true;
  image->image_effect->t = 25;
  image->region = Region(0, 0, 1920, 1080);
  playlist.contents.push_back(image);

  auto plain_image = std::make_shared<QvFImage>();
  plain_image->ref_content.assign(u"CT0003");
  plain_image->type = 3;
  plain_image->aspect = 1;
  SetPlayTime(plain_image->play_time, 0, 0, 10, kEndStopLast, kTimeoutContinue);
  playlist.contents.push_back(plain_image);

  auto telop = std::make_shared<QvFTelop>();
  SetHead(*telop, u"", u"ticker", false);
  telop->ref_content.assign(u"CT0004");
  telop->type = 0;
  telop->aspect = 0;
  SetPlayTime(telop->play_time, 1, 0, 0, kEndLoop, kTimeoutStop);
  playlist.contents.push_back(telop);

  auto none_plain = std::make_shared<QvFNone>();
  SetPlayTime(none_plain->play_time, 0, 2, 0, 0, 0);
  playlist.contents.push_back(none_plain);
  return playlist;
}

class XmlPlaylistTrip : public testing::TestWithParam<bool> {
 protected:
  bool debug() const { return GetParam(); }
  std::string Write(const QvFPlaylist& playlist) {
    const std::string path = dir_.Sub("playlist.xml");
    QvFWriteXml writer(debug());
    writer.outputPlaylist(U16(path), playlist);
    return path;
  }
  QvFPlaylist Read(const std::string& path) {
    QvFReadXml reader(debug());
    return reader.readPlaylist(U16(path));
  }
  QvFPlaylist Trip(const QvFPlaylist& playlist) { return Read(Write(playlist)); }
  const QvFTagTable& Tags() {
    static const QvFTagTable compact;
    static const QvFDebugTagTable full;
    return debug() ? static_cast<const QvFTagTable&>(full) : compact;
  }

  ScratchDir dir_;
};

TEST_P(XmlPlaylistTrip, ItemsOfEveryKindComeBackInOrder) {
  const QvFPlaylist written = MixedPlaylist();
  const QvFPlaylist read = Trip(written);
  ExpectHead(read, written);
  ASSERT_EQ(read.contents.size(), written.contents.size());
  for (size_t i = 0; i < read.contents.size(); ++i) {
    ASSERT_NE(read.contents[i], nullptr);
    EXPECT_EQ(read.contents[i]->kind, written.contents[i]->kind) << i;
  }

  const QvFMovie* movie = AsMovie(read.contents[0].get());
  const QvFMovie* movie_in = AsMovie(written.contents[0].get());
  ASSERT_NE(movie, nullptr);
  ExpectHead(*movie, *movie_in);
  EXPECT_EQ(movie->ref_content.text, u"CT0001");
  EXPECT_EQ(movie->ref_content.kind, kIdContent);
  EXPECT_EQ(movie->type, 0);
  EXPECT_EQ(movie->aspect, 0);
  EXPECT_EQ(movie->volume, -5);
  ExpectColor(movie->background_color, movie_in->background_color);
  ExpectPlayTime(movie->play_time, movie_in->play_time, true);
  ExpectRegion(movie->region, movie_in->region);

  const QvFNone* coloured = AsNone(read.contents[1].get());
  ASSERT_NE(coloured, nullptr);
  EXPECT_TRUE(coloured->has_background_color);
  ExpectColor(coloured->background_color, AsNone(written.contents[1].get())->background_color);
  ExpectPlayTime(coloured->play_time, written.contents[1]->play_time, false);

  const QvFImage* image = AsImage(read.contents[2].get());
  const QvFImage* image_in = AsImage(written.contents[2].get());
  ASSERT_NE(image, nullptr);
  ExpectHead(*image, *image_in);
  EXPECT_EQ(image->ref_content.text, u"CT0002");
  EXPECT_EQ(image->type, 2);
  EXPECT_EQ(image->aspect, 3);
  ExpectColor(image->background_color, image_in->background_color);
  ExpectPlayTime(image->play_time, image_in->play_time, true);
  ExpectRegion(image->region, image_in->region);
  ASSERT_TRUE(image->image_effect.has_value());
  ExpectHead(*image->image_effect, *image_in->image_effect);
  EXPECT_EQ(image->image_effect->type, std::optional<std::int32_t>(kEffectRandom));
  EXPECT_EQ(image->image_effect->direction, kDirectionRandom);
  EXPECT_EQ(image->image_effect->via_backgroundcolor, std::optional<bool>(true));
  EXPECT_EQ(image->image_effect->t, 25);

  const QvFImage* plain = AsImage(read.contents[3].get());
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->type, 3);
  EXPECT_EQ(plain->aspect, 1);
  EXPECT_FALSE(plain->region.has_value());
  EXPECT_FALSE(plain->image_effect.has_value());
  ExpectPlayTime(plain->play_time, written.contents[3]->play_time, true);

  const QvFTelop* telop = AsTelop(read.contents[4].get());
  ASSERT_NE(telop, nullptr);
  ExpectHead(*telop, *written.contents[4]);
  EXPECT_EQ(telop->ref_content.text, u"CT0004");
  EXPECT_EQ(telop->type, 0);
  EXPECT_EQ(telop->aspect, 0);
  ExpectPlayTime(telop->play_time, written.contents[4]->play_time, true);

  const QvFNone* plain_none = AsNone(read.contents[5].get());
  ASSERT_NE(plain_none, nullptr);
  EXPECT_FALSE(plain_none->has_background_color);
  ExpectPlayTime(plain_none->play_time, written.contents[5]->play_time, false);
}

TEST_P(XmlPlaylistTrip, EveryEffectAndDirectionComesBack) {
  QvFPlaylist playlist;
  for (int value = 0; value <= 19; ++value) {
    auto image = std::make_shared<QvFImage>();
    image->image_effect.emplace();
    image->image_effect->type = value <= 18 ? value : 1;
    image->image_effect->direction = value;
    playlist.contents.push_back(image);
  }
  const QvFPlaylist read = Trip(playlist);
  ASSERT_EQ(read.contents.size(), 20u);
  for (int value = 0; value <= 19; ++value) {
    const QvFImage* image = AsImage(read.contents[value].get());
    ASSERT_NE(image, nullptr);
    ASSERT_TRUE(image->image_effect.has_value()) << value;
    EXPECT_EQ(image->image_effect->type, std::optional<std::int32_t>(value <= 18 ? value : 1));
    EXPECT_EQ(image->image_effect->direction, value);
  }
}

TEST_P(XmlPlaylistTrip, ValuesThatTheFormatDoesNotCarry) {
  QvFPlaylist playlist;
  auto movie = std::make_shared<QvFMovie>();  // another movie type, a stretched aspect
  movie->type = 1;
  movie->aspect = 2;
  playlist.contents.push_back(movie);
  auto image = std::make_shared<QvFImage>();  // unknown type and aspect, no effect
  image->type = 4;
  image->aspect = 9;
  image->image_effect.emplace();
  image->image_effect->type = kEffectNone;
  image->image_effect->via_backgroundcolor.reset();
  playlist.contents.push_back(image);
  auto telop = std::make_shared<QvFTelop>();  // its own region and an odd type
  telop->type = 1;
  telop->aspect = 3;
  telop->region = Region(5, 6, 7, 8);
  SetPlayTime(telop->play_time, 0, 0, 1, 99, -1);
  playlist.contents.push_back(telop);
  auto none = std::make_shared<QvFNone>();  // the short play time drops the ending
  SetPlayTime(none->play_time, 0, 0, 2, kEndNext, kTimeoutContinue);
  playlist.contents.push_back(none);
  auto unknown = std::make_shared<QvFNone>();  // a kind that has no record
  unknown->kind = 5;
  playlist.contents.push_back(unknown);
  playlist.contents.push_back(nullptr);
  const std::string path = Write(playlist);

  const QvFTagTable& t = Tags();
  QvFXmlDocument document;
  document.parse(U16(path));
  const xercesc::DOMElement* root = document.root();
  ASSERT_NE(root, nullptr);
  std::vector<const xercesc::DOMElement*> items;
  ForEachChildElement(root, [&](const xercesc::DOMElement* item) { items.push_back(item); });
  ASSERT_EQ(items.size(), 4u);
  const xercesc::DOMElement* m = items[0];
  EXPECT_FALSE(m->hasAttribute(t[tag::kMovieType].c_str()));
  EXPECT_EQ(QvFXmlDocument::getAttribute(m, t[tag::kAspect]), u"0");
  EXPECT_EQ(QvFXmlDocument::getAttribute(m, t[tag::kVolume]), u"0");
  EXPECT_FALSE(m->hasAttribute(t[tag::kRefContent].c_str()));
  const xercesc::DOMElement* i = items[1];
  EXPECT_FALSE(i->hasAttribute(t[tag::kImageType].c_str()));
  EXPECT_FALSE(i->hasAttribute(t[tag::kAspect].c_str()));
  const auto* ie = static_cast<const xercesc::DOMElement*>(
      i->getElementsByTagName(t[tag::kImageEffect].c_str())->item(0));
  ASSERT_NE(ie, nullptr);
  EXPECT_FALSE(ie->hasAttribute(t[tag::kEffectType].c_str()));
  EXPECT_FALSE(ie->hasAttribute(t[tag::kViaBackgroundColor].c_str()));
  // Direction 0 has a word and is written, unlike effect 0.
  EXPECT_EQ(QvFXmlDocument::getAttribute(ie, t[tag::kDirection]), t[tag::kDirectionFirst]);
  EXPECT_EQ(QvFXmlDocument::getAttribute(ie, t[tag::kEffectTime]), u"0");
  const xercesc::DOMElement* tel = items[2];
  EXPECT_EQ(TagName(tel), t[tag::kTelop]);
  EXPECT_EQ(tel->getElementsByTagName(t[tag::kRegion].c_str())->getLength(), 0u);
  const xercesc::DOMElement* none_element = items[3];
  EXPECT_EQ(TagName(none_element), t[tag::kNone]);
  EXPECT_EQ(none_element->getElementsByTagName(t[tag::kBackgroundColor].c_str())->getLength(), 0u);
  const xercesc::DOMElement* short_pt = FirstChildElement(none_element);
  EXPECT_EQ(TagName(short_pt), t[tag::kPlayTime]);
  EXPECT_EQ(QvFXmlDocument::getAttribute(short_pt, t[tag::kTime]), u"00:00:02");
  EXPECT_FALSE(short_pt->hasAttribute(t[tag::kContentEnd].c_str()));
  EXPECT_FALSE(short_pt->hasAttribute(t[tag::kTimeout].c_str()));
  document.release();

  const QvFPlaylist read = Read(path);
  ASSERT_EQ(read.contents.size(), 4u);
  const QvFMovie* movie_back = AsMovie(read.contents[0].get());
  ASSERT_NE(movie_back, nullptr);
  EXPECT_EQ(movie_back->type, 1);
  EXPECT_EQ(movie_back->aspect, 0);
  const QvFImage* image_back = AsImage(read.contents[1].get());
  ASSERT_NE(image_back, nullptr);
  ASSERT_TRUE(image_back->image_effect.has_value());
  EXPECT_EQ(image_back->image_effect->type, std::optional<std::int32_t>(0));
  EXPECT_EQ(image_back->image_effect->via_backgroundcolor, std::optional<bool>(false));
  const QvFTelop* telop_back = AsTelop(read.contents[2].get());
  ASSERT_NE(telop_back, nullptr);
  EXPECT_EQ(telop_back->type, 1);
  EXPECT_EQ(telop_back->aspect, 0);
  EXPECT_FALSE(telop_back->region.has_value());
  EXPECT_EQ(telop_back->play_time.content_end, 0);
  EXPECT_EQ(telop_back->play_time.timeout, 0);
  const QvFNone* none_back = AsNone(read.contents[3].get());
  ASSERT_NE(none_back, nullptr);
  EXPECT_EQ(none_back->play_time.content_end, 0);
  EXPECT_EQ(none_back->play_time.timeout, 0);
  EXPECT_EQ(none_back->play_time.time.tm_sec, 2);
}

TEST_P(XmlPlaylistTrip, EmptyPlaylistIsARootAlone) {
  QvFPlaylist playlist;
  const std::string path = Write(playlist);
  QvFXmlDocument document;
  document.parse(U16(path));
  EXPECT_EQ(TagName(document.root()), Tags()[tag::kPlaylistRoot]);
  EXPECT_EQ(FirstChildElement(document.root()), nullptr);
  EXPECT_TRUE(Read(path).contents.empty());
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlPlaylistTrip, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Debug" : "Compact";
                         });

// ---- Hand-written documents ------------------------------------------------

QvFPlaylist ReadText(const ScratchDir& dir, const std::string& text, bool debug = false) {
  const std::string path = dir.Sub("hand.xml");
  qvtest::WriteFile(path, text);
  QvFReadXml reader(debug);
  return reader.readPlaylist(U16(path));
}

TEST(XmlPlaylistRead, ItemsWithoutARecordAreLeftOutWithAllTheyHold) {
  ScratchDir dir;
  const QvFPlaylist read = ReadText(
      dir,
      "<pl i=\"PL1\"><o><m rc=\"CT9\"/></o><c/><u><i/></u><a/><p><t/></p>"
      "<cc><n/></cc><x/><t rc=\"CT2\"/><pl><m/></pl><n/></pl>");
  EXPECT_EQ(read.id.text, u"PL1");
  ASSERT_EQ(read.contents.size(), 2u);
  EXPECT_EQ(read.contents[0]->kind, kContentTelop);
  EXPECT_EQ(read.contents[1]->kind, kContentNone);

  // The debug vocabulary skips the same kinds by their long names.
  const QvFPlaylist debug = ReadText(
      dir,
      "<playlist><others/><command/><url/><audio/><pip/><conditional_content><movie/>"
      "</conditional_content><telop/><none/><movie/><image/></playlist>",
      true);
  ASSERT_EQ(debug.contents.size(), 4u);
  EXPECT_EQ(debug.contents[0]->kind, kContentTelop);
  EXPECT_EQ(debug.contents[3]->kind, kContentImage);
}

TEST(XmlPlaylistRead, WordsAndTheirFallbacks) {
  ScratchDir dir;
  const QvFPlaylist read = ReadText(
      dir,
      "<pl>"
      "<m tp=\"avi\" a=\"2\"><pt t=\"0:1:2\" ce=\"sb\" to=\"c\"/><re x=\"4\"/></m>"
      "<m tp=\"mp4\" a=\"0\" vo=\" 12x\"><pt ce=\"next\" to=\"continue\"/></m>"
      "<i tp=\"tiff\" a=\"7\"><ie tp=\"wipe\" d=\"none\" vbc=\"t\" t=\"3\"/></i>"
      "<i tp=\"png\" a=\"1\"><ie tp=\"fd\" d=\"no\"/></i>"
      "<i><ie d=\"ccin\" t=\"\"/></i>"
      "<t tp=\"txt\"><bc c=\"not a colour\"/><re w=\"9\"/></t>"
      "<t tp=\"tlp\" a=\"0\"/>"
      "<n><pt t=\"0:0:7\" ce=\"n\" to=\"c\"/><bc c=\"#11223344\"/></n>"
      "</pl>");
  ASSERT_EQ(read.contents.size(), 8u);
  const QvFMovie* other_movie = AsMovie(read.contents[0].get());
  EXPECT_EQ(other_movie->type, 1);
  EXPECT_EQ(other_movie->aspect, 2);
  EXPECT_EQ(other_movie->play_time.time.tm_sec, 2);
  EXPECT_EQ(other_movie->play_time.content_end, kEndStopBackgroundColor);
  EXPECT_EQ(other_movie->play_time.timeout, kTimeoutContinue);
  ASSERT_TRUE(other_movie->region.has_value());
  EXPECT_EQ(other_movie->region->x, 4);
  const QvFMovie* mp4 = AsMovie(read.contents[1].get());
  EXPECT_EQ(mp4->type, 0);
  EXPECT_EQ(mp4->aspect, 0);
  EXPECT_EQ(mp4->volume, 12);
  EXPECT_FALSE(mp4->region.has_value());
  // Debug words in a compact document are unknown words.
  EXPECT_EQ(mp4->play_time.content_end, kEndStopLast);
  EXPECT_EQ(mp4->play_time.timeout, kTimeoutStop);

  const QvFImage* odd = AsImage(read.contents[2].get());
  EXPECT_EQ(odd->type, 4);
  EXPECT_EQ(odd->aspect, 2);
  ASSERT_TRUE(odd->image_effect.has_value());
  EXPECT_EQ(odd->image_effect->type, std::optional<std::int32_t>(kEffectNone));
  EXPECT_EQ(odd->image_effect->direction, kDirectionNone);
  EXPECT_EQ(odd->image_effect->via_backgroundcolor, std::optional<bool>(true));
  EXPECT_EQ(odd->image_effect->t, 3);
  const QvFImage* png = AsImage(read.contents[3].get());
  EXPECT_EQ(png->type, 1);
  EXPECT_EQ(png->aspect, 1);
  EXPECT_EQ(png->image_effect->type, std::optional<std::int32_t>(kEffectFade));
  EXPECT_EQ(png->image_effect->via_backgroundcolor, std::optional<bool>(false));
  const QvFImage* bare = AsImage(read.contents[4].get());
  EXPECT_EQ(bare->image_effect->direction, kDirectionCounterClockIn);
  EXPECT_EQ(bare->image_effect->t, 0);

  // A telop's colour is passed over, even one that would not parse.
  const QvFTelop* telop = AsTelop(read.contents[5].get());
  EXPECT_EQ(telop->type, 1);
  EXPECT_EQ(telop->aspect, 2);
  ASSERT_TRUE(telop->region.has_value());
  EXPECT_EQ(telop->region->width, 9);
  EXPECT_EQ(AsTelop(read.contents[6].get())->type, 0);

  const QvFNone* none = AsNone(read.contents[7].get());
  EXPECT_TRUE(none->has_background_color);
  EXPECT_EQ(none->background_color.a, 0x11);
  EXPECT_EQ(none->background_color.b, 0x44);
  EXPECT_EQ(none->play_time.time.tm_sec, 7);
  EXPECT_EQ(none->play_time.content_end, kEndNext);
  EXPECT_EQ(none->play_time.timeout, kTimeoutContinue);
}

TEST(XmlPlaylistRead, DebugWordsInADebugDocument) {
  ScratchDir dir;
  const QvFPlaylist read = ReadText(
      dir,
      "<playlist><image type=\"gif\" aspect=\"3\"><image_effect type=\"mozaic\" "
      "direction=\"none\" via_backgroundcolor=\"t\"/><play_time content_end=\"stop_last\" "
      "timeout=\"continue\"/></image></playlist>",
      true);
  ASSERT_EQ(read.contents.size(), 1u);
  const QvFImage* image = AsImage(read.contents[0].get());
  EXPECT_EQ(image->type, 2);
  EXPECT_EQ(image->aspect, 3);
  EXPECT_EQ(image->image_effect->type, std::optional<std::int32_t>(kEffectMozaic));
  EXPECT_EQ(image->image_effect->direction, kDirectionNone);
  // The compact word for true is no true in a debug document.
  EXPECT_EQ(image->image_effect->via_backgroundcolor, std::optional<bool>(false));
  EXPECT_EQ(image->play_time.content_end, kEndStopLast);
  EXPECT_EQ(image->play_time.timeout, kTimeoutContinue);
}

TEST(XmlPlaylistRead, FailuresOfTheFileAndOfAColour) {
  ScratchDir dir;
  int code = 0;
  try {
    ReadText(dir, "<pl><m></pl>");
  } catch (QvConvException* e) {
    code = e->code();
  }
  EXPECT_EQ(code, -300);
  EXPECT_THROW(ReadText(dir, "<pl><m><bc c=\"ffffff\"/></m></pl>"), std::out_of_range);
  EXPECT_THROW(ReadText(dir, "<pl><n><bc c=\"0X112233\"/></n></pl>"), std::out_of_range);
  // A root of another name gives an empty playlist.
  const QvFPlaylist other = ReadText(dir, "<pgp i=\"PL1\"><m/></pgp>");
  EXPECT_TRUE(other.id.text.empty());
  EXPECT_TRUE(other.contents.empty());
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
