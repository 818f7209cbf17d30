// The checks of a contents file: the kind of the content by its extension,
// the limits of a telop file, the background colour and the image effect.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "checker/qv_ch_message.h"
#include "checker/qv_ch_runner.h"
#include "checker/qv_ch_text.h"
#include "checker/qv_checker.h"
#include "model/qvf_text.h"
#include "model/qvf_text_forms.h"
#include "platform/file_system.h"
#include "platform/text_codec.h"
#include "workspace/project_path.h"
#include "workspace/run_log.h"
#include "workspace/text_conversion.h"

namespace quorvane::qvconv::checker {
namespace {

// A text line longer than this many characters takes no part in the longest
// line.
constexpr std::size_t kMaxCountedLine = 1024;

// The telop limits.  Fields of the parameter line, by index from 0.
constexpr std::size_t kFontSizeField = 2;
constexpr std::size_t kTelopModeField = 7;
// The largest font size the player draws.
constexpr double kMaxFontSize = 200;
// Width of one character and height of one line, per unit of font size.
constexpr double kCharacterWidth = 1.172;
constexpr double kLineHeight = 1.55;
// The margin that the layout modes 2, 4, 6, 8 and 10 add to a line:
// font_size / kMarginDivisor + kMarginExtra.
constexpr double kMarginDivisor = 3.875118;
constexpr double kMarginExtra = 12.0;
// The layout mode in which the number of lines is limited too.
constexpr double kLineLimitMode = 3;
// The longest line, and the tallest text, that the player can lay out.
constexpr double kMaxExtent = 8192.0;

// What the telop tests read of a telop file.
struct TelopText {
  std::size_t lines = 0;              // lines read, the first two included
  std::vector<std::string> parameters;  // fields of line 2, UTF-8
  std::size_t longest_line = 0;         // M: characters of the longest text line
};

// Fields of the parameter line: none without a comma, n + 1 with n commas.
std::vector<std::string> SplitParameters(const std::string& line) {
  if (line.find(',') == std::string::npos) return {};
  return qvformat::format::SplitAtCommas<char>(line);
}

// A line behind line 1, in UTF-8: line 2 holds the parameters, lines 3 and
// on the text, which ends at `end_of_text`.
void TakeLine(TelopText& telop, std::string utf8, char end_of_text) {
  ++telop.lines;
  if (telop.lines == 2) {
    telop.parameters = SplitParameters(utf8);
  } else {
    const std::size_t end = utf8.find(end_of_text);
    if (end != std::string::npos) utf8.resize(end);
    const std::size_t length = CountUtf8Characters(utf8);
    if (length <= kMaxCountedLine && length > telop.longest_line) telop.longest_line = length;
  }
}

// Calls `take` with each line of `text` without its LF, as a stream reads
// lines: the last line needs no line end, and a text that ends with one has
// no empty line behind it.
template <typename Take>
void ForEachLine(std::u16string_view text, Take take) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(u'\n', start), text.size());
    take(std::u16string(text.substr(start, end - start)));
    start = end + 1;
  }
}

TelopText ReadTelop(const std::u16string& path) {
  std::string bytes;
  if (!platform::ReadFile(path, &bytes)) {
    converter::run_log::Loss(
        "telop", path, "cannot be opened: the check stops here, with no report and no output");
    throw std::runtime_error("cannot open file");
  }
  const int mark = converter::ByteOrderMarkOf(bytes);
  TelopText telop;
  if (mark == 1) {
    // UTF-16 little-endian after its mark, lines ending in LF.
    const std::u16string text =
        platform::Utf16FromUtf16Bytes(std::string_view(bytes).substr(2), false);
    ForEachLine(text, [&](const std::u16string& line) {
      if (telop.lines == 0) {
        telop.lines = 1;  // line 1 is not read
        return;
      }
      TakeLine(telop, converter::Utf8FromWide(line), '\r');
    });
    return telop;
  }
  // Code page 932 text in pieces, so that a longer physical line counts as
  // several lines.
  converter::ForEachTextPiece(bytes, [&](std::string utf8) {
    if (telop.lines == 0) {
      telop.lines = 1;  // line 1 is not read
      return;
    }
    TakeLine(telop, std::move(utf8), '\n');
  });
  return telop;
}

// A parameter field taken as a number.
double FieldNumber(const std::vector<std::string>& fields, std::size_t index) {
  const std::string& field = fields.at(index);
  std::u16string wide(field.begin(), field.end());
  return static_cast<double>(qvformat::format::ParseInt(wide));
}

// The extension of a content path: behind its last ".", empty without one.
std::u16string ExtensionOf(const std::u16string& cell) {
  const std::size_t dot = cell.rfind(u'.');
  if (dot == std::u16string::npos) return std::u16string();
  return cell.substr(dot + 1);
}

// Cuts a path at its last backslash; a path without one stays as it is.  A
// "/" does not cut: the levels counted here are those of a project, whose
// names are joined with backslashes.
void CutLastComponent(std::u16string& path) {
  const std::size_t cut = path.rfind(u'\\');
  if (cut != std::u16string::npos) path.resize(cut);
}

// Only "..\" is a step up here; "../" is part of a name.
bool StartsWithParentStep(const std::u16string& text) { return text.starts_with(u"..\\"); }

}  // namespace

