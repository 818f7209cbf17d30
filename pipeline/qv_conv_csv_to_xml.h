// QvConvCsvToXml: the main conversion, and the only one that checks.
//
// It walks a CSV project from its schedule down to its content files.  Each
// CSV file is first handed to the checker, then read into records, then
// written as an XML document into a work folder.  At the end the work folder
// is delivered as a zip package (or copied), unless the checks found an error
// or the run is check-only.
//
// The order of the steps is fixed, since each step relies on what the one
// before it left in the reader's index: the schedule (it names the time
// tables, and its check sets today's time table), all time tables (they name
// the programs), the interrupt test, the programs with their playlists and
// contents files, and last the content files.
#ifndef QV_PIPELINE_QV_CONV_CSV_TO_XML_H_
#define QV_PIPELINE_QV_CONV_CSV_TO_XML_H_

#include <string>

#include "base/qv_conv_run_config.h"
#include "checker/qv_checker.h"

namespace quorvane::qvconv::io::csv {
class QvFReadCsv;
}
namespace quorvane::qvformat::format::io::xml {
class QvFWriteXml;
}

namespace quorvane::qvconv::converter {

class QvConvCsvToXml : public checker::QvChecker {
 public:
  explicit QvConvCsvToXml(const QvConvRunConfig& config) : config(config) {}

  // Runs the conversion once.  Returns when there was no finding; otherwise
  // ends by a throw: code 1 (warnings, output delivered), code 2 (errors, no
  // output), or any failure code.
  void Run();

 private:
  using Reader = io::csv::QvFReadCsv;
  using Writer = qvformat::format::io::xml::QvFWriteXml;

  void ConvertSchedule(Reader& reader, Writer& writer, const std::u16string& input,
                       const std::u16string& format);
  void ConvertTimeTables(Reader& reader, Writer& writer, const std::u16string& input,
                         const std::u16string& format);
  void CheckInterrupts(const std::u16string& input);
  void ConvertPrograms(Reader& reader, Writer& writer, const std::u16string& input,
                       const std::u16string& format);
  // One program of `folder` with its playlists and contents files, into the
  // program folder `target`, which is there.
  void ConvertProgram(Reader& reader, Writer& writer, const std::u16string& folder,
                      const std::u16string& id, const std::u16string& target);
  void CopyContents(Reader& reader, const std::u16string& input, const std::u16string& format);

  // The pane number of a playlist file: its index in "playlist_0.csv" to
  // "playlist_8.csv", or -1.
  static int PaneOfPlaylist(const std::u16string& path);

  QvConvRunConfig config;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_QV_CONV_CSV_TO_XML_H_
