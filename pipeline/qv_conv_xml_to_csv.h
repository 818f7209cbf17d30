// QvConvXmlToCsv: the way back.  Reads the XML documents of a scenario and
// writes a CSV project with its content files.
//
// The documents are found by following the references from the schedule
// downwards, so a document that nothing refers to is not converted.  Names in
// the project are numbered in the order of this walk.  There is no check in
// this direction.
#ifndef QV_PIPELINE_QV_CONV_XML_TO_CSV_H_
#define QV_PIPELINE_QV_CONV_XML_TO_CSV_H_

#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

class QvConvXmlToCsv {
 public:
  explicit QvConvXmlToCsv(const QvConvRunConfig& config) : config(config) {}

  // Runs the conversion once; failures are thrown as QvConvException pointers
  // (a standard exception becomes code 0).
  void Run();

 private:
  void Convert(std::u16string& work);

  QvConvRunConfig config;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_QV_CONV_XML_TO_CSV_H_
