// The thin layer over the XML library: start-up and shut-down, safe parsing
// of untrusted files, attributes, and serialising to UTF-8.
#include "xml/qvf_xml_document.h"

#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <stdexcept>
#include <string>

#include "base/qv_conv_exception.h"
#include "platform/file_system.h"
#include "platform/system_info.h"
#include "platform/text_codec.h"
#include "xml/dom_print_filter.h"

namespace quorvane::qvformat::format::io::xml {

using quorvane::qvconv::converter::ThrowCode;
namespace codes = quorvane::qvconv::converter::codes;
using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLPlatformUtils;
using xercesc::XMLUni;

// Every external resource a document names (an external DTD, an external
// entity, a schema) resolves to empty input: nothing is fetched from the
// network and nothing is read from disk, so a hostile document cannot pull a
// local file into what we write from it.
class RefusingEntityResolver : public xercesc::XMLEntityResolver {
 public:
  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* resource) override {
    static const XMLByte kNothing[1] = {0};
    const XMLCh* id = resource != nullptr ? resource->getSystemId() : nullptr;
    return new xercesc::MemBufInputSource(kNothing, 0, id != nullptr ? id : u"");
  }
};

namespace {

// Elements nested deeper than this make a file unreadable.  Scenario
// documents nest five deep at most; the bound keeps a hostile file from
// costing time that grows with the square of its depth.
constexpr int kMaxElementDepth = 256;

// Entity expansion is bounded twice over: the security manager counts the
// expansions, and no entity may stand for more than this many characters, so
// that a few references to one big entity cannot fill the memory either.
constexpr XMLSize_t kMaxEntityExpansions = 10000;
constexpr XMLSize_t kMaxEntityValueLength = 4096;

struct ParseLimitReached {};

// The DOM parser with bounds on the nesting of elements and on the size of
// entities.
class BoundedDOMParser : public xercesc::XercesDOMParser {
 public:
  BoundedDOMParser()
      : xercesc::XercesDOMParser(nullptr, XMLPlatformUtils::fgMemoryManager, nullptr) {}

  void startElement(const xercesc::XMLElementDecl& decl, const unsigned int url_id,
                    const XMLCh* const prefix,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    const XMLSize_t attribute_count, const bool is_empty,
                    const bool is_root) override {
    if (is_root) depth_ = 0;
    if (!is_empty && ++depth_ > kMaxElementDepth) throw ParseLimitReached();
    xercesc::XercesDOMParser::startElement(decl, url_id, prefix, attributes, attribute_count,
                                           is_empty, is_root);
  }

  void endElement(const xercesc::XMLElementDecl& decl, const unsigned int url_id,
                  const bool is_root, const XMLCh* const prefix) override {
    if (depth_ > 0) --depth_;
    xercesc::XercesDOMParser::endElement(decl, url_id, is_root, prefix);
  }

  void entityDecl(const xercesc::DTDEntityDecl& decl, const bool is_parameter,
                  const bool is_ignored) override {
    if (decl.getValueLen() > kMaxEntityValueLength) throw ParseLimitReached();
    xercesc::XercesDOMParser::entityDecl(decl, is_parameter, is_ignored);
  }

 private:
  int depth_ = 0;
};

// Starts the library once more.  A failure is told on standard error when
// asked for; the library's message is made readable without the library.
bool InitializeLibrary(bool report_failure) {
  try {
    XMLPlatformUtils::Initialize(XMLUni::fgXercescDefaultLocale);
    return true;
  } catch (const xercesc::XMLException& e) {
    if (report_failure) {
      const XMLCh* message = e.getMessage();
      std::string text = "Error during Xerces-c Initialization.\n  Exception message:";
      if (message != nullptr) text += platform::Utf8FromUtf16(message);
      platform::WriteStandardError(text);
    }
    return false;
  }
}

xercesc::DOMImplementation* CoreImplementation() {
  static const XMLCh kCore[] = u"Core";
  return xercesc::DOMImplementationRegistry::getDOMImplementation(kCore);
}

// A library exception lives on the library's memory and must not outlive the
// holder that may shut the library down while the exception travels; it goes
// up as a standard exception with its message copied.
[[noreturn]] void ThrowLibraryFailure(const XMLCh* message) {
  std::string text = "XML library failure";
  if (message != nullptr) text += ": " + platform::Utf8FromUtf16(message);
  throw std::runtime_error(text);
}

// Releases a library object that has release() rather than a destructor.
struct ReleaseDeleter {
  template <typename T>
  void operator()(T* object) const {
    if (object != nullptr) object->release();
  }
};

}  // namespace

