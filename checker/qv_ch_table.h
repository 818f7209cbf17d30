// The check table: the built-in statement of what the target player does not
// support.  No file, option or target model changes it.
//
//   QvChRow        one check: its id, the word that selects the operation, the
//                  argument the operation compares with, the level of a
//                  finding and the key of its message.
//   QvChEffectRow  one image effect the target lacks, as byte patterns.
//   QvChSelection  the working state of one walk: a copy of the selected row,
//                  which an operation may change, and the pane and file text
//                  of the data row.
//   QvChTable      the rows, the effect rows, the two extension lists and the
//                  column templates, plus a selection of its own.  Fixed()
//                  is the one built table of a run, built at its first use.
#ifndef QV_CHECKER_QV_CH_TABLE_H_
#define QV_CHECKER_QV_CH_TABLE_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "checker/qv_ch_file_kind.h"

namespace quorvane::qvconv::checker {

struct QvChRow {
  std::u16string id;           // the check id, also the id of a Result
  std::u16string kind;         // selects the operation, e.g. "CHECK_OK_NUM"
  std::u16string argument;     // what the operation compares with; "-" for none
  bool is_error = false;       // a finding is "E" (true) or "W" (false)
  std::u16string message_key;  // key in the message catalogue
};

struct QvChEffectRow {
  // Patterns for the four bytes of an effect code, lowest byte first, as
  // hexadecimal text ("0x0f"); empty means any value.
  std::u16string byte_pattern[4];
  std::u16string id;
  bool is_error = false;
  std::u16string message_key;
};

// One line of a column template: cell c names the check ids for column c of a
// data row, several ids separated by "/"; an empty cell checks nothing.
using QvChTemplateRow = std::vector<std::u16string>;

struct QvChSelection {
  QvChRow current;              // working copy of the selected row
  int current_pane = -1;        // pane number of the data row in the walk
  std::u16string current_file;  // file text for the Results
};

class QvChTable {
 public:
  // An empty table; buildTable fills it.
  QvChTable() = default;
  // A built table with the row `id` selected; a QvConvException pointer -998
  // when the table has no such row.
  explicit QvChTable(const std::u16string& id);

  // Fills the lists that are still empty, in their fixed order; sets `built`
  // and clears the current level.
  void buildTable();

  // The built table shared by every check of the process; never changed.
  static const QvChTable& Fixed();

  // Copies the first row whose id equals `id` exactly into the current row.
  // False, with the current row unchanged, when there is none.
  bool selectRow(const std::u16string& id);
  // The same into `selection`'s current row.
  bool selectRow(const std::u16string& id, QvChSelection& selection) const;
  // A selection of the row `id` with no pane and no file text; a
  // QvConvException pointer -998 when the table has no such row.
  QvChSelection selectionOf(const std::u16string& id) const;

  // The column template of a file kind, as template rows.  Line n of the
  // template belongs to row n of the file; the last line also to every
  // further row.  An empty template gives one row without cells.  The
  // templates are parsed once.
  const std::vector<QvChTemplateRow>& templateOf(QvChFileKind kind) const;

  // Splits a template text into template rows (lines at LF, cells at commas).
  static std::vector<QvChTemplateRow> ParseTemplate(const std::u16string& text);

  QvChRow current;              // working copy of the selected row
  int current_pane = -1;        // pane number of the data row in the walk
  std::u16string current_file;  // file text for the Results
  std::vector<std::u16string> ok_extensions;
  std::vector<std::u16string> ng_extensions;
  std::vector<QvChRow> rows;
  std::vector<QvChEffectRow> effect_rows;
  bool built = false;

 private:
  // The fixed table's rows by id (the first of each id); empty in any other
  // table, whose rows may change.
  std::unordered_map<std::u16string, std::size_t> first_row_;
};

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CH_TABLE_H_
