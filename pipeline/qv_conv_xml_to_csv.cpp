#include "pipeline/qv_conv_xml_to_csv.h"

#include "app/qv_conv_exception.h"

namespace quorvane::qvconv::converter {

// Not built yet: the run ends with the code of an unknown failure.
void QvConvXmlToCsv::Run() { ThrowCode(codes::kUnknownFailure); }

}  // namespace quorvane::qvconv::converter
