#include "app/run/parameter_file.h"

#include <cstdint>

#include "base/qv_conv_exception.h"
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

void ReadParameterFile(const std::u16string& path, QvConvRunConfig* config) {
  try {
    qxml::QvFXmlDocument document;
    document.parse(path);  // -300 when the file cannot be read or parsed
    const xercesc::DOMElement* root = document.root();
    if (qxml::TagName(root) != u"QvConvParameter") ThrowCode(codes::kParameterFileBad);
    const std::u16string version = qxml::QvFXmlDocument::getAttribute(root, u"version");
    if (!version.empty() && version != u"1.0") ThrowCode(codes::kParameterFileBad);

    // Each attribute goes into the configuration as soon as it is read, so a
    // bad value later in the file leaves the earlier ones in place.
    qxml::ForEachChildElement(root, [config](const xercesc::DOMElement* element) {
      const std::u16string name = qxml::TagName(element);
      const bool input = name == u"Input";
      if (!input && name != u"Output") return;
      std::int32_t kind = input ? config->InputKind() : config->OutputKind();
      ReadFormat(element, &kind);
      input ? config->SetInputKind(kind) : config->SetOutputKind(kind);
      bool archive = input ? config->InputArchive() : config->OutputArchive();
      ReadYesNo(element, u"archive", &archive);
      input ? config->SetInputArchive(archive) : config->SetOutputArchive(archive);
      if (input) return;
      bool compress = config->Compress();
      ReadYesNo(element, u"compress", &compress);
      config->SetCompress(compress);
    });
    document.release();
  } catch (QvConvException*) {
    throw;
  } catch (...) {
    ThrowCode(codes::kParameterFileFailed);
  }
}

}  // namespace quorvane::qvconv::converter
