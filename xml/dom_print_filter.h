// DOMPrintFilter: the node filter of the serialiser.  It lets elements and
// attributes through and refuses a document type node; every node type outside
// its mask is passed through untouched.  Xerces' serialiser does not offer the
// document type node to a filter, so a document that was parsed with one would
// keep it; the program never writes a parsed document out (every document it
// writes is built anew from records), so none of its output has one.
#ifndef QV_XML_DOM_PRINT_FILTER_H_
#define QV_XML_DOM_PRINT_FILTER_H_

#include <xercesc/dom/DOMLSSerializerFilter.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>

namespace quorvane::qvformat::format::io::xml {

class DOMPrintFilter : public xercesc::DOMLSSerializerFilter {
 public:
  // The mask that serialize() uses: elements, attributes and document types.
  static constexpr xercesc::DOMNodeFilter::ShowType kShowAll =
      xercesc::DOMNodeFilter::SHOW_ELEMENT | xercesc::DOMNodeFilter::SHOW_ATTRIBUTE |
      xercesc::DOMNodeFilter::SHOW_DOCUMENT_TYPE;

  explicit DOMPrintFilter(xercesc::DOMNodeFilter::ShowType what_to_show = kShowAll)
      : what_to_show_(what_to_show) {}
  ~DOMPrintFilter() override = default;

  FilterAction acceptNode(const xercesc::DOMNode* node) const override;
  xercesc::DOMNodeFilter::ShowType getWhatToShow() const override { return what_to_show_; }

 private:
  DOMPrintFilter(const DOMPrintFilter&) = delete;
  DOMPrintFilter& operator=(const DOMPrintFilter&) = delete;

  xercesc::DOMNodeFilter::ShowType what_to_show_;
};

}  // namespace quorvane::qvformat::format::io::xml

#endif  // QV_XML_DOM_PRINT_FILTER_H_
