// Playlist and contents files: item kinds by extension, the packed effect
// code, the placeholder of empty playlists, bad lines, and written playlists
// of every item kind read back.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "csv/qvf_read_csv.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "workspace/project_path.h"
#include "tests/csv/csv_test_util.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

namespace f = quorvane::qvformat::format;
using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;

// Line 2 of a contents file with `kind`, colour "#010203", aspect "3", volume
// "70", the effect code, and end code "42".
std::string Line2(const std::string& kind, const std::string& effect = "0") {
  return kind + ",00:01:02,,false,#010203,3,,0,0,0,70," + effect + ",5,0,-1,-1,-1,-1,42\n";
}

class CsvPlaylist : public ::testing::Test {
 protected:
  void SetUp() override {
    qvtest::MakeDirs(dir_.Sub("P"));
    reader_.index().addProgramId(u"P");
  }

  std::u16string Write(const std::string& name, const std::string& utf8) {
    qvtest::WriteFile(dir_.Sub("P/" + name), Cp932(utf8));
    return U16(dir_.Sub("P/" + name));
  }
  // Reads program.csv of folder P, then the playlist `name` with its items.
  f::QvFPlaylist ReadPlaylist(const std::string& name) {
    QvFCsvProgramEntry& entry = reader_.index().programEntry(u"PG1");
    const std::size_t first = entry.contents_paths.size();
    f::QvFPlaylist playlist = reader_.readPlaylist(U16(dir_.Sub("P/" + name)));
    for (std::size_t i = first; i < entry.contents_paths.size(); ++i) {
      reader_.readContents(converter::JoinPath(U16(dir_.Sub("P")), entry.contents_paths[i]), playlist, entry);
    }
    return playlist;
  }
  // The items that one contents file gives.
  f::QvFPlaylist Item(const std::string& utf8) {
    f::QvFPlaylist playlist;
    reader_.readContents(Write("c.csv", utf8), playlist, reader_.index().programEntry(u"PG1"));
    return playlist;
  }

  qvtest::ScratchDir dir_;
  QvFReadCsv reader_;
  QvFWriteCsv writer_{u"20240101_000000"};
};

TEST_F(CsvPlaylist, KindsByExtensionAndContentIds) {
  auto movie = Item("..\\\\contents\\\\\\\\A.MP4\n" + Line2("1"));
  ASSERT_EQ(movie.contents.size(), 1u);
  const f::QvFMovie* m = f::AsMovie(movie.contents[0].get());
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->ref_content.text, u"CT1");
  EXPECT_EQ(m->ref_content.kind, f::kIdContent);
  EXPECT_EQ(f::FormatTime(m->play_time.time), u"00:01:02");
  EXPECT_EQ(f::FormatColorHex(m->background_color), u"0x010203");
  EXPECT_EQ(m->aspect, 3);
  EXPECT_EQ(m->volume, 70);
  EXPECT_EQ(m->play_time.content_end, f::kEndNext);
  EXPECT_EQ(m->play_time.timeout, f::kTimeoutContinue);

  // The same path again: the same identifier, one more content file.
  EXPECT_EQ(f::AsMovie(Item("..\\\\contents\\\\A.MP4\n" + Line2("1")).contents.at(0).get())->ref_content.text,
            u"CT1");
  EXPECT_TRUE(Item("..\\\\contents\\\\A.MP4\n" + Line2("4")).contents.empty());
  EXPECT_EQ(f::AsTelop(Item("t.TLP\n" + Line2("4")).contents.at(0).get())->aspect, 3);
  EXPECT_EQ(f::AsImage(Item("p.JPEG\n" + Line2("1")).contents.at(0).get())->type, 0);
  EXPECT_EQ(f::AsImage(Item("p.Png\n" + Line2("1")).contents.at(0).get())->type, 1);
  EXPECT_EQ(f::AsImage(Item("p.gif\n" + Line2("1")).contents.at(0).get())->type, 2);
  EXPECT_EQ(f::AsImage(Item("p.bmp\n" + Line2("1")).contents.at(0).get())->type, 3);
  for (const char* kind : {"0", "2", "3", "5", "6", "9"}) {
    EXPECT_TRUE(Item("x.mp4\n" + Line2(kind)).contents.empty()) << kind;
  }
  EXPECT_TRUE(Item("x.avi\n" + Line2("1")).contents.empty());
  EXPECT_TRUE(Item("x.mp4\n").contents.empty());  // no line 2, no item

  // Backslash runs are one backslash: the same path as the first movie.
  const QvFCsvIndex& index = reader_.index();
  EXPECT_EQ(index.content_ids.count(u"..\\contents\\A.MP4"), 1u);
  EXPECT_EQ(index.content_ids.count(u"x.mp4"), 0u);
  ASSERT_EQ(index.content_files.size(), 7u);
  EXPECT_EQ(index.content_files[0].id, u"CT1");
  EXPECT_EQ(index.content_files[1].id, u"CT1");
  EXPECT_EQ(index.content_files[1].path, u"..\\contents\\A.MP4");
}

