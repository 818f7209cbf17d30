// A checker with a begun report, files written into a scratch folder, and the
// Results of the report read back as plain values.
#ifndef QV_TESTS_CHECKER_CHECKER_HARNESS_H_
#define QV_TESTS_CHECKER_CHECKER_HARNESS_H_

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "app/qv_conv_exception.h"
#include "checker/qv_ch_message.h"
#include "checker/qv_checker.h"
#include "tests/support/test_support.h"
#include "xml/qvf_xml_document.h"

namespace qvtest {

namespace checker = quorvane::qvconv::checker;
using quorvane::qvconv::converter::QvConvException;
using quorvane::qvformat::format::io::xml::QvFXmlDocument;

struct ReportResult {
  std::string id, kind, pane, file, text;
};

// Sets LC_ALL for the life of the object.
struct LocaleScope {
  explicit LocaleScope(const char* name) { setenv("LC_ALL", name, 1); }
  ~LocaleScope() { unsetenv("LC_ALL"); }
};

class CheckerHarness {
 public:
  CheckerHarness() {
    checker.createReport();
    checker.setSource(U16(dir.path()));
    checker.display_region = {0, 0, 1920, 1080};
  }

  // Writes a project CSV file (code page 932, CR LF) below the scratch folder.
  std::string Csv(const std::string& relative, const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) bytes += Cp932(line) + "\r\n";
    const std::string path = dir.Sub(relative);
    WriteFile(path, bytes);
    return path;
  }

  // Runs checkFile; the code of a QvConvException pointer, or of one thrown
  // by value plus 10000, or 0.
  std::int32_t Check(checker::QvChFileKind kind, const std::string& path) {
    try {
      checker.checkFile(kind, U16(path));
    } catch (QvConvException* e) {
      const std::int32_t code = e->code();
      delete e;
      return code;
    } catch (const QvConvException& e) {
      return e.code() + 10000;
    }
    return 0;
  }

  // Every Result of the report, in document order.
  std::vector<ReportResult> Results() const {
    std::vector<ReportResult> results;
    using quorvane::qvformat::format::io::xml::ForEachChildElement;
    ForEachChildElement(checker.check_result, [&](xercesc::DOMElement* data) {
      ForEachChildElement(data, [&](xercesc::DOMElement* r) {
        const XMLCh* text = r->getTextContent();
        results.push_back({Attr(r, u"id"), Attr(r, u"kind"), Attr(r, u"pane"), Attr(r, u"file"),
                           U8(reinterpret_cast<const char16_t*>(text))});
      });
    });
    return results;
  }

  // "id:kind@pane" of each Result, joined with spaces.
  std::string Kinds() const {
    std::string text;
    for (const ReportResult& r : Results()) {
      text += (text.empty() ? "" : " ") + r.id + ":" + r.kind + (r.pane.empty() ? "" : "@" + r.pane);
    }
    return text;
  }

  static std::string Attr(xercesc::DOMElement* e, const char16_t* name) {
    return U8(QvFXmlDocument::getAttribute(e, name));
  }

  ScratchDir dir;
  checker::QvChecker checker;
};

// A date `days` from today in the schedule's form.
inline std::string DateFromToday(int days) {
  std::time_t now = std::time(nullptr);
  std::tm t = *std::localtime(&now);
  t.tm_mday += days;
  t.tm_hour = 12;
  t.tm_isdst = -1;
  std::mktime(&t);
  char text[32];
  std::snprintf(text, sizeof text, "%04d/%02d/%02d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
  return text;
}

}  // namespace qvtest

#endif  // QV_TESTS_CHECKER_CHECKER_HARNESS_H_
