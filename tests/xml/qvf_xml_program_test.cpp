// Program documents: records written and read back in both vocabularies, the
// attributes that are left out, and hand-written documents in any order.
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

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

// The head after a trip: an absent valid comes back present and false.
void ExpectHead(const QvFRecord& read, const QvFRecord& written) {
  EXPECT_EQ(read.id.text, written.id.text);
  EXPECT_EQ(read.id.kind, written.id.kind);
  EXPECT_EQ(read.name, written.name);
  EXPECT_EQ(read.valid, std::optional<bool>(written.valid.value_or(false)));
}

void ExpectRegion(const QvFRegion& read, const QvFRegion& written) {
  ExpectHead(read, written);
  EXPECT_EQ(read.x, written.x);
  EXPECT_EQ(read.y, written.y);
  EXPECT_EQ(read.width, written.width);
  EXPECT_EQ(read.height, written.height);
}

// The value of attribute `name` of the `nth` element `element` of a written
// file; nothing when the element or the attribute is missing.
std::optional<std::u16string> WrittenAttribute(const std::string& path, const char16_t* element,
                                               const char16_t* name, int nth = 0) {
  QvFXmlDocument document;
  document.parse(U16(path));
  xercesc::DOMNodeList* list = document.document()->getElementsByTagName(element);
  if (list == nullptr || static_cast<int>(list->getLength()) <= nth) return std::nullopt;
  auto* found = static_cast<xercesc::DOMElement*>(list->item(nth));
  if (!found->hasAttribute(name)) return std::nullopt;
  return std::u16string(found->getAttribute(name));
}

int CountElements(const std::string& path, const char16_t* element) {
  QvFXmlDocument document;
  document.parse(U16(path));
  return static_cast<int>(document.document()->getElementsByTagName(element)->getLength());
}

QvFProgram FullProgram() {
  QvFProgram program;
  SetHead(program, u"PG0001", u"Morning", true);
  QvFProgramInfo& info = program.program_info;
  SetHead(info, u"PG0001", u"frame 日本", false);
  info.program_time.tm_hour = 13;
  info.program_time.tm_min = 5;
  info.program_time.tm_sec = 9;
  info.layout_lock = true;
  SetHead(info.region, u"", u"whole", std::nullopt);
  info.region.x = -10;
  info.region.y = 20;
  info.region.width = 3840;
  info.region.height = 2160;
  info.background_color.a = 128;
  info.background_color.r = 1;
  info.background_color.g = 2;
  info.background_color.b = 255;
  SetHead(program.pane_info, u"", u"panes", std::nullopt);

  // One pane of every type, each with its own region and reference.
  for (int type = 0; type < 4; ++type) {
    QvFPane pane;
    SetHead(pane, u"", std::u16string(u"pane ") + char16_t(u'1' + type), type % 2 == 0);
    pane.region.x = 100 * type;
    pane.region.y = 7;
    pane.region.width = 640 + type;
    pane.region.height = 360;
    pane.playlist_file.ref_playlist.assign(std::u16string(u"PL000") + char16_t(u'1' + type));
    pane.playlist_file.type = type;
    pane.playlist_file.mute = type == 1;
    program.pane_info.panes.push_back(pane);
  }
  return program;
}

class XmlProgramTrip : public testing::TestWithParam<bool> {
 protected:
  bool debug() const { return GetParam(); }
  std::string Write(const QvFProgram& program, const char* name = "program.xml") {
    const std::string path = dir_.Sub(name);
    QvFWriteXml writer(debug());
    writer.outputProgram(U16(path), program);
    return path;
  }
  std::unique_ptr<QvFProgram> Read(const std::string& path) {
    QvFReadXml reader(debug());
    return reader.readProgram(U16(path));
  }
  const QvFTagTable& Tags() {
    static const QvFTagTable compact;
    static const QvFDebugTagTable full;
    return debug() ? static_cast<const QvFTagTable&>(full) : compact;
  }

  ScratchDir dir_;
};

TEST_P(XmlProgramTrip, EveryFieldComesBack) {
  const QvFProgram written = FullProgram();
  const std::unique_ptr<QvFProgram> read = Read(Write(written));
  ASSERT_NE(read, nullptr);

  ExpectHead(*read, written);
  const QvFProgramInfo& info = read->program_info;
  ExpectHead(info, written.program_info);
  EXPECT_EQ(info.program_time.tm_hour, 13);
  EXPECT_EQ(info.program_time.tm_min, 5);
  EXPECT_EQ(info.program_time.tm_sec, 9);
  EXPECT_EQ(info.layout_lock, std::optional<bool>(true));
  ExpectRegion(info.region, written.program_info.region);
  ExpectHead(info.background_color, written.program_info.background_color);
  EXPECT_EQ(info.background_color.a, 128);
  EXPECT_EQ(info.background_color.r, 1);
  EXPECT_EQ(info.background_color.g, 2);
  EXPECT_EQ(info.background_color.b, 255);

  ExpectHead(read->pane_info, written.pane_info);
  ASSERT_EQ(read->pane_info.panes.size(), 4u);
  for (int i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    const QvFPane& pane = read->pane_info.panes[i];
    const QvFPane& source = written.pane_info.panes[i];
    ExpectHead(pane, source);
    ExpectRegion(pane.region, source.region);
    ExpectHead(pane.playlist_file, source.playlist_file);
    EXPECT_EQ(pane.playlist_file.ref_playlist.text, source.playlist_file.ref_playlist.text);
    EXPECT_EQ(pane.playlist_file.ref_playlist.kind, kIdPlaylist);
    EXPECT_EQ(pane.playlist_file.type, std::optional<std::int32_t>(i));
    EXPECT_EQ(pane.playlist_file.mute, std::optional<bool>(i == 1));
  }
}

