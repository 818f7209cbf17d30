// The checks of a program file against the display region and the layout the
// target can show: one display frame, one telop, no sound, no picture in
// picture, the screen's top-left corner unchanged, a background of colour only.
#include <cstdint>
#include <string>

#include "checker/qv_ch_runner.h"
#include "checker/qv_ch_text.h"
#include "checker/qv_checker.h"
#include "model/qvf_text_forms.h"
#include "platform/file_system.h"
#include "workspace/project_path.h"

namespace quorvane::qvconv::checker {

using qvformat::format::ParseInt;

void QvChRunner::CHECK_DISP_POSITION(const std::u16string& cell) {
  if (cell.empty()) return;
  const bool axis_x = EqualsIgnoreCase(table.current.argument, u"x");
  if (!IsDigits(cell, true)) {
    reportBadCell(table, u"msg.NUMBER");
    return;
  }
  const std::int32_t value = ParseInt(cell);
  if (value == (axis_x ? checker.display_region.x : checker.display_region.y)) return;
  if (position_reported) return;
  // The first wrong corner of a file is its one finding.
  const std::u16string& id = table.current.id;
  if (id == u"PG0701" || id == u"PG0702") position_reported = true;
  reportRow();
}

void QvChRunner::CHECK_DISP_SIZE(const std::u16string& width, const std::u16string& height,
                                 const QvChSelection& row_table) {
  if (width.empty() || height.empty()) return;
  const std::int32_t w = ParseInt(width);
  const std::int32_t h = ParseInt(height);
  const std::int32_t limit_w = checker.display_region.width;
  const std::int32_t limit_h = checker.display_region.height;
  if (w <= limit_w && h <= limit_h) return;
  if (position_reported) return;
  // A frame that fits the display turned by 90 degrees fits as well.
  if (w <= limit_h && h <= limit_w) return;
  reportRow(row_table);
}

bool QvChRunner::paneEnabled(const QvChDataRow& data_row) const {
  const std::u16string& flag = data_row.at(9);
  if (flag.empty()) return false;
  return EqualsIgnoreCase(flag, u"true") || ParseInt(flag) != 0;
}

void QvChRunner::CHECK_PANE_NO(const QvChDataRow& data_row) {
  if (data_row.empty()) return;
  const std::u16string& number = data_row[0];
  if (!number.empty() && !IsDigits(number, false)) {
    checker.addResult(u"PG0900", true, table.current_pane, table.current_file, u"msg.NUMBER");
    return;
  }
  switch (ParseInt(number)) {
    case 0:
      // A background line without a playlist cell has nothing to test.
      if (data_row.size() > 1) playlistTest(data_row[1], u"PG0901", u"msg.PG0901");
      break;
    case 1:
      frameTest(data_row, u"PG0902", u"msg.PG0902");
      break;
    case 2:
      frameTest(data_row, u"PG0903", u"msg.PG0903");
      break;
    case 3:
      frameTest(data_row, u"PG0904", u"msg.PG0904");
      break;
    case 4:
      frameTest(data_row, u"PG0905", u"msg.PG0905");
      break;
    case 5:
      telopTest(data_row, u"PG0906", u"msg.PG0906");
      break;
    case 6:
      telopTest(data_row, u"PG0907", u"msg.PG0907");
      break;
    case 7:
      playlistTest(data_row.at(1), u"PG0908", u"msg.PG0908");
      break;
    case 8:
      if (paneEnabled(data_row)) {
        checker.addResult(u"PG0909", true, table.current_pane, table.current_file, u"msg.PG0909");
      }
      break;
    default:
      break;
  }
}

void QvChRunner::playlistTest(const std::u16string& cell, const std::u16string& id,
                              const std::u16string& message_key) {
  if (file.empty()) return;
  // The playlist file stands beside the program file: the path is cut at its
  // last "/" or backslash, whichever comes later.
  const std::size_t cut = file.find_last_of(u"/\\");
  const std::u16string path = cut == std::u16string::npos
                                  ? cell
                                  : converter::JoinPath(file.substr(0, cut), cell);
  std::string head;
  if (!platform::ReadFilePrefix(path, 1, &head)) return;  // a missing playlist is no finding
  if (!head.empty()) {
    checker.addResult(id, true, table.current_pane, table.current_file, message_key);
  }
}

void QvChRunner::telopTest(const QvChDataRow& data_row, const std::u16string& id,
                           const std::u16string& message_key) {
  if (!paneEnabled(data_row)) return;
  if (!telop_seen) {
    telop_seen = true;  // the first telop is allowed
    return;
  }
  checker.addResult(id, true, table.current_pane, table.current_file, message_key);
}

void QvChRunner::frameTest(const QvChDataRow& data_row, const std::u16string& id,
                           const std::u16string& message_key) {
  // Each frame test has a row of its own: no pane, no file text.
  static const QvChSelection frame_x = fixed_table.selectionOf(u"PG1101");
  static const QvChSelection frame_y = fixed_table.selectionOf(u"PG1201");
  static const QvChSelection frame_size = fixed_table.selectionOf(u"PG1301");
  if (!paneEnabled(data_row)) return;
  if (frame_seen) {
    checker.addResult(id, true, table.current_pane, table.current_file, message_key);
    return;
  }
  frame_seen = true;
  framePosition(data_row.at(2), frame_x);
  framePosition(data_row.at(3), frame_y);
  CHECK_DISP_SIZE(data_row.at(4), data_row.at(5), frame_size);
}

void QvChRunner::framePosition(const std::u16string& cell, const QvChSelection& row_table) {
  if (cell.empty()) return;
  const bool axis_x = EqualsIgnoreCase(row_table.current.argument, u"x");
  if (!IsDigits(cell, false)) {
    reportBadCell(row_table, u"msg.NUMBER");
    return;
  }
  const std::int64_t value = ParseInt(cell);
  const std::int64_t low = axis_x ? checker.display_region.x : checker.display_region.y;
  const std::int64_t size = axis_x ? checker.display_region.width : checker.display_region.height;
  if (value < low || value > low + size) reportRow(row_table);
}

}  // namespace quorvane::qvconv::checker
