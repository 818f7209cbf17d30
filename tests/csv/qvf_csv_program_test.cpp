// Program, playlist and contents files: pane roles, item kinds, the packed
// effect code, empty playlists, bad lines, and written files read back.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "tests/csv/csv_test_util.h"
#include "tests/support/test_support.h"
#include "workspace/project_path.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf;
using qvtest::U16;
using qvtest::U8;

std::string N(int v) { return " " + std::to_string(v); }

// Playlist identifier, x, width and mute of each pane.
std::vector<std::string> Panes(const f::QvFProgram& p) {
  std::vector<std::string> out;
  for (const f::QvFPane& pane : p.pane_info.panes) {
    out.push_back(U8(pane.playlist_file.ref_playlist.text) + N(pane.region.x) +
                  N(pane.region.width) + " " + U8(f::FormatFlag(pane.playlist_file.mute)));
  }
  return out;
}

// Every field of an item that a contents file carries, but its identifier.
std::string Describe(const f::QvFContent& c) {
  std::string s = N(c.kind) + " " + U8(f::FormatTime(c.play_time.time)) +
                  N(c.play_time.content_end) + N(c.play_time.timeout);
  if (const f::QvFMovie* m = f::AsMovie(&c)) {
    s +=
        N(m->type) + N(m->aspect) + N(m->volume) + " " + U8(f::FormatColorHex(m->background_color));
  } else if (const f::QvFImage* i = f::AsImage(&c)) {
    s += N(i->type) + N(i->aspect) + " " + U8(f::FormatColorHex(i->background_color));
    if (const auto& e = i->image_effect) {
      s += " fx" + N(e->type.value_or(-1)) + N(e->direction) + " " +
           U8(f::FormatFlag(e->via_backgroundcolor)) + N(e->t);
    }
  } else if (const f::QvFTelop* t = f::AsTelop(&c)) {
    s += N(t->type) + N(t->aspect);
  } else if (const f::QvFNone* b = f::AsNone(&c)) {
    s += b->has_background_color ? " " + U8(f::FormatColorHex(b->background_color)) : " clear";
  }
  return s.substr(1);
}

// Line 2 of a contents file: colour, aspect 3, volume 70, effect time 5, end "42".
std::string Line2(const std::string& kind, const std::string& effect = "0") {
  return kind + ",00:01:02,,false,#010203,3,,0,0,0,70," + effect + ",5,0,-1,-1,-1,-1,42\n";
}

