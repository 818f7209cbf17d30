// Writing the programs of a CSV project: the program file of a program
// folder, its playlist files and one contents file for each item.
#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/qv_conv_exception.h"
#include "csv/contents_line.h"
#include "csv/qvf_write_csv.h"
#include "model/qvf_text_forms.h"
#include "platform/file_system.h"
#include "workspace/project_path.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::io::csv {

namespace {

using converter::Guarded;
using converter::QvConvException;
using converter::ThrowCode;
namespace codes = converter::codes;

// The colour text of line 2 of a program file; nothing reads it.
constexpr char16_t kFrameColor[] = u"0xD4F0FF";
// The colour of a pane line that stands for no pane.
constexpr char16_t kNoPaneColor[] = u"0x000000";

// Pane numbers 0 to 8 are always written; the panes of the record take the
// numbers 1 to 6 in their order.
constexpr std::int32_t kPaneLines = 9;
constexpr std::int32_t kFirstPane = 1;
constexpr std::int32_t kLastPane = 6;
constexpr std::int32_t kSoundPane = 7;

// Content kinds written in column 0 of line 2.
using contents_line::kKindBlank;
using contents_line::kKindFile;

// The aspect modes 1, 2 and 3 stand as they are; anything else is 0.
std::u16string AspectText(std::int32_t aspect) {
  return fmt::FormatInt(aspect >= 1 && aspect <= 3 ? aspect : 0);
}

// The two-digit end code as the writer numbers it: content_end as a digit,
// then timeout as a digit; a value out of range gives the digit 0.  The reader
// numbers the same column from 1 ("11" is loop/stop), so the two meet only for
// loop/stop, which both read as their default.
std::u16string EndCodeText(const fmt::QvFPlayTime& play_time) {
  const std::int32_t end =
      play_time.content_end >= fmt::kEndLoop && play_time.content_end <= fmt::kEndNext
          ? play_time.content_end
          : 0;
  const std::int32_t timeout =
      play_time.timeout == fmt::kTimeoutContinue ? fmt::kTimeoutContinue : 0;
  return fmt::FormatInt(end) + fmt::FormatInt(timeout);
}

// The packed effect code of an image: bits 0 to 7 the effect (random is 1,
// the effects 1 to 17 are 2 to 18, 0 none), bits 8 to 15 the direction, bit
// 16 through the background colour, bit 30 the random direction.  An effect
// type the low byte cannot carry (0, or beyond 18) is 0 there, which the
// reader takes for no effect; the other fields are packed all the same.
std::int32_t EffectCode(const fmt::QvFImageEffect& effect) {
  const std::int32_t type = effect.type.value_or(fmt::kEffectNone);
  std::uint32_t code = 0;
  if (type == fmt::kEffectRandom) {
    code = 1;
  } else if (type >= fmt::kEffectWipe && type < fmt::kEffectRandom) {
    code = static_cast<std::uint32_t>(type) + 1;
  }
  if (effect.direction == fmt::kDirectionRandom) {
    code |= 1u << 30;
  } else if (effect.direction >= fmt::kDirectionUp && effect.direction < fmt::kDirectionRandom) {
    code |= static_cast<std::uint32_t>(effect.direction) << 8;
  }
  if (effect.via_backgroundcolor.value_or(false)) code |= 1u << 16;
  return static_cast<std::int32_t>(code);
}

// Line 2 of a contents file, of which the item fills the kind, time, colour,
// aspect, volume, effect and end code; the other columns are fixed.
QvCsvFile::Row ItemLine(std::int32_t kind, const fmt::QvFPlayTime& play_time, std::u16string color,
                        std::u16string aspect, std::u16string volume, std::u16string effect,
                        std::u16string effect_time) {
  namespace column = contents_line;
  QvCsvFile::Row line = {u"", u"", u"", u"false", u"",   u"",   u"",   u"0",  u"0", u"0",
                         u"", u"", u"", u"0",     u"-1", u"-1", u"-1", u"-1", u""};
  static_assert(column::kColumns == 19);
  line[column::kKind] = fmt::FormatInt(kind);
  line[column::kTime] = fmt::FormatTime(play_time.time);
  line[column::kColor] = std::move(color);
  line[column::kAspect] = std::move(aspect);
  line[column::kVolume] = std::move(volume);
  line[column::kEffect] = std::move(effect);
  line[column::kEffectTime] = std::move(effect_time);
  line[column::kEndCode] = EndCodeText(play_time);
  return line;
}

// `folder` + "\" + `name`, without doubling a separator the folder ends in.
std::u16string InFolder(const std::u16string& folder, std::u16string_view name) {
  if (!folder.empty() && (folder.back() == u'/' || folder.back() == u'\\')) {
    return folder + std::u16string(name);
  }
  return converter::JoinPath(folder, name);
}

bool IsBlank(const std::shared_ptr<fmt::QvFContent>& item) {
  return !item || item->kind == fmt::kContentNone;
}

}  // namespace

