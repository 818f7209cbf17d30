// A checker with a begun report, files written into a scratch folder, and the Results read back.
#ifndef QV_TESTS_CHECKER_CHECKER_HARNESS_H_
#define QV_TESTS_CHECKER_CHECKER_HARNESS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/qv_conv_exception.h"
#include "checker/qv_ch_message.h"
#include "checker/qv_checker.h"
#include "tests/support/test_support.h"
#include "xml/qvf_xml_document.h"

namespace qvtest {

namespace checker = quorvane::qvconv::checker;
namespace xml = quorvane::qvformat::format::io::xml;
using quorvane::qvconv::converter::QvConvException;

struct ReportResult {
  std::string id, kind, pane, file, text;
};

class CheckerHarness {
 public:
  CheckerHarness() {
    checker.createReport(), checker.setSource(U16(dir.path())),
        checker.display_region = {0, 0, 1920, 1080};
  }

  // Writes a project CSV file (code page 932, CR LF) below the scratch folder.
  std::string Csv(const std::string& relative, const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) bytes += Cp932(line) + "\r\n";
    return WriteFile(dir.Sub(relative), bytes), dir.Sub(relative);
  }

  // Runs checkFile: the code of a QvConvException pointer, of one thrown by value plus 10000, or 0.
  std::int32_t Check(checker::QvChFileKind kind, const std::string& path) try {
    return CodeOf([&] { checker.checkFile(kind, U16(path)); });
  } catch (const QvConvException& e) {
    return e.code() + 10000;
  }

  // Every Result of the report in document order; Kinds() gives "id:kind@pane" of each.
  std::vector<ReportResult> Results() const {
    std::vector<ReportResult> results;
    xml::ForEachChildElement(checker.check_result, [&](xercesc::DOMElement* data) {
      xml::ForEachChildElement(data, [&](xercesc::DOMElement* r) {
        auto attr = [r](const char16_t* name) {
          return U8(xml::QvFXmlDocument::getAttribute(r, name));
        };
        results.push_back({attr(u"id"), attr(u"kind"), attr(u"pane"), attr(u"file"),
                           U8(reinterpret_cast<const char16_t*>(r->getTextContent()))});
      });
    });
    return results;
  }
  std::string Kinds() const {
    std::string text;
    for (const ReportResult& r : Results())
      text += " " + r.id + ":" + r.kind + (r.pane.empty() ? "" : "@" + r.pane);
    return text.empty() ? text : text.substr(1);
  }

  ScratchDir dir;
  checker::QvChecker checker;
};

}  // namespace qvtest

#endif  // QV_TESTS_CHECKER_CHECKER_HARNESS_H_
