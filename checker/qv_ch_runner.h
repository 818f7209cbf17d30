// QvChRunner: the check of one file.  It walks the rows of the file against
// the column template of the file's kind and runs the operation of each check
// id that the template names for a cell.  Findings go to the checker's report.
//
// A runner lives for one file: its flags start false and its selection empty,
// so a second program file starts again without a frame seen, a second
// contents file without an extension reported.  The check table is the one
// fixed table of the run (QvChTable::Fixed), which no runner changes.
#ifndef QV_CHECKER_QV_CH_RUNNER_H_
#define QV_CHECKER_QV_CH_RUNNER_H_

#include <string>
#include <vector>

#include "checker/qv_ch_file_kind.h"
#include "checker/qv_ch_table.h"

namespace quorvane::qvconv::checker {

class QvChecker;

// One row of a CSV file: its fields after unescaping.
using QvChDataRow = std::vector<std::u16string>;

class QvChRunner {
 public:
  explicit QvChRunner(QvChecker& checker) : checker(checker), fixed_table(QvChTable::Fixed()) {}

  // Reads the file and checks every row.  The last template row governs all
  // rows from its own to the end of the file.
  void walkFile(QvChFileKind kind, const std::u16string& path);
  // One data row against one template row.  A column that the data row lacks
  // is not tested.
  void checkLine(const QvChTemplateRow& template_row, const QvChDataRow& data_row,
                 const std::u16string& file_text, int pane);
  // One check id against one column of a data row.  A standard exception out
  // of an operation becomes a QvConvException thrown by value with -500.
  void checkCell(const std::u16string& id, const QvChDataRow& data_row, std::size_t column,
                 const std::u16string& file_text, int pane);

  // The operations, by the word of their row's kind.  Each works on the
  // current row of `table`.
  void CHECK_OK_NUM(const std::u16string& cell);
  void CHECK_NG_NUM(const std::u16string& cell);
  void CHECK_EXIST_STR(const std::u16string& cell);
  void CHECK_SCHEDULE_DATE(const QvChDataRow& data_row);
  void CHECK_TIMETABLE_TIME(const std::u16string& cell);
  // Layout of a program file.
  void CHECK_DISP_POSITION(const std::u16string& cell);
  void CHECK_DISP_SIZE(const std::u16string& width, const std::u16string& height,
                       const QvChSelection& row_table);
  void CHECK_PANE_NO(const QvChDataRow& data_row);
  // Contents files.
  void CHECK_OK_EXT(const std::u16string& cell);
  void CHECK_NG_EXT(const std::u16string& cell);
  void CHECK_EFFECT_KIND(const std::u16string& cell);
  void CHECK_COLOR(const std::u16string& cell);

  // The path of the telop file that `cell` names, from the path of the
  // contents file in `file`.
  std::u16string telopPath(const std::u16string& cell) const;

  QvChecker& checker;
  const QvChTable& fixed_table;     // the rows, extensions and templates
  std::u16string file;              // full path of the file being checked
  bool frame_seen = false;          // an enabled frame pane was met
  bool telop_seen = false;          // an enabled telop pane was met
  QvChSelection table;              // the selected row of the walk
  bool position_reported = false;   // PG0701 or PG0702 was reported
  bool extension_reported = false;  // CI0100 was reported

 private:
  // addResult with the current row of `row_table` and its pane and file text.
  void reportRow(const QvChSelection& row_table);
  void reportRow() { reportRow(table); }
  // addResult with the current row's id, kind "E" and a fall-back key.
  void reportBadCell(const QvChSelection& row_table, const std::u16string& message_key);

  bool paneEnabled(const QvChDataRow& data_row) const;
  void playlistTest(const std::u16string& cell, const std::u16string& id,
                    const std::u16string& message_key);
  void telopTest(const QvChDataRow& data_row, const std::u16string& id,
                 const std::u16string& message_key);
  void frameTest(const QvChDataRow& data_row, const std::u16string& id,
                 const std::u16string& message_key);
  void framePosition(const std::u16string& cell, const QvChSelection& row_table);
  // Runs the telop tests on the file; the id and key of the first limit
  // exceeded go into the current row.  True when a limit was exceeded.
  bool telopExceedsLimits(const std::u16string& path);
  // Reports a refused extension with the message of the current row.
  void reportExtension(const std::u16string& extension);
};

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CH_RUNNER_H_