void QvFWriteCsv::outputProgram(std::u16string path, fmt::QvFProgram program) {
  Guarded(codes::kCsvIoFailed, [&] {
    const fmt::QvFProgramInfo& info = program.program_info;
    const std::array<std::u16string, 4> frame = fmt::FormatRegion(info.region);
    const std::u16string background = fmt::FormatColorHex(info.background_color);
    const std::vector<fmt::QvFPane>& panes = program.pane_info.panes;

    QvCsvFile file;
    file.AddRow({program.name});
    file.AddRow({kFrameColor, frame[0], frame[1], frame[2], frame[3],
                 fmt::FormatTime(info.program_time),
                 info.layout_lock.value_or(false) ? u"1" : u"0"});

    for (std::int32_t i = 0; i < kPaneLines; ++i) {
      QvCsvFile::Row row{fmt::FormatInt(i), playlistFileName(i)};
      const std::size_t pane_index = static_cast<std::size_t>(i - kFirstPane);
      if (i == 0) {
        // The background line repeats the frame and carries the colour.
        row.insert(row.end(), frame.begin(), frame.end());
        row.insert(row.end(), {background, u"false", u"0", u"true"});
      } else if (i <= kLastPane && pane_index < panes.size()) {
        const fmt::QvFPane& pane = panes[pane_index];
        const std::array<std::u16string, 4> region = fmt::FormatRegion(pane.region);
        row.insert(row.end(), region.begin(), region.end());
        row.insert(row.end(),
                   {background, fmt::FormatFlag(pane.playlist_file.mute), u"0", u"true"});
      } else {
        // No pane here; the sound line is marked in use all the same.
        row.insert(row.end(), {u"0", u"0", u"0", u"0", kNoPaneColor, u"false", u"0",
                               i == kSoundPane ? u"true" : u"false"});
      }
      file.AddRow(std::move(row));
    }
    file.WriteFile(path);
  });
}

void QvFWriteCsv::outputPlaylist(std::u16string, fmt::QvFPlaylist) {}

void QvFWriteCsv::outputPlaylistFile(std::int32_t index, std::u16string folder,
                                     const fmt::QvFPlaylist* playlist, QvFNameMap& content_names) {
  Guarded(codes::kCsvIoFailed, [&] {
    const std::u16string path = InFolder(folder, playlistFileName(index));
    // A playlist of blanks alone is written empty: the reader brings the
    // blank back from the pane's colour.
    bool all_blank = true;
    if (playlist != nullptr) {
      for (const auto& item : playlist->contents) all_blank = all_blank && IsBlank(item);
    }
    if (playlist == nullptr || all_blank) {
      converter::run_log::Step("write", path);
      platform::WriteFile(path, "");  // a failure here is not reported
      return;
    }

    QvCsvFile file;
    std::int32_t number = 0;
    bool information = false;  // made (or found) for this playlist's first item
    for (const auto& item : playlist->contents) {
      if (!item) continue;
      const std::u16string contents = contentsFileName(index, ++number);
      file.AddRow({contents});
      if (!information && platform::MakeDirectory(InFolder(folder, informationFolderName())) ==
                              platform::MakeDirResult::kFailed) {
        ThrowCode(codes::kCannotCreate);
      }
      information = true;
      outputContents(InFolder(folder, contents), *item, content_names);
    }
    // The list comes last, after all its contents files stand.
    file.WriteFile(path);
  });
}

void QvFWriteCsv::outputContents(std::u16string path, const fmt::QvFContent& item,
                                 QvFNameMap& content_names) {
  Guarded(codes::kCsvIoFailed, [&] {
    QvCsvFile file;
    std::u16string content_file;
    std::u16string content_id;
    if (const fmt::QvFMovie* movie = fmt::AsMovie(&item)) {
      content_id = movie->ref_content.text;
      content_file = movieFileName(content_id);
      file.AddRow({contentReference(content_file)});
      file.AddRow(ItemLine(kKindFile, movie->play_time,
                           fmt::FormatColorHex(movie->background_color), AspectText(movie->aspect),
                           fmt::FormatInt(movie->volume), u"0", u"0"));
    } else if (const fmt::QvFImage* image = fmt::AsImage(&item)) {
      content_id = image->ref_content.text;
      content_file = imageFileName(content_id, image->type);
      std::int32_t effect = 0;
      std::int32_t effect_time = 0;
      if (image->image_effect) {
        effect = EffectCode(*image->image_effect);
        effect_time = image->image_effect->t;
      }
      file.AddRow({contentReference(content_file)});
      file.AddRow(ItemLine(kKindFile, image->play_time,
                           fmt::FormatColorHex(image->background_color), AspectText(image->aspect),
                           u"100", fmt::FormatInt(effect), fmt::FormatInt(effect_time)));
    } else if (const fmt::QvFTelop* telop = fmt::AsTelop(&item)) {
      // A telop has no colour of its own; column 4 holds opaque black so that
      // the aspect and the end code stand where they are looked for.
      content_id = telop->ref_content.text;
      content_file = telopFileName(content_id);
      file.AddRow({contentReference(content_file)});
      file.AddRow(ItemLine(kKindFile, telop->play_time, kNoPaneColor, AspectText(telop->aspect),
                           u"100", u"0", u"0"));
    } else if (const fmt::QvFNone* blank = fmt::AsNone(&item)) {
      // A blank shows no file: line 1 stays empty, and the kind is the blank
      // without a colour of the program, with its own colour in column 4.
      const fmt::QvFColor color =
          blank->has_background_color ? blank->background_color : fmt::QvFColor{};
      file.AddRow({u""});
      file.AddRow(ItemLine(kKindBlank, blank->play_time, fmt::FormatColorHex(color), u"0", u"100",
                           u"0", u"0"));
    } else {
      return;  // no record of this kind exists
    }
    if (!content_file.empty()) content_names.emplace(content_id, content_file);
    file.WriteFile(path);
  });
}

}  // namespace quorvane::qvconv::io::csv
