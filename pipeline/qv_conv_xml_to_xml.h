// QvConvXmlToXml: rewrites a tree of XML documents from one vocabulary into
// the other (or the same one), with its content files copied byte for byte.
//
// The input path is the document tree itself and ends in a separator: the
// names "QvS.xml", "QvT" and "QvP" are joined to it directly.  The documents
// are found by following the references from the schedule down to the
// content items.
#ifndef QV_PIPELINE_QV_CONV_XML_TO_XML_H_
#define QV_PIPELINE_QV_CONV_XML_TO_XML_H_

#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

class QvConvXmlToXml {
 public:
  explicit QvConvXmlToXml(const QvConvRunConfig& config) : config(config) {}

  // Runs the rewrite once; failures are thrown as QvConvException pointers
  // (a standard exception becomes -999).
  void Run();

 private:
  void Rewrite();

  QvConvRunConfig config;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_QV_CONV_XML_TO_XML_H_