std::u16string QvChRunner::telopPath(const std::u16string& cell) const {
  std::u16string folder = file;
  if (folder.size() > 1 && folder.back() == u'\\') folder.pop_back();
  std::u16string rest = cell;
  if (!checker.check_only) {
    if (!StartsWithParentStep(rest)) return rest;
    rest.erase(0, 3);
    for (int i = 0; i < 3; ++i) CutLastComponent(folder);
    return converter::JoinPath(folder, rest);
  }
  if (!StartsWithParentStep(rest)) return rest;
  for (int i = 0; i < 6; ++i) CutLastComponent(folder);
  while (StartsWithParentStep(rest)) {
    rest.erase(0, 3);
    CutLastComponent(folder);
  }
  return converter::JoinPath(folder, rest);
}

bool QvChRunner::telopExceedsLimits(const std::u16string& path) {
  const TelopText telop = ReadTelop(path);
  const double font_size = FieldNumber(telop.parameters, kFontSizeField);
  if (font_size > kMaxFontSize) {
    table.current.id = u"CI2300";
    table.current.message_key = u"msg.CI2300";
    return true;
  }
  const double mode = FieldNumber(telop.parameters, kTelopModeField);
  double length = font_size * kCharacterWidth * static_cast<double>(telop.longest_line);
  if (mode == 2 || mode == 4 || mode == 6 || mode == 8 || mode == 10) {
    length = length + font_size / kMarginDivisor + kMarginExtra;  // in this order, as doubles
  }
  if (length >= kMaxExtent) {
    table.current.id = u"CI2301";
    table.current.message_key = u"msg.CI2301";
    return true;
  }
  const double text_lines = static_cast<double>(telop.lines) - 2;
  if (mode == kLineLimitMode && font_size * kLineHeight * text_lines >= kMaxExtent) {
    table.current.id = u"CI2302";
    table.current.message_key = u"msg.CI2302";
    return true;
  }
  return false;
}

void QvChRunner::reportExtension(const std::u16string& extension) {
  std::u16string text = QvChMessage::getMessage(table.current.message_key);
  if (text.empty()) {
    text = QvChMessage::getMessage(u"msg.CH0000");
  } else {
    text = qvformat::format::ReplaceAll(text, u"$str$", u"." + extension);
  }
  if (table.current.id == u"CI0100") extension_reported = true;
  checker.addResultText(table.current.id, table.current.is_error, table.current_pane,
                        table.current_file, text);
}

void QvChRunner::CHECK_OK_EXT(const std::u16string& cell) {
  if (cell.empty()) return;
  // A URL has no extension to test.
  if (cell.find(u"http://") != std::u16string::npos ||
      cell.find(u"https://") != std::u16string::npos) {
    return;
  }
  const std::u16string extension = ExtensionOf(cell);
  if (extension.empty()) {
    checker.addResult(table.current.id, table.current.is_error, table.current_pane,
                      table.current_file, u"msg.CI0199");
    return;
  }
  for (const std::u16string& allowed : fixed_table.ok_extensions) {
    if (!EqualsIgnoreCase(allowed, extension)) continue;
    if (extension != u"tlp") return;  // accepted; a telop in capitals is not opened
    if (!telopExceedsLimits(telopPath(cell))) return;
    break;
  }
  if (extension == u"exe") table.current.message_key = u"msg.CI0203";
  if (extension == u"dcv") table.current.message_key = u"msg.CI0210";
  reportExtension(extension);
}

void QvChRunner::CHECK_NG_EXT(const std::u16string& cell) {
  if (cell.empty()) return;
  const std::u16string extension = ExtensionOf(cell);
  if (extension.empty()) {
    checker.addResult(table.current.id, table.current.is_error, table.current_pane,
                      table.current_file, u"msg.CI0199");
    return;
  }
  for (const std::u16string& refused : fixed_table.ng_extensions) {
    if (EqualsIgnoreCase(refused, extension)) {
      reportExtension(extension);
      return;
    }
  }
}

void QvChRunner::CHECK_COLOR(const std::u16string& cell) {
  // An empty background colour is transparent.  This Result's id is the
  // row's kind.
  if (cell == table.current.argument) {
    checker.addResult(table.current.kind, table.current.is_error, table.current_pane,
                      table.current_file, table.current.message_key);
  }
}

void QvChRunner::CHECK_EFFECT_KIND(const std::u16string& cell) {
  if (cell.empty()) return;
  const auto code = static_cast<std::uint32_t>(qvformat::format::ParseInt(cell));
  static constexpr std::uint32_t kByteMask[4] = {0xFFu, 0xFF00u, 0xFF0000u, 0xFF000000u};
  for (const QvChEffectRow& effect : fixed_table.effect_rows) {
    if (effect.byte_pattern[0].empty()) continue;
    bool match = true;
    for (int b = 0; b < 4 && match; ++b) {
      const std::u16string& pattern = effect.byte_pattern[b];
      if (pattern.empty()) continue;
      const std::u16string digits = qvformat::format::ReplaceAll(pattern, u"0x", u"");
      const auto wanted = static_cast<std::uint32_t>(ParseHex(digits));
      match = wanted == (code & kByteMask[b]);
    }
    if (match) {
      checker.addResult(effect.id, effect.is_error, table.current_pane, table.current_file,
                        effect.message_key);
      return;
    }
  }
}

}  // namespace quorvane::qvconv::checker