// ---- QvFXmlLibrary ----------------------------------------------------------

QvFXmlLibrary::QvFXmlLibrary() : started_(InitializeLibrary(false)) {}

QvFXmlLibrary::~QvFXmlLibrary() {
  if (started_) XMLPlatformUtils::Terminate();
}

// ---- QvFXmlDocument ---------------------------------------------------------

QvFXmlDocument::QvFXmlDocument() = default;

QvFXmlDocument::~QvFXmlDocument() { release(); }

bool QvFXmlDocument::startLibrary(bool report_failure) {
  if (!InitializeLibrary(report_failure)) return false;
  ++startups_;
  return true;
}

void QvFXmlDocument::release() {
  if (document_ != nullptr) {
    document_->release();
    document_ = nullptr;
  }
  // The parser and its helpers live on the library's memory: they go before
  // the library may shut down.
  parser_.reset();
  handler_.reset();
  resolver_.reset();
  security_.reset();
  while (startups_ > 0) {
    --startups_;
    XMLPlatformUtils::Terminate();
  }
}

void QvFXmlDocument::createDocument() {
  if (!startLibrary(true)) ThrowCode(codes::kXmlUnreadable);
  if (document_ != nullptr) {
    document_->release();
    document_ = nullptr;
  }
  document_ = CoreImplementation()->createDocument(XMLPlatformUtils::fgMemoryManager);
}

void QvFXmlDocument::parse(const std::u16string& path) {
  // Without the library nothing can be parsed; the failure itself is not told.
  if (!startLibrary(false)) ThrowCode(codes::kXmlUnreadable);
  if (document_ != nullptr) {
    document_->release();
    document_ = nullptr;
  }

  // The file is read by our own file layer, so that any name reaches the
  // system intact whatever the locale.
  std::string bytes;
  if (!platform::ReadFile(path, &bytes)) ThrowCode(codes::kXmlUnreadable);

  try {
    if (!parser_) {
      parser_ = std::make_unique<BoundedDOMParser>();
    }
    parser_->setValidationScheme(xercesc::XercesDOMParser::Val_Always);
    parser_->setDoNamespaces(true);
    if (!handler_) handler_ = std::make_unique<xercesc::HandlerBase>();
    parser_->setErrorHandler(handler_.get());

    // Untrusted input: no external resource is loaded, entity expansion has
    // a ceiling.
    if (!resolver_) resolver_ = std::make_unique<RefusingEntityResolver>();
    if (!security_) {
      security_ = std::make_unique<xercesc::SecurityManager>();
      security_->setEntityExpansionLimit(kMaxEntityExpansions);
    }
    parser_->setXMLEntityResolver(resolver_.get());
    parser_->setDisableDefaultEntityResolution(true);
    parser_->setLoadExternalDTD(false);
    parser_->setLoadSchema(false);
    parser_->setDoSchema(false);
    parser_->setDoXInclude(false);
    parser_->setSecurityManager(security_.get());

    xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                      path.c_str());
    parser_->parse(source);
    document_ = parser_->adoptDocument();
  } catch (...) {
    // A fatal error of the handler, a library exception, a DOM exception,
    // the library running out of memory or a file nested too deep: all are
    // an unreadable file.
    ThrowCode(codes::kXmlUnreadable);
  }
  if (document_ == nullptr) ThrowCode(codes::kXmlUnreadable);
}

