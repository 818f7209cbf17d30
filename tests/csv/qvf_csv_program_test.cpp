// Program, playlist and contents files: pane roles, item kinds, packed effects, placeholders, bad
// lines.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::U16;
using qvtest::U8;

std::string N(int v) { return " " + std::to_string(v); }
std::string Hex(const f::QvFColor& color) { return " " + U8(f::FormatColorHex(color)); }

// Every field of an item that a contents file carries, but its identifier.
std::string Describe(const f::QvFContent& c) {
  const std::string s = std::to_string(c.kind) + " " + U8(f::FormatTime(c.play_time.time)) +
                        N(c.play_time.content_end) + N(c.play_time.timeout);
  if (const auto* m = f::AsMovie(&c))
    return s + N(m->type) + N(m->aspect) + N(m->volume) + Hex(m->background_color);
  if (const auto* t = f::AsTelop(&c)) return s + N(t->type) + N(t->aspect);
  if (const auto* b = f::AsNone(&c))
    return s + (b->has_background_color ? Hex(b->background_color) : " clear");
  const f::QvFImage& i = *f::AsImage(&c);
  const auto& e = i.image_effect;
  return s + N(i.type) + N(i.aspect) + Hex(i.background_color) +
         (e ? " fx" + N(e->type.value_or(-1)) + N(e->direction) + " " +
                  U8(f::FormatFlag(e->via_backgroundcolor)) + N(e->t)
            : "");
}

// Line 2 of a contents file: colour, aspect 3, volume 70, effect time 5, end "42".
std::string Line2(const std::string& kind, const std::string& fx = "0") {
  return kind + ",00:01:02,,false,#010203,3,,0,0,0,70," + fx + ",5,0,-1,-1,-1,-1,42\n";
}

