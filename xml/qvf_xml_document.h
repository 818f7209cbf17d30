// QvFXmlDocument: the holder of one XML file while it is read or written.
// Every XML file of the program goes through it: the scenario documents, the
// conversion parameter file and the check report.
//
// A reader's life: parse(path), root(), walk the tree, release (or let the
// holder go out of scope).  A writer's life: createDocument(), build the tree
// with appendElement/addAttribute, serialize(path, pretty), release.
//
// The XML library counts its start-ups: each createDocument() and parse()
// starts it once more, and the holder ends each of those start-ups when it is
// released or destroyed, also when an exception passes.  A caller that reads
// or writes many documents may hold one QvFXmlLibrary for the whole run, so
// the library's start-up cost is paid once and not per document.
//
// Parsing is safe on untrusted files: no external DTD, entity or schema is
// ever fetched or read (every external resource resolves to empty input),
// entity expansion and the nesting of elements are bounded, and the file is
// read by our own file layer.
#ifndef QV_XML_QVF_XML_DOCUMENT_H_
#define QV_XML_QVF_XML_DOCUMENT_H_

#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include <memory>
#include <string>

namespace quorvane::qvformat::format::io::xml {

class RefusingEntityResolver;

// A scope in which the XML library is started: Initialize at construction,
// the matching Terminate at destruction.  A failed start-up is swallowed and
// reported by started().
class QvFXmlLibrary {
 public:
  QvFXmlLibrary();
  ~QvFXmlLibrary();
  QvFXmlLibrary(const QvFXmlLibrary&) = delete;
  QvFXmlLibrary& operator=(const QvFXmlLibrary&) = delete;

  bool started() const { return started_; }

 private:
  bool started_ = false;
};

class QvFXmlDocument {
 public:
  QvFXmlDocument();
  // Releases the document and ends the holder's start-ups of the library.
  ~QvFXmlDocument();
  QvFXmlDocument(const QvFXmlDocument&) = delete;
  QvFXmlDocument& operator=(const QvFXmlDocument&) = delete;

  // Starts the library and makes a new empty document.  If the library cannot
  // start, its message goes to standard error and a QvConvException pointer
  // with -300 is thrown (nothing could be built without it).
  void createDocument();

  // Starts the library and parses the file at `path` into the document.  A
  // file that is missing, unreadable or not well formed throws a
  // QvConvException pointer with -300, and so does a hostile file: elements
  // nested deeper than 256, more than 10000 entity expansions, or an entity
  // that stands for more than 4096 characters.  Validation errors (a scenario document
  // has no grammar) and warnings are dropped.
  void parse(const std::u16string& path);

  // Writes the document to `path` as UTF-8 with an XML declaration and no byte
  // order mark; `pretty` adds line breaks and indentation.  A file that cannot
  // be made or is cut short (a full disk) ends the run as an unknown failure: a
  // QvConvException pointer -999, which every guard lets pass; a tree
  // that the library refuses (a text holding a character that XML cannot
  // carry, such as a control character or a lone surrogate) throws
  // std::runtime_error.  No library exception leaves this class: it could
  // outlive the library it belongs to.
  void serialize(const std::u16string& path, bool pretty);

  // The bytes that serialize() would write.
  std::string serializeToBytes(bool pretty);

  // Sets attribute `name` on `element` to `value` and returns the attribute.
  // An empty value sets nothing and returns null, except for the name "ti"
  // (the compact name of a command row's target input), which is always set.
  xercesc::DOMAttr* addAttribute(xercesc::DOMElement* element, const std::u16string& name,
                                 const std::u16string& value);

  // The value of attribute `name`; empty text if `element` is null, `name` is
  // empty or the element has no such attribute.
  static std::u16string getAttribute(const xercesc::DOMElement* element,
                                     const std::u16string& name);

  // Makes an element `name` and appends it to `parent`, or to the document
  // itself when `parent` is null.  Needs a document.  A name that XML does not
  // allow throws std::runtime_error (as do addAttribute and appendText).
  xercesc::DOMElement* appendElement(xercesc::DOMNode* parent, const std::u16string& name);
  // Appends a text node to `element`.
  void appendText(xercesc::DOMElement* element, const std::u16string& text);

  // The document, null until made or parsed (and again after release()).
  xercesc::DOMDocument* document() const { return document_; }
  // The root element, or null.
  xercesc::DOMElement* root() const;

  // Deletes the document and ends every start-up of the library that this
  // holder made.  The holder may be used again afterwards.
  void release();

 private:
  bool startLibrary(bool report_failure);
  std::string writeToBytes(bool pretty);

  xercesc::DOMDocument* document_ = nullptr;
  std::unique_ptr<xercesc::XercesDOMParser> parser_;
  std::unique_ptr<xercesc::HandlerBase> handler_;
  std::unique_ptr<RefusingEntityResolver> resolver_;
  std::unique_ptr<xercesc::SecurityManager> security_;
  int startups_ = 0;  // Initialize calls not yet ended by a Terminate
};

// The tag name of an element as text; empty for null.
std::u16string TagName(const xercesc::DOMElement* element);

// Calls `visit(DOMElement*)` for each element child of `parent` in document
// order; other nodes are passed over.
template <typename Visit>
void ForEachChildElement(const xercesc::DOMNode* parent, Visit&& visit) {
  if (parent == nullptr) return;
  for (xercesc::DOMNode* child = parent->getFirstChild(); child != nullptr;
       child = child->getNextSibling()) {
    if (child->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
      visit(static_cast<xercesc::DOMElement*>(child));
    }
  }
}

// The first element child of `parent`, or null.
xercesc::DOMElement* FirstChildElement(const xercesc::DOMNode* parent);

}  // namespace quorvane::qvformat::format::io::xml

#endif  // QV_XML_QVF_XML_DOCUMENT_H_
