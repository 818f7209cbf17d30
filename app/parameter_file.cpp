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
#include <cstdint>

#include "app/qv_conv_exception.h"
#include "app/qv_conv_run_config.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvconv::converter {
namespace {

namespace qxml = quorvane::qvformat::format::io::xml;

// The three forms by their format strings; a value outside them is -201.
void ReadFormat(const xercesc::DOMElement* element, std::int32_t* kind) {
  const std::u16string value = qxml::QvFXmlDocument::getAttribute(element, u"format");
  if (value.empty()) return;
  if (value == u"application/x-quorvane") {
    *kind = KindProject;
  } else if (value == u"application/x-qvf") {
    *kind = KindCompact;
  } else if (value == u"application/x-qvf-debug") {
    *kind = KindDebug;
  } else {
    ThrowCode(codes::kParameterFileBad);
  }
}

// "yes" or "no"; anything else is -201.
void ReadYesNo(const xercesc::DOMElement* element, const char16_t* name, bool* flag) {
  const std::u16string value = qxml::QvFXmlDocument::getAttribute(element, name);
  if (value.empty()) return;
  if (value == u"yes") {
    *flag = true;
  } else if (value == u"no") {
    *flag = false;
  } else {
    ThrowCode(codes::kParameterFileBad);
  }
}

}  // namespace

void QvConvRunConfig::ReadParameterFile(const std::u16string& path) {
  try {
    parameter_path_ = path;
    qxml::QvFXmlDocument document;
    document.parse(path);  // -300 when the file cannot be read or parsed
    const xercesc::DOMElement* root = document.root();
    if (qxml::TagName(root) != u"QvConvParameter") ThrowCode(codes::kParameterFileBad);
    const std::u16string version = qxml::QvFXmlDocument::getAttribute(root, u"version");
    if (!version.empty() && version != u"1.0") ThrowCode(codes::kParameterFileBad);

    qxml::ForEachChildElement(root, [this](const xercesc::DOMElement* element) {
      const std::u16string name = qxml::TagName(element);
      if (name == u"Input") {
        ReadFormat(element, &input_kind_);
        ReadYesNo(element, u"archive", &input_archive_);
      } else if (name == u"Output") {
        ReadFormat(element, &output_kind_);
        ReadYesNo(element, u"archive", &output_archive_);
        ReadYesNo(element, u"compress", &compress_);
      }
    });
    document.release();
  } catch (QvConvException*) {
    throw;
  } catch (...) {
    ThrowCode(codes::kParameterFileFailed);
  }
}

}  // namespace quorvane::qvconv::converter