class CsvProgram : public ::testing::Test {
 protected:
  void SetUp() override { reader_.index().addProgramId(u"P"); }
  // Writes a file below folder P (code page 932) and gives its path as the
  // pipeline joins it: "<scratch>\P\<name>".
  std::u16string Write(const std::string& name, const std::string& utf8) {
    std::string physical = name;
    for (char& c : physical) c = c == '\\' ? '/' : c;
    qvtest::WriteFile(dir_.Sub("P/" + physical), qvtest::Cp932(utf8));
    return U16(dir_.path() + "\\P\\" + name);
  }
  // The item of one contents file, described; "" when there is none.
  std::string Item(const std::string& utf8) {
    f::QvFPlaylist playlist;
    reader_.readContents(Write("c.csv", utf8), playlist, reader_.index().programEntry(u"PG1"));
    return playlist.contents.empty() ? "" : Describe(*playlist.contents.at(0));
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
};

TEST_F(CsvProgram, ReadTakesFrameAndPanesByNumber) {
  reader_.index().addProgramId(u"番組");
  // The folder name stands behind the last backslash but one. Lines 9, 7 and the exact
  // "false" give no pane, "FALSE" and "" do not skip; one file is one playlist.
  auto p = reader_.readProgram(Write(
      "番組\\program.csv",
      "朝の番組\n0xD4F0FF,10,20,1920,1080,01:02:03,true\n0,playlist_0.csv,0,0,0,0,0x80112233\n"
      "9,x.csv\n7,playlist_7.csv,1,1,1,1,bad,true,0,true\n3,b.csv,1,2,3,4,#ff0000,1,0,true\n"
      "1,a.csv,5,6,7,8,0x00ff00,x,0,FALSE\n2,c.csv,0,0,0,0,0x0000ff,false,0,false\n"
      "5,t.csv,0,0,0,0,nocolour,true,0,\n4,b.csv,0,0,9,9,0x010101,0,0,yes\n"));
  std::string all =
      U8(p->id.text + u" " + p->name + u" " + f::FormatColorHex(p->program_info.background_color));
  for (const f::QvFPane& pane : p->pane_info.panes) {
    all +=
        ";" +
        U8(pane.playlist_file.ref_playlist.text + u" " + f::FormatFlag(pane.playlist_file.mute)) +
        N(pane.region.x) + N(pane.region.width);
  }
  EXPECT_EQ(all, "PG2 朝の番組 0x80112233;PL1 true 1 3;PL2 false 5 7;PL3 true 0 0;PL1 false 0 9");
}

TEST_F(CsvProgram, ShortLinesAre102) {
  // Six columns give no layout lock; lines of other numbers pass.
  EXPECT_EQ(reader_.readProgram(Write("program.csv", "\n0x0,0,0,0,0,\n7\n8,\nzz\n"))
                ->program_info.layout_lock,
            std::optional<bool>(false));
  for (const char* text : {"", "n\n0x0,1,2,3,4\n", "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0\n",
                           "n\n0x0,0,0,0,0,\n5\n", "n\n0x0,0,0,0,0,\n3,p.csv,0,0,0,0,#0,true,0\n",
                           "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0,ffffff\n"})
    EXPECT_EQ(qvtest::CodeOf([&] { reader_.readProgram(Write("program.csv", text)); }), -102)
        << text;
  for (std::string text :
       {"noextension\n" + Line2("1"), ".png\n" + Line2("1"),  // shorter than ".jpeg"
        std::string("a.mp4\n1,00:00:01\n"), std::string("a.tlp\n4,00:00:01,,,\n"),
        std::string("a.mp4\n1,,,,ff0000,0\n"), std::string("\n7\n"), std::string("\n1\n")})
    EXPECT_EQ(qvtest::CodeOf([&] { Item(text); }), -102) << text;
}

// Kinds by extension, in any case; the packed effect code of images.
TEST_F(CsvProgram, ContentKindsAndPackedEffects) {
  const std::pair<std::string, std::string> cases[] = {
      {"..\\\\contents\\\\\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"..\\\\contents\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"t.TLP\n" + Line2("4"), "6 00:01:02 3 1 0 3"},
      {"p.JPEG\n" + Line2("1"), "1 00:01:02 0 0 0 3 0x010203"},  // no end code for images
      {"a.mp4\n1,00:00:00,,,0x0,1,,,,,-3,,,,,,,,12\n", "0 00:00:00 0 1 0 1 -3 0x000000"},
      {"x.avi\n" + Line2("1"), ""},
      {"x.mp4\n" + Line2("0"), ""},
      {"x.mp4\n", ""},  // a one-line file has no item
  };
  for (const auto& [text, item] : cases) EXPECT_EQ(Item(text), item) << text;
  // Runs of backslashes are one: both movies are one content, read twice.
  EXPECT_EQ(reader_.index().content_files.at(1).path + reader_.index().content_files.at(2).id,
            u"..\\contents\\A.MP4CT2");

  const std::pair<const char*, const char*> effects[] = {
      {"0", ""},
      {"19", ""},
      {"1073741824", ""},
      {"1", " fx 18 0 false 5"},
      {"2", " fx 1 0 false 5"},
      {"18", " fx 17 0 false 5"},
      {"258", " fx 1 1 false 5"},
      {"65537", " fx 18 0 true 5"},
      {"1073746690", " fx 1 19 false 5"},
      {"1073807361", " fx 18 19 true 5"}};  // 0 and 19: no effect
  for (const auto& [code, effect] : effects)
    EXPECT_EQ(Item("i.jpg\n" + Line2("1", code)),
              std::string("1 00:01:02 0 0 0 3 0x010203") + effect)
        << code;
}

// A placeholder stands only for empty playlists before the first items; a
// kind 7 item takes the program's colour.
TEST_F(CsvProgram, PlaceholderOnlyBeforeTheFirstItems) {
  reader_.readProgram(Write(
      "program.csv",
      "n\n0x0,0,0,0,0,\n0,playlist_0.csv,0,0,0,0,0x112233\n1,playlist_1.csv,0,0,0,0,#445566,false,"
      "0,true\n"
      "2,playlist_2.csv,0,0,0,0,#0,false,0,true\n3,playlist_3.csv,0,0,0,0,#778899,false,0,true\n"));
  Write("playlist_1.csv", ""), Write("playlist_2.csv", "information\\\\\\\\c1.csv\n"),
      Write("playlist_3.csv", "");
  std::string all;
  for (const char* name : {"playlist_1.csv", "playlist_2.csv", "playlist_3.csv"})
    for (const auto& item : reader_.readPlaylist(U16(dir_.path() + "\\P\\" + name)).contents)
      all += Describe(*item) + ";";
  EXPECT_EQ(all + Item("\n7,00:00:09\n"), "2 00:00:00 0 0 0x445566;2 00:00:09 0 0 0x112233");
}

// The writer packs an image's effect into one number and numbers the end code its own way.
TEST_F(CsvProgram, WrittenPlaylistPacksTheEffect) {
  auto image = std::make_shared<f::QvFImage>();
  image->ref_content.assign(u"CT8"), image->type = 2, image->aspect = 1;
  f::ParseTime(u"00:00:30", image->play_time.time);
  f::QvFImageEffect& effect = image->image_effect.emplace();
  effect.type = f::kEffectRandom, effect.direction = f::kDirectionRandom,
  effect.via_backgroundcolor = true, effect.t = 3;
  auto plain = std::make_shared<f::QvFImage>(
      *image);  // type 0 keeps 0 in the low byte, and the other fields
  plain->image_effect->type = f::kEffectNone, plain->image_effect->direction = f::kDirectionUp;
  plain->play_time.content_end = 1;  // the writer's own numbering: "10"
  f::QvFPlaylist written;
  written.contents = {image, plain};
  QvFNameMap names;
  QvFWriteCsv(u"S").outputPlaylistFile(1, U16(dir_.path()), &written, names);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("information/contents_1_001.csv")) +
                qvtest::ReadFile(dir_.Sub("information/contents_1_002.csv")),
            "..\\\\contents\\\\CT8.gif\r\n1,00:00:30,,false,0x000000,1,,0,0,0,100,1073807361,3,0,-"
            "1,-1,-1,-1,00\r\n"
            "..\\\\contents\\\\CT8.gif\r\n1,00:00:30,,false,0x000000,1,,0,0,0,100,65792,3,0,-1,-1,-"
            "1,-1,10\r\n");
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
