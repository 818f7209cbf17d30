// The conversion parameter file: an XML file that names the form of the input
// and of the output and says whether the output is packed.
//
//   <QvConvParameter version="1.0">
//     <Input format="application/x-qvf" archive="no"/>
//     <Output format="application/x-quorvane" archive="yes" compress="no"/>
//   </QvConvParameter>
//
// Values are compared exactly, case included; an empty or missing attribute
// keeps the current value.  Other elements, attributes and text are passed
// over.  Elements are read in document order, so a later one wins for each
// attribute it has.
//
// ReadParameterFile throws a QvConvException pointer: -201 for a wrong value,
// -200 for anything unforeseen, -300 for a file that cannot be parsed.
#ifndef QV_APP_RUN_PARAMETER_FILE_H_
#define QV_APP_RUN_PARAMETER_FILE_H_

#include <string>

#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

// Reads the parameter file at `path` into the kinds and flags of `config`.
void ReadParameterFile(const std::u16string& path, QvConvRunConfig* config);

}  // namespace quorvane::qvconv::converter

#endif  // QV_APP_RUN_PARAMETER_FILE_H_
