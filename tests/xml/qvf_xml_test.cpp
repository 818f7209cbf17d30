// The XML layer: parsing (also of hostile files) and the bytes written; programs and playlists in
// round trips in both vocabularies, and hand-written documents with the rules of walking them.
#include "model/qvf_records.h"
#include "tests/support/test_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::U16;
using Int = std::optional<std::int32_t>;

// Parses a file (`text` written into d.xml, or the path in `file`): the code of the failure, or 0;
// `bytes` gets the document written again.
int ParseCode(const std::string& text, std::string* bytes = nullptr, const char* file = nullptr) {
  qvtest::ScratchDir dir;
  if (!file) qvtest::WriteFile(dir.Sub("d.xml"), text);
  return qvtest::CodeOf([&] {
    QvFXmlDocument document;
    document.parse(U16(file ? file : dir.Sub("d.xml")));
    if (bytes) *bytes = document.serializeToBytes(false);
  });
}

TEST(XmlDocument, WritesAttributesByTheEmptyValueRuleAsUtf8) {
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  EXPECT_EQ(document.addAttribute(root, u"target_input", u""), nullptr);  // empty: not written
  document.addAttribute(root, u"n", u"日本");
  document.appendElement(document.appendElement(root, u"sl"), u"s");
  EXPECT_EQ(document.serializeToBytes(false),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"
            "<qv n=\"\xE6\x97\xA5\xE6\x9C\xAC\"><sl><s/></sl></qv>");
  // Text that XML cannot carry fails cleanly.
  document.addAttribute(root, u"n", std::u16string(u"a") + char16_t{1});
  EXPECT_THROW(document.serializeToBytes(false), std::runtime_error);
  EXPECT_THROW(document.appendElement(root, u"not a name"), std::runtime_error);
}

TEST(XmlDocument, WhatParsesAndWhatIs300) {
  for (const char* bad :
       {"", "just some text", "<qv><sl></qv>", "<qv/><qv/>", "<qv n=\"&nothing;\"/>"})
    EXPECT_EQ(ParseCode(bad), -300) << bad;
  EXPECT_EQ(ParseCode("", nullptr, "/nonexistent/d.xml") + ParseCode("", nullptr, "/"), -600);
  // No grammar and any root: validation errors are dropped; a few internal entity expansions are
  // ordinary XML.
  EXPECT_EQ(ParseCode("<?xml version=\"1.0\"?><!-- c --><p:any xmlns:p=\"urn:x\" x=\"1\">"
                      "<y/></p:any>"),
            0);
  std::string bytes;
  ParseCode("\xEF\xBB\xBF<!DOCTYPE qv [<!ENTITY w \"word\">]><qv n=\"&w;&w;\"/>", &bytes);
  EXPECT_NE(bytes.find("<qv n=\"wordword\"/>"), std::string::npos);
}

// The item at `index` as the record its kind names; another kind fails.
template <typename Record>
const Record& Item(const QvFPlaylist& playlist, size_t index) {
  const QvFContent* item =
      index < playlist.contents.size() ? playlist.contents[index].get() : nullptr;
  if (item == nullptr || item->kind != Record().kind) throw std::runtime_error("no such item");
  return static_cast<const Record&>(*item);
}

// Programs and playlists in the compact vocabulary, or in the debug one where GetParam() says so.
class XmlVocabularies : public testing::TestWithParam<bool> {
 protected:
  // Writes the record, reads it back and writes that again: the same bytes, but that an absent
  // valid flag comes back as a present false.  Gives what was read.
  template <typename Record>
  auto Trip(const Record& record) {
    Write(record);
    const std::string first = Body();
    auto read = Read(record);
    Write(read);
    const std::vector<std::string> flags = {" valid=\"false\"", " v=\"f\"", " valid=\"f\"",
                                            " v=\"false\""};
    EXPECT_EQ(qvtest::EraseAll(Body(), flags), qvtest::EraseAll(first, flags));
    return read;
  }
  void Write(const QvFProgram& r) { QvFWriteXml(GetParam()).outputProgram(U16(path_), r); }
  void Write(const std::unique_ptr<QvFProgram>& r) { Write(*r); }
  void Write(const QvFPlaylist& r) { QvFWriteXml(GetParam()).outputPlaylist(U16(path_), r); }
  auto Read(const QvFProgram&) { return QvFReadXml(GetParam()).readProgram(U16(path_)); }
  auto Read(const QvFPlaylist&) { return QvFReadXml(GetParam()).readPlaylist(U16(path_)); }
  std::string Body() {
    const std::string b = qvtest::ReadFile(path_);
    return b.substr(b.find("?>") + 2);
  }

  qvtest::FixedClock clock_{qvtest::Tm(2031, 7, 4, 5, 6, 7)};
  qvtest::ScratchDir dir_;
  std::string path_ = dir_.Sub("document.xml");
};

