// Reading the programs of a CSV project: the program file of a program
// folder, its playlist files and the contents file of each item.
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/qv_conv_exception.h"
#include "csv/contents_line.h"
#include "csv/qvf_read_csv.h"
#include "model/qvf_content_files.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"
#include "workspace/project_path.h"

namespace quorvane::qvconv::io::csv {

namespace {

using converter::Guarded;
using converter::QvConvException;
using converter::ThrowCode;
namespace codes = converter::codes;

// Line 3 is the first pane line of a program file (row 2).
constexpr std::size_t kFirstPaneRow = 2;

// Columns of a pane line.
constexpr std::size_t kPaneFile = 1;
constexpr std::size_t kPaneX = 2;
constexpr std::size_t kPaneColor = 6;
constexpr std::size_t kPaneMute = 7;
constexpr std::size_t kPaneInUse = 9;

// Line 2 of a contents file.
constexpr std::size_t kItemKind = contents_line::kKind;
constexpr std::size_t kItemTime = contents_line::kTime;
constexpr std::size_t kItemColor = contents_line::kColor;
constexpr std::size_t kItemAspect = contents_line::kAspect;
constexpr std::size_t kItemVolume = contents_line::kVolume;
constexpr std::size_t kItemEffect = contents_line::kEffect;
constexpr std::size_t kItemEffectTime = contents_line::kEffectTime;
constexpr std::size_t kItemEndCode = contents_line::kEndCode;
using contents_line::kKindBlank;
using contents_line::kKindBlankWithColor;
using contents_line::kKindFile;
using contents_line::kKindTelop;

// A line too short for a column that must be read ends the read.
void RequireColumns(const QvCsvFile::Row& row, std::size_t count) {
  if (row.size() < count) ThrowCode(codes::kProjectFileBad);
}

// The name of the folder that holds the file at `path`: the path is cut at
// its last backslash, and what stands behind the last backslash of the rest is
// the folder name.  A "/" is part of a name here, as it is to the project's
// own tables ("sub/Program_1" is one key).
std::u16string FolderNameOf(const std::u16string& path) {
  const std::size_t cut = path.rfind(u'\\');
  return converter::FileNameOf(cut == std::u16string::npos
                                   ? std::u16string_view(path)
                                   : std::u16string_view(path).substr(0, cut));
}

// Every run of backslashes becomes one backslash.  Project files written by
// hand often double them once more than the escape of the file asks for.
std::u16string ReduceBackslashes(const std::u16string& text) {
  std::u16string out;
  out.reserve(text.size());
  for (char16_t c : text) {
    if (c == u'\\' && !out.empty() && out.back() == u'\\') continue;
    out += c;
  }
  return out;
}

// The content path with its extension (from the last "." on) in lower case,
// the text before it as it is.  A path without a "." has no kind: the
// standard out-of-range failure, which ends the read as a bad file.
std::u16string ComparisonPath(const std::u16string& path) {
  const std::size_t dot = path.rfind(u'.');
  if (dot == std::u16string::npos) throw std::out_of_range("content path without an extension");
  std::u16string out = path;
  for (std::size_t i = dot; i < out.size(); ++i) out[i] = fmt::AsciiLower(out[i]);
  return out;
}

// Does the comparison path end in `extension`?  A path shorter than the
// extension cannot be compared: the out-of-range failure again.
bool EndsWith(const std::u16string& path, std::u16string_view extension) {
  if (path.size() < extension.size())
    throw std::out_of_range("content path shorter than its extension");
  return path.compare(path.size() - extension.size(), extension.size(), extension) == 0;
}

// What a file of kind 1 or 4 becomes, told by the extension.
enum class ItemKind { kNone, kMovie, kTelop, kImage };

struct FileItem {
  ItemKind kind = ItemKind::kNone;
  std::int32_t type = 0;
};

// The item of a content file by its extension (in lower case).
FileItem ItemOfFile(const std::u16string& path) {
  if (EndsWith(path, fmt::kMovieExtension)) return {ItemKind::kMovie, 0};
  if (EndsWith(path, fmt::kTelopExtension)) return {ItemKind::kTelop, 0};
  if (EndsWith(path, fmt::kLongJpegExtension)) return {ItemKind::kImage, 0};
  for (std::int32_t type = 0; type < 4; ++type) {
    if (EndsWith(path, fmt::ImageExtension(type))) return {ItemKind::kImage, type};
  }
  return {};
}

// Aspect modes 0, 1 and 3 stand as they are; anything else is 2.
std::int32_t AspectOf(std::u16string_view text) {
  const std::int32_t aspect = fmt::ParseInt(text);
  return aspect == 0 || aspect == 1 || aspect == 3 ? aspect : 2;
}

// The two-digit end code: tens 1 to 4 are content_end 0 to 3, units 1 and 2
// are timeout 0 and 1; any other digit is the default 0.
void ReadEndCode(std::u16string_view text, fmt::QvFPlayTime& play_time) {
  const std::int32_t code = fmt::ParseInt(text);
  const std::int32_t tens = code / 10;
  const std::int32_t units = code % 10;
  play_time.content_end = tens >= 1 && tens <= 4 ? tens - 1 : fmt::kEndLoop;
  play_time.timeout = units == 2 ? fmt::kTimeoutContinue : fmt::kTimeoutStop;
}

// The packed effect code of an image: bits 0 to 7 the effect (code 1 is
// random, codes 2 to 18 the effects 1 to 17), bits 8 to 15 the direction,
// bit 16 through the background colour, bit 30 the random direction.  An
// effect byte of 0 or beyond 18 is no effect, whatever the other bits say.
std::optional<fmt::QvFImageEffect> EffectOf(std::int32_t code) {
  const std::uint32_t bits = static_cast<std::uint32_t>(code);
  const std::uint32_t effect = bits & 0xffu;
  if (effect < 1 || effect > 18) return std::nullopt;
  fmt::QvFImageEffect result;
  result.type = effect == 1 ? fmt::kEffectRandom : static_cast<std::int32_t>(effect - 1);
  if (bits & (1u << 30)) {
    result.direction = fmt::kDirectionRandom;
  } else {
    const std::uint32_t direction = (bits >> 8) & 0xffu;
    result.direction = direction >= 1 && direction <= 18 ? static_cast<std::int32_t>(direction) : 0;
  }
  if (bits & (1u << 16)) result.via_backgroundcolor = true;
  return result;
}

}  // namespace

std::unique_ptr<fmt::QvFProgram> QvFReadCsv::readProgram(std::u16string path) {
  return Guarded(codes::kProjectFileBad, [&] {
    auto program = std::make_unique<fmt::QvFProgram>();
    QvCsvFile file;
    file.ReadFile(path);

    const std::u16string id = index_.programId(FolderNameOf(path));
    if (!id.empty()) program->id.assign(id);
    QvFCsvProgramEntry& entry = index_.programEntry(id);

    const std::u16string name = file.GetFirstField(0);
    if (!name.empty()) program->name = name;

    // The frame: area, playing time and, on newer files, the layout lock.
    const QvCsvFile::Row frame = file.GetRow(1);
    RequireColumns(frame, 6);
    fmt::QvFProgramInfo& info = program->program_info;
    fmt::ParseTime(frame[5], info.program_time);
    fmt::ParseRegion(frame[1], frame[2], frame[3], frame[4], info.region);
    if (frame.size() > 6) {
      if (std::optional<bool> lock = fmt::ParseBoolValue(frame[6])) info.layout_lock = lock;
    }

    const std::vector<QvCsvFile::Row>& rows = file.Rows();
    for (std::size_t i = kFirstPaneRow; i < rows.size(); ++i) {
      const QvCsvFile::Row& row = rows[i];
      if (row.empty()) continue;
      const std::u16string& number = row[0];
      if (number == u"0") {
        // The background line gives the program's colour and nothing else.
        RequireColumns(row, kPaneColor + 1);
        fmt::ParseColor(row[kPaneColor], info.background_color);
        entry.background_text = row[kPaneColor];
        continue;
      }
      const bool frame_pane = number == u"1" || number == u"2" || number == u"3" || number == u"4";
      const bool telop_pane = number == u"5" || number == u"6";
      if (!frame_pane && !telop_pane) continue;  // sound, picture in picture, unknown
      RequireColumns(row, kPaneInUse + 1);
      if (row[kPaneInUse] == u"false") continue;

      fmt::QvFPane pane;
      fmt::ParseRegion(row[kPaneX], row[kPaneX + 1], row[kPaneX + 2], row[kPaneX + 3], pane.region);
      const std::u16string& playlist = row[kPaneFile];
      pane.playlist_file.ref_playlist.assign(entry.addPlaylistId(playlist));
      // A frame remembers its colour for a playlist that turns out empty.
      if (frame_pane) entry.playlist_colors[playlist] = row[kPaneColor];
      if (std::optional<bool> mute = fmt::ParseBoolValue(row[kPaneMute]))
        pane.playlist_file.mute = mute;
      program->pane_info.panes.push_back(std::move(pane));
    }
    return program;
  });
}

fmt::QvFPlaylist QvFReadCsv::readPlaylist(std::u16string path) {
  return Guarded(codes::kProjectFileBad, [&] {
    fmt::QvFPlaylist playlist;
    QvCsvFile file;
    file.ReadFile(path);

    // A playlist read before its program still has an entry to collect into.
    QvFCsvProgramEntry& entry = index_.programEntry(index_.programId(FolderNameOf(path)));

    const std::u16string file_name = converter::FileNameOf(path);
    const std::u16string id = entry.playlistId(file_name);
    if (!id.empty()) playlist.id.assign(id);

    for (std::size_t i = 0; i < file.RowCount(); ++i) {
      entry.contents_paths.push_back(ReduceBackslashes(file.GetFirstField(i)));
    }

    // Until the program has a playlist with items, an empty one shows its
    // pane's colour (telop panes show nothing) for no time at all.
    if (entry.contents_paths.empty()) {
      std::u16string_view pane(file_name);
      pane = pane.substr(0, pane.rfind(u'.'));
      const std::size_t underscore = pane.rfind(u'_');
      if (underscore != std::u16string_view::npos) pane.remove_prefix(underscore + 1);

      auto blank = std::make_shared<fmt::QvFNone>();
      if (pane == u"5" || pane == u"6") {
        blank->has_background_color = false;
      } else {
        auto color = entry.playlist_colors.find(file_name);
        if (color != entry.playlist_colors.end())
          fmt::ParseColor(color->second, blank->background_color);
        blank->has_background_color = true;
      }
      fmt::ParseTime(u"00:00:00", blank->play_time.time);
      playlist.contents.push_back(std::move(blank));
    }
    return playlist;
  });
}

namespace {

// A content item of a file with what every such item reads of its line: the
// file's identifier, the type, the play time and the aspect.
template <typename Record>
std::shared_ptr<Record> NewFileItem(const std::u16string& id, std::int32_t type,
                                    const QvCsvFile::Row& line) {
  auto record = std::make_shared<Record>();
  record->ref_content.assign(id);
  record->type = type;
  fmt::ParseTime(line[kItemTime], record->play_time.time);
  record->aspect = AspectOf(line[kItemAspect]);
  return record;
}

}  // namespace

void QvFReadCsv::readContents(std::u16string path, fmt::QvFPlaylist& playlist,
                              QvFCsvProgramEntry& entry) {
  Guarded(codes::kProjectFileBad, [&] {
    QvCsvFile file;
    file.ReadFile(path);

    std::u16string content_path = file.GetFirstField(0);
    std::u16string comparison;
    if (!content_path.empty()) {
      content_path = ReduceBackslashes(content_path);
      comparison = ComparisonPath(content_path);
    }

    // A file of one line describes no item.
    if (file.RowCount() < 2) return;
    const QvCsvFile::Row line = file.GetRow(1);
    RequireColumns(line, kItemKind + 1);
    const std::int32_t kind = fmt::ParseInt(line[kItemKind]);

    if (kind == kKindBlankWithColor || kind == kKindBlank) {
      RequireColumns(line, kItemTime + 1);
      auto blank = std::make_shared<fmt::QvFNone>();
      fmt::ParseTime(line[kItemTime], blank->play_time.time);
      if (kind == kKindBlankWithColor) {
        fmt::ParseColor(entry.background_text, blank->background_color);
        blank->has_background_color = true;
      }
      // A blank takes a number like any content, though nothing refers to it.
      index_.addContentId(content_path);
      playlist.contents.push_back(std::move(blank));
      return;
    }

    FileItem item;
    if (kind == kKindFile) {
      item = ItemOfFile(comparison);
    } else if (kind == kKindTelop && EndsWith(comparison, fmt::kTelopExtension)) {
      item = {ItemKind::kTelop, 0};
    }
    if (item.kind == ItemKind::kNone) return;

    RequireColumns(line, kItemAspect + 1);
    const std::u16string id = index_.addContentId(content_path);
    std::shared_ptr<fmt::QvFContent> content;
    switch (item.kind) {
      case ItemKind::kMovie: {
        auto movie = NewFileItem<fmt::QvFMovie>(id, item.type, line);
        fmt::ParseColor(line[kItemColor], movie->background_color);
        if (line.size() > kItemVolume && !line[kItemVolume].empty()) {
          movie->volume = fmt::ParseInt(line[kItemVolume]);
        }
        if (line.size() > kItemEndCode) ReadEndCode(line[kItemEndCode], movie->play_time);
        content = std::move(movie);
        break;
      }
      case ItemKind::kTelop: {
        auto telop = NewFileItem<fmt::QvFTelop>(id, item.type, line);
        if (line.size() > kItemEndCode) ReadEndCode(line[kItemEndCode], telop->play_time);
        content = std::move(telop);
        break;
      }
      case ItemKind::kImage: {
        auto image = NewFileItem<fmt::QvFImage>(id, item.type, line);
        fmt::ParseColor(line[kItemColor], image->background_color);
        if (line.size() > kItemEffect)
          image->image_effect = EffectOf(fmt::ParseInt(line[kItemEffect]));
        if (line.size() > kItemEffectTime && image->image_effect) {
          image->image_effect->t = fmt::ParseInt(line[kItemEffectTime]);
        }
        // An image has no end code: it keeps loop and stop.
        content = std::move(image);
        break;
      }
      case ItemKind::kNone:
        return;
    }
    playlist.contents.push_back(std::move(content));
    index_.content_files.push_back(QvFCsvContentFile{id, content_path});
  });
}

}  // namespace quorvane::qvconv::io::csv
