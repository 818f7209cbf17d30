// QvConvXmlToXml: one conversion pipeline.  Dispatch constructs it with a copy of the
// run's configuration, calls Run and destroys it.
#ifndef QV_PIPELINE_QV_CONV_XML_TO_XML_H_
#define QV_PIPELINE_QV_CONV_XML_TO_XML_H_

#include "app/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

class QvConvXmlToXml {
 public:
  explicit QvConvXmlToXml(const QvConvRunConfig& config) : config(config) {}
  void Run();

 private:
  QvConvRunConfig config;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_QV_CONV_XML_TO_XML_H_