// Programs and playlists of every field, effect and direction.  (Schedules and time tables: the
// sample through both vocabularies, tests/blackbox/command_line_test.cpp.)
TEST_P(XmlVocabularies, RecordsComeBackWhole) {
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
  Trip(program);

  QvFPlaylist playlist;
  auto movie = std::make_shared<QvFMovie>();
  movie->ref_content.assign(u"CT0001"), movie->volume = -5;
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
  EXPECT_EQ(Item<QvFMovie>(Trip(playlist), 0).volume, -5);
}

INSTANTIATE_TEST_SUITE_P(DebugIsTrue, XmlVocabularies, testing::Bool(),
                         testing::PrintToStringParamName());

// Hand-written documents with the rules of walking them.  (What the writer always writes, and
// what never: the outlines of whole conversions, tests/blackbox/conversion_test.cpp.)
TEST(XmlDocuments, HandWrittenDocuments) {
  qvtest::ScratchDir dir;
  const auto write = [&](const std::string& text) {
    return qvtest::WriteFile(dir.Sub("d.xml"), text), U16(dir.Sub("d.xml"));
  };
  // Only element nodes count; the second list is not read; only "true" in any casing (or "t") is a
  // true default.
  QvFReadXml reader(false);
  const auto entries =
      reader
          .readSchedule(write("<qv><!-- c -->\n  <sl><s df=\"t\" dt=\"2024/3/9\"/>"
                              "<s df=\"TRUE\"/><s df=\"1\"/><x/><s/></sl><sl><s/></sl></qv>"))
          .schedule_list.schedules;
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(entries[0].date.tm_mon * 100 + entries[0].date.tm_mday, 209);
  EXPECT_TRUE(entries[0].default_ && entries[1].default_ && !entries[2].default_);

  // Two lists add up; within a table the last row of a kind stands, and a
  // table may hold both kinds; unknown children and attributes pass.
  const auto hand = reader.readTimeTable(write(
      "<tt><tl><tb><pg rp=\"PG1\"/><pg rp=\"PG2\" st=\"7:5:1\"/><co tp=\"abc\" ti=\"x\"/><zz/></tb>"
      "</tl><other/><tl><tb/><tb><co tp=\"12\"/><co st=\"10:11\"/></tb></tl></tt>"));
  const auto& rows = hand->table_list.tables;
  ASSERT_TRUE(rows.size() == 3 && rows[0].program && rows[0].command && rows[2].command);
  // "abc" reads as 0; the second command replaced the first; "7:5:1" is read.
  EXPECT_EQ(std::vector({rows[0].command->type, rows[2].command->type,
                         rows[2].command->start_time.tm_min, rows[0].program->start_time.tm_min}),
            std::vector({0, 0, 11, 5}));

  // Programs and playlists in any order, with unknown words and bad colours.
  const auto read = reader.readProgram(
      write("<pgp><!-- panes first --><pai><x/><pa><plf tp=\"t\"><pa/></plf><re x=\"1\" y=\"2\"/>"
            "<re x=\"5\"/></pa><pg><pa/></pg><pa><plf tp=\"contents\"/></pa></pai><pgi>"
            "<plf tp=\"s\"/></pgi></pgp>"));
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
  const QvFPlaylist playlist = reader.readPlaylist(
      write("<pl><o><m/></o><c/><u><i/></u><a/><p><t/></p><cc><n/></cc><x/><m vo=\" 12x\">"
            "<pt ce=\"next\" to=\"continue\"/></m><i tp=\"tiff\" a=\"7\"><ie tp=\"wipe\" "
            "d=\"none\"/></i><t><bc c=\"not a colour\"/></t><pl><m/></pl></pl>"));
  ASSERT_EQ(playlist.contents.size(), 3u);
  const QvFMovie& bare = Item<QvFMovie>(playlist, 0);
  EXPECT_EQ(std::vector({bare.volume, bare.play_time.content_end, bare.play_time.timeout}),
            std::vector({12, 1, 0}));
  const QvFImage& odd = Item<QvFImage>(playlist, 1);
  EXPECT_EQ(std::vector({odd.type, odd.aspect, odd.image_effect->direction,
                         odd.image_effect->type.value_or(-1)}),
            std::vector<int>({4, 2, 0, kEffectNone}));

  EXPECT_THROW(reader.readProgram(write("<pgp><pgi><bc c=\"102030\"/></pgi></pgp>")),
               std::out_of_range);
  EXPECT_THROW(reader.readPlaylist(write("<pl><n><bc c=\"0X112233\"/></n></pl>")),
               std::out_of_range);
  // A root of another name, or of the other vocabulary, gives an empty record.
  EXPECT_TRUE(reader.readPlaylist(write("<pgp><m/></pgp>")).contents.empty());
  EXPECT_TRUE(reader.readPlaylist(write("<playlist><movie/></playlist>")).contents.empty());
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