TEST_F(CsvPlaylist, AspectVolumeAndEndCodeColumns) {
  auto read = [&](const std::string& line) { return Item("a.mp4\n" + line).contents.at(0); };
  const auto m = read("1,,,,,,,,,,\n");  // eleven columns, empty volume
  EXPECT_EQ(f::AsMovie(m.get())->aspect, 0);
  EXPECT_EQ(f::AsMovie(m.get())->volume, 0);
  EXPECT_EQ(f::AsMovie(read("1,,,,,7\n").get())->aspect, 2);
  const auto e = read("1,,,,0x0,1,,,,,-3,,,,,,,,12\n");
  EXPECT_EQ(f::AsMovie(e.get())->aspect, 1);
  EXPECT_EQ(f::AsMovie(e.get())->volume, -3);
  EXPECT_EQ(e->play_time.content_end, f::kEndLoop);
  EXPECT_EQ(e->play_time.timeout, f::kTimeoutContinue);
  EXPECT_EQ(read("1,,,,,,,,,,,,,,,,,,41\n")->play_time.content_end, f::kEndNext);
  EXPECT_EQ(read("1,,,,,,,,,,,,,,,,,,10\n")->play_time.content_end, f::kEndLoop);
  // An image reads no end code.
  EXPECT_EQ(Item("a.png\n" + Line2("1")).contents.at(0)->play_time.content_end, f::kEndLoop);
}

TEST_F(CsvPlaylist, PackedEffectCodes) {
  struct Case {
    std::string code;
    bool effect;
    int type, direction;
    bool via;
  };
  const Case cases[] = {
      {"0", false, 0, 0, false},        {"1", true, 18, 0, false},
      {"2", true, 1, 0, false},         {"18", true, 17, 0, false},
      {"19", false, 0, 0, false},       {"258", true, 1, 1, false},
      {"65537", true, 18, 0, true},     {"1073741824", false, 0, 0, false},
      {"1073746690", true, 1, 19, false}, {"4865", true, 18, 0, false},
  };
  for (const Case& c : cases) {
    const f::QvFPlaylist playlist = Item("i.jpg\n" + Line2("1", c.code));
    const f::QvFImage* image = f::AsImage(playlist.contents.at(0).get());
    ASSERT_EQ(image->image_effect.has_value(), c.effect) << c.code;
    if (!c.effect) continue;
    EXPECT_EQ(image->image_effect->type, std::optional<std::int32_t>(c.type)) << c.code;
    EXPECT_EQ(image->image_effect->direction, c.direction) << c.code;
    EXPECT_EQ(image->image_effect->via_backgroundcolor, std::optional<bool>(c.via)) << c.code;
    EXPECT_EQ(image->image_effect->t, 5);
  }
}

