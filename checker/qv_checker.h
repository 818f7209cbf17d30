// QvChecker: the check report of one run and the state that the checks share.
//
// The CSV to XML pipeline derives from it.  It begins the report with
// createReport and setSource, hands every project file to checkFile (which
// walks it against its column template and adds a Result for each finding),
// and at the end saves the report with writeReport when has_result is set.
// has_error tells whether a finding was an error.
//
// The report, element by element:
//   QvConvCheck version="1.0" language="ja"      ("ja" whatever the messages)
//     CheckInfo
//       Checker version="1.0"
//       CheckFileInfo src=<input path>
//         CheckFile src=<file>                   one per checked file
//     CheckResult
//       CheckData kind=<kindName> src=<file>     one per checked file
//         Result id kind [pane] [file]           one per finding; text = message
// An attribute with an empty value is not written.
//
// The files and findings are kept as plain records while the run goes on, and
// become elements of the document when the report is saved: most runs check
// thousands of files and save no report at all.
#ifndef QV_CHECKER_QV_CHECKER_H_
#define QV_CHECKER_QV_CHECKER_H_

#include <memory>
#include <string>
#include <vector>

#include "base/qv_conv_run_config.h"
#include "checker/qv_ch_file_kind.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvconv::checker {

class QvChecker {
 public:
  // One Result: pane is the number shown, or -1 for none.
  struct Finding {
    std::u16string id;
    bool is_error = false;
    int pane = -1;
    std::u16string file;
    std::u16string message;
  };
  // One CheckData and the Results that follow it.
  struct CheckedFile {
    QvChFileKind kind;
    std::u16string path;
    std::vector<Finding> results;
  };

  QvChecker();
  // Releases the report document.
  ~QvChecker();
  QvChecker(const QvChecker&) = delete;
  QvChecker& operator=(const QvChecker&) = delete;

  // Makes the report document with its fixed frame (root, CheckInfo, Checker,
  // CheckFileInfo without src, CheckResult).
  void createReport();
  // Sets src of CheckFileInfo: the run's input path.
  void setSource(const std::u16string& path);
  // Appends a CheckFile for `path`.
  void addCheckFile(const std::u16string& path);
  // Appends a CheckData for `path`; it takes the Results that follow, so it
  // comes before the first of them.
  void beginCheckData(QvChFileKind kind, const std::u16string& path);

  // Adds a Result with the text of `message_key` in the user's language (the
  // text of "msg.CH0000" when the key has none).
  void addResult(const std::u16string& id, bool is_error, int pane, const std::u16string& file,
                 const std::u16string& message_key);
  // Adds a Result with the given text.  Its pane is pane_override when that
  // is not negative, else `pane` when that is not negative, else none.
  void addResultText(const std::u16string& id, bool is_error, int pane,
                     const std::u16string& file, const std::u16string& message);

  // Checks one project file: a CheckFile, a CheckData, and the walk of the
  // file against the template of its kind.  Throws QvConvException pointers
  // -101/-102 when the file cannot be read as CSV, and a QvConvException BY
  // VALUE with -500 when a check fails unexpectedly (an unreadable telop file,
  // a pane line too short to test).
  void checkFile(QvChFileKind kind, const std::u16string& path);

  // Saves the report, pretty printed.  A standard exception becomes a
  // QvConvException pointer -502; a QvConvException pointer passes.
  void writeReport(const std::u16string& path);

  // "schedule", "timetable", "interrupt", "program", "playlist",
  // "contentsinfo", "contents"; empty text for any other value.
  static std::u16string kindName(QvChFileKind kind);

  std::unique_ptr<qvformat::format::io::xml::QvFXmlDocument> report;
  xercesc::DOMElement* check_file_info = nullptr;
  xercesc::DOMElement* check_result = nullptr;
  std::vector<std::u16string> check_files;  // the CheckFile elements to be
  std::vector<CheckedFile> check_data;      // the CheckData elements to be
  bool has_result = false;  // a Result was added; never cleared
  bool has_error = false;   // a Result of kind "E" was added; never cleared
  converter::QvConvDisplayRegion display_region;  // the target's display limits
  std::u16string today_timetable;  // time table of the schedule entry for today
  int pane_override = -1;          // pane number that goes before the row's own
  bool check_only = false;  // the run writes no conversion result

 private:
  // Appends the elements of the files and findings not yet in the document.
  void fillReport();

  std::size_t filled_files_ = 0;
  std::size_t filled_data_ = 0;
};

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CHECKER_H_