std::string QvFXmlDocument::serializeToBytes(bool pretty) {
  if (document_ == nullptr) throw std::logic_error("no document to write");
  try {
    return writeToBytes(pretty);
  } catch (const xercesc::DOMException& e) {
    ThrowLibraryFailure(e.getMessage());
  } catch (const xercesc::XMLException& e) {
    ThrowLibraryFailure(e.getMessage());
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  }
}

std::string QvFXmlDocument::writeToBytes(bool pretty) {
  xercesc::DOMImplementation* implementation = CoreImplementation();
  std::unique_ptr<xercesc::DOMLSSerializer, ReleaseDeleter> serializer(
      implementation->createLSSerializer(XMLPlatformUtils::fgMemoryManager));
  std::unique_ptr<xercesc::DOMLSOutput, ReleaseDeleter> output(
      implementation->createLSOutput(XMLPlatformUtils::fgMemoryManager));

  DOMPrintFilter filter(DOMPrintFilter::kShowAll);
  serializer->setFilter(&filter);

  xercesc::MemBufFormatTarget target;
  output->setByteStream(&target);
  output->setEncoding(u"UTF-8");

  xercesc::DOMConfiguration* config = serializer->getDomConfig();
  config->setParameter(XMLUni::fgDOMXMLDeclaration, true);
  if (pretty) config->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);

  serializer->write(document_, output.get());
  target.flush();
  serializer->setFilter(nullptr);
  return std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
}

void QvFXmlDocument::serialize(const std::u16string& path, bool pretty) {
  const std::string bytes = serializeToBytes(pretty);
  if (!platform::WriteFile(path, bytes)) ThrowCode(codes::kUnknownFailure);
}

DOMAttr* QvFXmlDocument::addAttribute(DOMElement* element, const std::u16string& name,
                                      const std::u16string& value) {
  // The compact name of a command row's target input is written even empty.
  if (value.empty() && name != u"ti") return nullptr;
  if (element == nullptr || document_ == nullptr || name.empty()) return nullptr;
  try {
    DOMAttr* attribute = document_->createAttribute(name.c_str());
    attribute->setValue(value.c_str());
    element->setAttributeNode(attribute);
    return attribute;
  } catch (const xercesc::DOMException& e) {
    ThrowLibraryFailure(e.getMessage());
  }
}

std::u16string QvFXmlDocument::getAttribute(const DOMElement* element, const std::u16string& name) {
  if (element == nullptr || name.empty()) return {};
  if (!element->hasAttribute(name.c_str())) return {};
  const XMLCh* value = element->getAttribute(name.c_str());
  return value != nullptr ? std::u16string(value) : std::u16string();
}

DOMElement* QvFXmlDocument::appendElement(DOMNode* parent, const std::u16string& name) {
  if (document_ == nullptr) throw std::logic_error("no document to build");
  try {
    DOMElement* element = document_->createElement(name.c_str());
    (parent != nullptr ? parent : document_)->appendChild(element);
    return element;
  } catch (const xercesc::DOMException& e) {
    ThrowLibraryFailure(e.getMessage());
  }
}

void QvFXmlDocument::appendText(DOMElement* element, const std::u16string& text) {
  if (document_ == nullptr || element == nullptr) return;
  try {
    element->appendChild(document_->createTextNode(text.c_str()));
  } catch (const xercesc::DOMException& e) {
    ThrowLibraryFailure(e.getMessage());
  }
}

DOMElement* QvFXmlDocument::root() const {
  return document_ != nullptr ? document_->getDocumentElement() : nullptr;
}

std::u16string TagName(const DOMElement* element) {
  if (element == nullptr) return {};
  const XMLCh* name = element->getTagName();
  return name != nullptr ? std::u16string(name) : std::u16string();
}

DOMElement* FirstChildElement(const DOMNode* parent) {
  if (parent == nullptr) return nullptr;
  for (DOMNode* child = parent->getFirstChild(); child != nullptr;
       child = child->getNextSibling()) {
    if (child->getNodeType() == DOMNode::ELEMENT_NODE) return static_cast<DOMElement*>(child);
  }
  return nullptr;
}

}  // namespace quorvane::qvformat::format::io::xml