TEST_P(XmlProgramTrip, AttributesWrittenOnlyWhenTheyHoldSomething) {
  QvFProgram program;
  program.program_info.layout_lock.reset();
  program.program_info.playlist_file.ref_playlist.assign(u"PL9999");
  QvFPane from_csv;  // a pane type that the CSV project does not carry
  from_csv.playlist_file.ref_playlist.assign(u"PL0001");
  program.pane_info.panes.push_back(from_csv);
  QvFPane odd;
  odd.playlist_file.type = 7;
  odd.playlist_file.mute.reset();
  program.pane_info.panes.push_back(odd);
  const std::string path = Write(program);

  const QvFTagTable& t = Tags();
  const char16_t* plf = t[tag::kPlaylistFile].c_str();
  // The program's own playlist reference is never written: only panes have one.
  EXPECT_EQ(CountElements(path, plf), 2);
  EXPECT_FALSE(WrittenAttribute(path, t[tag::kProgramInfo].c_str(), t[tag::kLayoutLock].c_str()));
  EXPECT_FALSE(WrittenAttribute(path, plf, t[tag::kPaneType].c_str(), 0));
  EXPECT_EQ(WrittenAttribute(path, plf, t[tag::kMute].c_str(), 0), t[tag::kFalse]);
  EXPECT_FALSE(WrittenAttribute(path, plf, t[tag::kRefPlaylist].c_str(), 1));
  EXPECT_FALSE(WrittenAttribute(path, plf, t[tag::kPaneType].c_str(), 1));
  EXPECT_FALSE(WrittenAttribute(path, plf, t[tag::kMute].c_str(), 1));
  // A pane without a region still writes all four numbers and no head.
  const char16_t* re = t[tag::kRegion].c_str();
  EXPECT_EQ(WrittenAttribute(path, re, t[tag::kWidth].c_str(), 1), u"0");
  EXPECT_FALSE(WrittenAttribute(path, re, t[tag::kId].c_str(), 1));
  EXPECT_FALSE(WrittenAttribute(path, re, t[tag::kValid].c_str(), 1));

  const std::unique_ptr<QvFProgram> read = Read(path);
  EXPECT_TRUE(read->program_info.playlist_file.ref_playlist.text.empty());
  // Absent flags and pane types come back present: false and contents.
  EXPECT_EQ(read->program_info.layout_lock, std::optional<bool>(false));
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  EXPECT_EQ(read->pane_info.panes[0].playlist_file.type, std::optional<std::int32_t>(0));
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.type, std::optional<std::int32_t>(0));
  EXPECT_EQ(read->pane_info.panes[1].playlist_file.mute, std::optional<bool>(false));
}

TEST_P(XmlProgramTrip, EmptyPaneListIsStillWritten) {
  const std::string path = Write(QvFProgram());
  EXPECT_EQ(CountElements(path, Tags()[tag::kPaneInfo].c_str()), 1);
  EXPECT_EQ(CountElements(path, Tags()[tag::kPane].c_str()), 0);
  EXPECT_TRUE(Read(path)->pane_info.panes.empty());
}

TEST_P(XmlProgramTrip, OtherVocabularyReadsAsDefaults) {
  const std::string path = Write(FullProgram());
  QvFReadXml other(!debug());
  const std::unique_ptr<QvFProgram> read = other.readProgram(U16(path));
  ASSERT_NE(read, nullptr);
  EXPECT_TRUE(read->id.text.empty());
  EXPECT_FALSE(read->valid.has_value());
  EXPECT_EQ(read->program_info.region.width, 0);
  EXPECT_TRUE(read->pane_info.panes.empty());
}

INSTANTIATE_TEST_SUITE_P(Vocabularies, XmlProgramTrip, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Debug" : "Compact";
                         });

// ---- Hand-written documents ------------------------------------------------

std::unique_ptr<QvFProgram> ReadText(const ScratchDir& dir, const std::string& text,
                                     bool debug = false) {
  const std::string path = dir.Sub("hand.xml");
  qvtest::WriteFile(path, text);
  QvFReadXml reader(debug);
  return reader.readProgram(U16(path));
}