TEST_F(CsvPlaylist, BadContentsLinesAreBadFiles) {
  const std::string bad[] = {
      "noextension\n" + Line2("1"),
      ".png\n" + Line2("1"),      // shorter than ".jpeg", which is compared first
      "a.mp4\n1,00:00:01\n",      // the colour column is missing
      "a.tlp\n4,00:00:01,,,\n",   // the aspect column is missing
      "a.mp4\n1,,,,ff0000,0\n",   // a colour without "#" or "0x"
  };
  for (const std::string& text : bad) EXPECT_EQ(CodeOf([&] { Item(text); }), -102) << text;
  EXPECT_EQ(CodeOf([&] { Item("\n7\n"); }), -102);  // a blank needs its time column
  EXPECT_EQ(CodeOf([&] { Item("\n1\n"); }), -102);  // an empty path has no extension to compare
}

TEST_F(CsvPlaylist, PlaceholderOnlyBeforeTheFirstItems) {
  Write("program.csv",
        "n\n0x0,0,0,0,0,\n0,playlist_0.csv,0,0,0,0,0x112233\n"
        "1,playlist_1.csv,0,0,0,0,#445566,false,0,true\n2,playlist_2.csv,0,0,0,0,#000000,false,0,true\n"
        "3,playlist_3.csv,0,0,0,0,#778899,false,0,true\n");
  reader_.readProgram(U16(dir_.Sub("P/program.csv")));
  Write("playlist_1.csv", "");
  Write("playlist_2.csv", "information\\\\\\\\c1.csv\n");
  Write("playlist_3.csv", "");
  Write("information/c1.csv", "\n7,00:00:09\n");

  f::QvFPlaylist first = ReadPlaylist("playlist_1.csv");
  EXPECT_EQ(first.id.text, u"PL1");
  ASSERT_EQ(first.contents.size(), 1u);
  const f::QvFNone* blank = f::AsNone(first.contents[0].get());
  ASSERT_NE(blank, nullptr);
  EXPECT_TRUE(blank->has_background_color);
  EXPECT_EQ(f::FormatColorHex(blank->background_color), u"0x445566");
  EXPECT_EQ(f::FormatTime(blank->play_time.time), u"00:00:00");

  // Kind 7 takes the program's background colour.
  f::QvFPlaylist second = ReadPlaylist("playlist_2.csv");
  ASSERT_EQ(second.contents.size(), 1u);
  EXPECT_EQ(f::FormatColorHex(f::AsNone(second.contents[0].get())->background_color), u"0x112233");
  EXPECT_EQ(reader_.index().programEntry(u"PG1").contents_paths.back(), u"information\\c1.csv");

  EXPECT_TRUE(ReadPlaylist("playlist_3.csv").contents.empty());

  // A telop pane's placeholder has no colour.
  QvFReadCsv other;
  other.index().addProgramId(u"P");
  other.readProgram(U16(dir_.Sub("P/program.csv")));
  Write("playlist_5.csv", "");
  f::QvFPlaylist telop = other.readPlaylist(U16(dir_.Sub("P/playlist_5.csv")));
  ASSERT_EQ(telop.contents.size(), 1u);
  EXPECT_FALSE(f::AsNone(telop.contents[0].get())->has_background_color);
}