class CsvProgram : public ::testing::Test {
 protected:
  void SetUp() override { reader_.index().addProgramId(u"P"); }
  // Writes a file below folder P (code page 932) and gives its path.
  std::u16string Write(const std::string& name, const std::string& utf8) {
    qvtest::WriteFile(dir_.Sub("P/" + name), qvtest::Cp932(utf8));
    return U16(dir_.Sub("P/" + name));
  }
  // A playlist of folder P with its items, read as the conversion reads it.
  f::QvFPlaylist ReadPlaylist(const std::string& name) {
    QvFCsvProgramEntry& entry = reader_.index().programEntry(u"PG1");
    std::size_t next = entry.contents_paths.size();
    f::QvFPlaylist playlist = reader_.readPlaylist(U16(dir_.Sub("P/" + name)));
    for (; next < entry.contents_paths.size(); ++next) {
      reader_.readContents(converter::JoinPath(U16(dir_.Sub("P")), entry.contents_paths[next]),
                           playlist, entry);
    }
    return playlist;
  }
  // The item of one contents file, described; "" when there is none.
  std::string Item(const std::string& utf8) {
    f::QvFPlaylist playlist;
    reader_.readContents(Write("c.csv", utf8), playlist, reader_.index().programEntry(u"PG1"));
    return playlist.contents.empty() ? "" : Describe(*playlist.contents.at(0));
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

TEST_F(CsvProgram, ReadTakesFrameAndPanesByNumber) {
  reader_.index().addProgramId(u"番組");
  // A backslash cuts the path as a slash does. Lines 9, 7 and the exact
  // "false" give no pane, "FALSE" and "" do not skip; one file is one playlist.
  auto p = reader_.readProgram(
      Write("番組\\program.csv",
            "朝の番組\n0xD4F0FF,10,20,1920,1080,01:02:03,true\n0,playlist_0.csv,0,0,0,0,0x80112233\n"
            "9,x.csv\n7,playlist_7.csv,1,1,1,1,bad,true,0,true\n3,b.csv,1,2,3,4,#ff0000,1,0,true\n"
            "1,a.csv,5,6,7,8,0x00ff00,x,0,FALSE\n2,c.csv,0,0,0,0,0x0000ff,false,0,false\n"
            "5,t.csv,0,0,0,0,nocolour,true,0,\n4,b.csv,0,0,9,9,0x010101,0,0,yes\n"));
  EXPECT_EQ(U8(p->id.text + u" " + p->name + u" " + f::FormatTime(p->program_info.program_time)),
            "PG2 朝の番組 01:02:03");
  const f::QvFProgramInfo& info = p->program_info;
  EXPECT_EQ(info.region.x + info.region.height, 1090);
  EXPECT_EQ(info.layout_lock, std::optional<bool>(true));
  EXPECT_EQ(f::FormatColorHex(info.background_color), u"0x80112233");
  EXPECT_EQ(Panes(*p), (std::vector<std::string>{"PL1 1 3 true", "PL2 5 7 false", "PL3 0 0 true",
                                                 "PL1 0 9 false"}));
  const QvFCsvProgramEntry* entry = reader_.index().findProgramEntry(u"PG2");
  EXPECT_EQ(entry->background_text, u"0x80112233");
  EXPECT_EQ(entry->playlist_colors, (QvFNameMap{{u"a.csv", u"0x00ff00"}, {u"b.csv", u"0x010101"}}));
}

TEST_F(CsvProgram, UnknownFolderAndShortLines) {
  auto p = reader_.readProgram(Write("x/program.csv", "\n0x0,0,0,0,0,\n7\n8,\nzz\n"));
  EXPECT_TRUE(p->id.text.empty());
  EXPECT_NE(reader_.index().findProgramEntry(u""), nullptr);
  EXPECT_EQ(p->program_info.layout_lock, std::optional<bool>(false));  // six columns
  for (const char* text : {"", "n\n0x0,1,2,3,4\n", "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0\n",
                           "n\n0x0,0,0,0,0,\n3,p.csv,0,0,0,0,#0,true,0\n", "n\n0x0,0,0,0,0,\n5\n",
                           "n\n0x0,0,0,0,0,\n0,p.csv,0,0,0,0,ffffff\n"}) {
    EXPECT_EQ(CodeOf([&] { reader_.readProgram(Write("program.csv", text)); }), -102) << text;
  }
}

TEST_F(CsvProgram, ContentKindsByExtensionAndIdentifiers) {
  const std::pair<std::string, const char*> cases[] = {
      {"..\\\\contents\\\\\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"..\\\\contents\\\\A.MP4\n" + Line2("1"), "0 00:01:02 3 1 0 3 70 0x010203"},
      {"..\\\\contents\\\\A.MP4\n" + Line2("4"), ""},
      {"t.TLP\n" + Line2("4"), "6 00:01:02 3 1 0 3"},
      {"p.JPEG\n" + Line2("1"), "1 00:01:02 0 0 0 3 0x010203"},  // no end code for images
      {"p.Png\n1,00:00:00,,,,2\n", "1 00:00:00 0 0 1 2 0x000000"},
      {"p.bmp\n1,00:00:00,,,,7\n", "1 00:00:00 0 0 3 2 0x000000"},
      {"a.mp4\n1,00:00:00,,,0x0,1,,,,,-3,,,,,,,,12\n", "0 00:00:00 0 1 0 1 -3 0x000000"},
      {"x.avi\n" + Line2("1"), ""},
      {"x.mp4\n", ""},  // a one-line file has no item
  };
  for (const auto& [text, item] : cases) EXPECT_EQ(Item(text), item) << text;
  for (const char* kind : {"0", "2", "3", "5", "6", "9"}) {
    EXPECT_EQ(Item("x.mp4\n" + Line2(kind)), "") << kind;
  }

  // Runs of backslashes are one: both movies are one content, read twice.
  const QvFCsvIndex& index = reader_.index();
  EXPECT_EQ(index.content_ids.count(u"x.mp4"), 0u);
  ASSERT_EQ(index.content_files.size(), 7u);
  EXPECT_EQ(index.content_files[1].id + index.content_files[1].path, u"CT1..\\contents\\A.MP4");
  EXPECT_EQ(index.content_files[2].id, u"CT2");
}

TEST_F(CsvProgram, PackedEffectCodes) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", ""},
      {"19", ""},
      {"1073741824", ""},  // no effect, whatever the other bits say
      {"1", " fx 18 0 false 5"},
      {"2", " fx 1 0 false 5"},
      {"18", " fx 17 0 false 5"},
      {"258", " fx 1 1 false 5"},
      {"65537", " fx 18 0 true 5"},
      {"1073746690", " fx 1 19 false 5"},
      {"4865", " fx 18 0 false 5"}};
  for (const auto& [code, effect] : cases) {
    EXPECT_EQ(Item("i.jpg\n" + Line2("1", code)),
              std::string("1 00:01:02 0 0 0 3 0x010203") + effect)
        << code;
  }
}

TEST_F(CsvProgram, BadContentsLines) {
  for (std::string text :
       {"noextension\n" + Line2("1"), ".png\n" + Line2("1"),  // shorter than ".jpeg"
        std::string("a.mp4\n1,00:00:01\n"), std::string("a.tlp\n4,00:00:01,,,\n"),
        std::string("a.mp4\n1,,,,ff0000,0\n"), std::string("\n7\n"), std::string("\n1\n")}) {
    EXPECT_EQ(CodeOf([&] { Item(text); }), -102) << text;
  }
}

// A placeholder stands only for empty playlists before the first items; a
// kind 7 item takes the program's colour.
TEST_F(CsvProgram, PlaceholderOnlyBeforeTheFirstItems) {
  Write("program.csv",
        "n\n0x0,0,0,0,0,\n0,playlist_0.csv,0,0,0,0,0x112233\n"
        "1,playlist_1.csv,0,0,0,0,#445566,false,0,true\n2,playlist_2.csv,0,0,0,0,#0,false,0,true\n"
        "3,playlist_3.csv,0,0,0,0,#778899,false,0,true\n");
  Write("playlist_1.csv", "");
  Write("playlist_2.csv", "information\\\\\\\\c1.csv\n");
  Write("playlist_3.csv", "");
  Write("information/c1.csv", "\n7,00:00:09\n");
  reader_.readProgram(U16(dir_.Sub("P/program.csv")));
  std::string all;
  for (const char* name : {"playlist_1.csv", "playlist_2.csv", "playlist_3.csv"}) {
    for (const auto& item : ReadPlaylist(name).contents) all += Describe(*item) + ";";
  }
  EXPECT_EQ(all, "2 00:00:00 0 0 0x445566;2 00:00:09 0 0 0x112233;");
}

// The writer packs an image's effect into one number; blanks write no line.
TEST_F(CsvProgram, WrittenPlaylistPacksTheEffect) {
  auto image = std::make_shared<f::QvFImage>();
  image->ref_content.assign(u"CT8");
  image->type = 2;
  image->aspect = 1;
  image->image_effect = f::QvFImageEffect{};
  image->image_effect->type = f::kEffectRandom;
  image->image_effect->direction = f::kDirectionRandom;
  image->image_effect->via_backgroundcolor = true;
  image->image_effect->t = 3;
  f::ParseTime(u"00:00:30", image->play_time.time);
  // An effect of type 0 keeps 0 in the low byte, and its other fields.
  auto plain = std::make_shared<f::QvFImage>(*image);
  plain->image_effect->type = f::kEffectNone;
  plain->image_effect->direction = f::kDirectionUp;
  plain->play_time.content_end = 1;  // the writer's own numbering: "10"
  f::QvFPlaylist written;
  written.contents = {std::make_shared<f::QvFNone>(), image, plain};
  QvFNameMap names;
  Write("program.csv", "");
  writer_.outputPlaylistFile(1, U16(dir_.Sub("P")), &written, names);
  EXPECT_EQ(names, (QvFNameMap{{u"CT8", u"CT8.gif"}}));
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("P/information/contents_1_002.csv")) +
                qvtest::ReadFile(dir_.Sub("P/information/contents_1_003.csv")),
            "..\\\\contents\\\\CT8.gif\r\n"
            "1,00:00:30,,false,0x000000,1,,0,0,0,100,1073807361,3,0,-1,-1,-1,-1,00\r\n"
            "..\\\\contents\\\\CT8.gif\r\n"
            "1,00:00:30,,false,0x000000,1,,0,0,0,100,65792,3,0,-1,-1,-1,-1,10\r\n");
  // The packed number reads back as the same effect.
  f::QvFPlaylist back;
  reader_.readContents(U16(dir_.Sub("P/information/contents_1_002.csv")), back,
                       reader_.index().programEntry(u"PG1"));
  EXPECT_EQ(Describe(*back.contents.at(0)), Describe(*image));

  written.contents = {written.contents[0], written.contents[0]};  // blanks alone: an empty file
  writer_.outputPlaylistFile(3, U16(dir_.Sub("P")), &written, names);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("P/playlist_3.csv")), "");
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