TEST(XmlProgramRead, ElementsInAnyOrderAndUnknownOnesPassedOver) {
  ScratchDir dir;
  const std::unique_ptr<QvFProgram> read = ReadText(
      dir,
      "<pgp i=\"PG0002\" v=\"t\"><!-- panes first -->"
      "<pai><x/><pa n=\"p1\"><plf rl=\"PL0007\" tp=\"t\" mt=\"t\"><pa/></plf>"
      "<re x=\"1\" y=\"2\" w=\"3\" h=\"4\"/><re x=\"5\"/></pa>"
      "<pg><pa/></pg><pa><bc c=\"#ffffff\"/></pa></pai>"
      "<pgi pgt=\"1:2:3\" lk=\"true\"><plf rl=\"PL0009\" tp=\"s\"/><bc c=\"0x102030\"/>"
      "<re w=\"10\"/><pa/></pgi></pgp>");
  EXPECT_EQ(read->id.text, u"PG0002");
  EXPECT_EQ(read->valid, std::optional<bool>(true));
  const QvFProgramInfo& info = read->program_info;
  EXPECT_EQ(info.program_time.tm_hour, 1);
  EXPECT_EQ(info.program_time.tm_min, 2);
  EXPECT_EQ(info.program_time.tm_sec, 3);
  // The debug word for true is no true in a compact document.
  EXPECT_EQ(info.layout_lock, std::optional<bool>(false));
  EXPECT_EQ(info.playlist_file.ref_playlist.text, u"PL0009");
  EXPECT_EQ(info.playlist_file.type, std::optional<std::int32_t>(kPaneSound));
  EXPECT_EQ(info.background_color.r, 0x10);
  EXPECT_EQ(info.background_color.b, 0x30);
  EXPECT_EQ(info.region.width, 10);

  // Nested panes and panes outside the list are not panes of the program.
  ASSERT_EQ(read->pane_info.panes.size(), 2u);
  const QvFPane& first = read->pane_info.panes[0];
  EXPECT_EQ(first.name, u"p1");
  EXPECT_EQ(first.playlist_file.ref_playlist.text, u"PL0007");
  EXPECT_EQ(first.playlist_file.type, std::optional<std::int32_t>(kPaneTelop));
  EXPECT_EQ(first.playlist_file.mute, std::optional<bool>(true));
  // A second region is read over the first, and gives its missing numbers as 0.
  EXPECT_EQ(first.region.x, 5);
  EXPECT_EQ(first.region.y, 0);
  const QvFPane& second = read->pane_info.panes[1];
  EXPECT_EQ(second.region.width, 0);
  EXPECT_TRUE(second.playlist_file.ref_playlist.text.empty());
  EXPECT_FALSE(second.playlist_file.type.has_value());
}

TEST(XmlProgramRead, PaneTypeWordsOfBothVocabularies) {
  ScratchDir dir;
  const char* compact[] = {"c", "t", "s", "p", "contents", "x", ""};
  const int compact_expect[] = {0, 1, 2, 3, 0, 0, 0};
  for (int i = 0; i < 7; ++i) {
    const auto read = ReadText(
        dir, std::string("<pgp><pai><pa><plf tp=\"") + compact[i] + "\"/></pa></pai></pgp>");
    ASSERT_EQ(read->pane_info.panes.size(), 1u);
    EXPECT_EQ(read->pane_info.panes[0].playlist_file.type,
              std::optional<std::int32_t>(compact_expect[i]))
        << compact[i];
  }
  const char* debug[] = {"contents", "telop", "sound", "pip", "p", "TELOP"};
  const int debug_expect[] = {0, 1, 2, 3, 0, 0};
  for (int i = 0; i < 6; ++i) {
    const auto read = ReadText(
        dir,
        std::string("<program><pane_info><pane><playlist_file type=\"") + debug[i] +
            "\" mute=\"true\"/></pane></pane_info></program>",
        true);
    ASSERT_EQ(read->pane_info.panes.size(), 1u);
    EXPECT_EQ(read->pane_info.panes[0].playlist_file.type,
              std::optional<std::int32_t>(debug_expect[i]))
        << debug[i];
    EXPECT_EQ(read->pane_info.panes[0].playlist_file.mute, std::optional<bool>(true));
  }
}

TEST(XmlProgramRead, FailuresOfTheFileAndOfAColour) {
  ScratchDir dir;
  int code = 0;
  try {
    ReadText(dir, "<pgp><pgi></pgp>");
  } catch (QvConvException* e) {
    code = e->code();
  }
  EXPECT_EQ(code, -300);
  EXPECT_THROW(ReadText(dir, "<pgp><pgi><bc c=\"102030\"/></pgi></pgp>"), std::out_of_range);
  // A root of another name is no failure.
  const auto other = ReadText(dir, "<pl i=\"PG1\"><pgi pgt=\"01:02:03\"/></pl>");
  EXPECT_TRUE(other->id.text.empty());
  EXPECT_EQ(other->program_info.layout_lock, std::optional<bool>(false));
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