TEST_F(CsvPlaylist, WrittenPlaylistOfEveryKindReadsBack) {
  auto movie = std::make_shared<f::QvFMovie>();
  movie->ref_content.assign(u"CT7");
  movie->aspect = 2;
  movie->volume = 55;
  f::ParseColor(u"#80a0b0c0", movie->background_color);
  f::ParseTime(u"01:00:05", movie->play_time.time);
  movie->play_time.content_end = f::kEndStopBackgroundColor;
  movie->play_time.timeout = f::kTimeoutContinue;
  auto image = std::make_shared<f::QvFImage>();
  image->ref_content.assign(u"CT8");
  image->type = 2;
  image->aspect = 1;
  f::ParseTime(u"00:00:00", image->play_time.time);
  image->image_effect.emplace();
  image->image_effect->type = f::kEffectRandom;
  image->image_effect->direction = f::kDirectionRandom;
  image->image_effect->via_backgroundcolor = true;
  image->image_effect->t = 3;
  auto wipe = std::make_shared<f::QvFImage>();
  wipe->ref_content.assign(u"CT8");
  wipe->type = 2;
  wipe->image_effect.emplace();
  wipe->image_effect->type = f::kEffectWipe;
  wipe->image_effect->direction = f::kDirectionUp;
  auto telop = std::make_shared<f::QvFTelop>();
  telop->ref_content.assign(u"CT7");
  telop->aspect = 3;
  telop->play_time.content_end = f::kEndStopLast;
  auto blank = std::make_shared<f::QvFNone>();
  f::ParseTime(u"00:00:30", blank->play_time.time);
  f::QvFPlaylist written;
  written.contents = {movie, image, wipe, telop, blank};

  f::QvFProgram program;
  program.pane_info.panes.resize(2);
  writer_.outputProgram(U16(dir_.Sub("P/program.csv")), program);
  QvFNameMap names;
  const std::u16string folder = U16(dir_.Sub("P"));
  writer_.outputPlaylistFile(1, folder, &written, names);
  writer_.outputPlaylistFile(2, folder, nullptr, names);
  EXPECT_EQ(names.at(u"CT7"), u"CT7.mp4");  // the first name of an identifier stays
  EXPECT_EQ(names.at(u"CT8"), u"CT8.gif");
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("P/playlist_2.csv")), "");
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("P/information/contents_1_002.csv")),
            "..\\\\contents\\\\CT8.gif\r\n"
            "1,00:00:00,,false,0x000000,1,,0,0,0,100,1073807361,3,0,-1,-1,-1,-1,11\r\n");

  reader_.readProgram(U16(dir_.Sub("P/program.csv")));
  f::QvFPlaylist back = ReadPlaylist("playlist_1.csv");
  ASSERT_EQ(back.contents.size(), 5u);
  const f::QvFMovie* m = f::AsMovie(back.contents[0].get());
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->aspect, 2);
  EXPECT_EQ(m->volume, 55);
  EXPECT_EQ(f::FormatColorHex(m->background_color), u"0x80a0b0c0");
  EXPECT_EQ(f::FormatTime(m->play_time.time), u"01:00:05");
  EXPECT_EQ(m->play_time.content_end, f::kEndStopBackgroundColor);
  EXPECT_EQ(m->play_time.timeout, f::kTimeoutContinue);
  const f::QvFImage* i = f::AsImage(back.contents[1].get());
  ASSERT_NE(i, nullptr);
  EXPECT_EQ(i->type, 2);
  EXPECT_EQ(i->aspect, 1);
  ASSERT_TRUE(i->image_effect.has_value());
  EXPECT_EQ(i->image_effect->type, std::optional<std::int32_t>(f::kEffectRandom));
  EXPECT_EQ(i->image_effect->direction, f::kDirectionRandom);
  EXPECT_EQ(i->image_effect->via_backgroundcolor, std::optional<bool>(true));
  EXPECT_EQ(i->image_effect->t, 3);
  const f::QvFImage* w = f::AsImage(back.contents[2].get());
  ASSERT_TRUE(w->image_effect.has_value());
  EXPECT_EQ(w->image_effect->type, std::optional<std::int32_t>(f::kEffectWipe));
  EXPECT_EQ(w->image_effect->direction, f::kDirectionUp);
  const f::QvFTelop* t = f::AsTelop(back.contents[3].get());
  ASSERT_NE(t, nullptr);
  EXPECT_EQ(t->aspect, 3);
  EXPECT_EQ(t->play_time.content_end, f::kEndStopLast);
  const f::QvFNone* n = f::AsNone(back.contents[4].get());
  ASSERT_NE(n, nullptr);
  EXPECT_EQ(f::FormatTime(n->play_time.time), u"00:00:30");
  // The two images name one content file, so they share one identifier.
  EXPECT_EQ(i->ref_content.text, w->ref_content.text);
  EXPECT_NE(m->ref_content.text, i->ref_content.text);
  EXPECT_EQ(reader_.index().content_files.size(), 4u);

  // A playlist of blanks alone is an empty file, read back as one blank.
  f::QvFPlaylist blanks;
  blanks.contents = {blank, blank};
  writer_.outputPlaylistFile(3, folder, &blanks, names);
  EXPECT_EQ(qvtest::ReadFile(dir_.Sub("P/playlist_3.csv")), "");
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
