#include "checker/qv_checker.h"

#include <exception>

#include "base/qv_conv_exception.h"
#include "checker/qv_ch_message.h"
#include "checker/qv_ch_runner.h"

namespace quorvane::qvconv::checker {

using converter::QvConvException;
using qvformat::format::io::xml::QvFXmlDocument;

QvChecker::QvChecker() : report(std::make_unique<QvFXmlDocument>()) {}

QvChecker::~QvChecker() = default;

void QvChecker::createReport() {
  report->createDocument();
  xercesc::DOMElement* root = report->appendElement(nullptr, u"QvConvCheck");
  report->addAttribute(root, u"version", u"1.0");
  report->addAttribute(root, u"language", u"ja");
  xercesc::DOMElement* info = report->appendElement(root, u"CheckInfo");
  xercesc::DOMElement* checker = report->appendElement(info, u"Checker");
  report->addAttribute(checker, u"version", u"1.0");
  check_file_info = report->appendElement(info, u"CheckFileInfo");
  check_result = report->appendElement(root, u"CheckResult");
}

void QvChecker::setSource(const std::u16string& path) {
  report->addAttribute(check_file_info, u"src", path);
}

void QvChecker::addCheckFile(const std::u16string& path) { check_files.push_back(path); }

void QvChecker::beginCheckData(QvChFileKind kind, const std::u16string& path) {
  check_data.push_back({kind, path, {}});
}

void QvChecker::addResult(const std::u16string& id, bool is_error, int pane,
                          const std::u16string& file, const std::u16string& message_key) {
  std::u16string text = QvChMessage::getMessage(message_key);
  if (text.empty()) text = QvChMessage::getMessage(u"msg.CH0000");
  addResultText(id, is_error, pane, file, text);
}

void QvChecker::addResultText(const std::u16string& id, bool is_error, int pane,
                              const std::u16string& file, const std::u16string& message) {
  const int shown = pane_override >= 0 ? pane_override : pane;
  if (!check_data.empty()) {
    check_data.back().results.push_back({id, is_error, shown >= 0 ? shown : -1, file, message});
  }
  has_result = true;
  if (is_error) has_error = true;
}

void QvChecker::checkFile(QvChFileKind kind, const std::u16string& path) {
  addCheckFile(path);
  beginCheckData(kind, path);
  QvChRunner runner(*this);
  runner.walkFile(kind, path);
}

void QvChecker::writeReport(const std::u16string& path) {
  // A file that cannot be made or written ends the run as unknown (-999).
  converter::Guarded(converter::codes::kReportNotWritten, [&] {
    fillReport();
    report->serialize(path, true);
  });
}

void QvChecker::fillReport() {
  for (; filled_files_ < check_files.size(); ++filled_files_) {
    xercesc::DOMElement* element = report->appendElement(check_file_info, u"CheckFile");
    report->addAttribute(element, u"src", check_files[filled_files_]);
  }
  for (; filled_data_ < check_data.size(); ++filled_data_) {
    const CheckedFile& checked = check_data[filled_data_];
    xercesc::DOMElement* data = report->appendElement(check_result, u"CheckData");
    report->addAttribute(data, u"kind", kindName(checked.kind));
    report->addAttribute(data, u"src", checked.path);
    for (const Finding& finding : checked.results) {
      xercesc::DOMElement* result = report->appendElement(data, u"Result");
      report->addAttribute(result, u"id", finding.id);
      report->addAttribute(result, u"kind", finding.is_error ? u"E" : u"W");
      if (finding.pane >= 0) {
        const std::string digits = std::to_string(finding.pane);
        report->addAttribute(result, u"pane", std::u16string(digits.begin(), digits.end()));
      }
      report->addAttribute(result, u"file", finding.file);
      report->appendText(result, finding.message);
    }
  }
}

std::u16string QvChecker::kindName(QvChFileKind kind) {
  switch (kind) {
    case ChSchedule:
      return u"schedule";
    case ChTimeTable:
      return u"timetable";
    case ChInterrupt:
      return u"interrupt";
    case ChProgram:
      return u"program";
    case ChPlaylist:
      return u"playlist";
    case ChContentsInfo:
      return u"contentsinfo";
    case ChContents:
      return u"contents";
  }
  return std::u16string();
}

}  // namespace quorvane::qvconv::checker
