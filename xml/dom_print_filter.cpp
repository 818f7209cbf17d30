#include "xml/dom_print_filter.h"

#include <xercesc/dom/DOMNode.hpp>

namespace quorvane::qvformat::format::io::xml {

using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

DOMNodeFilter::FilterAction DOMPrintFilter::acceptNode(const DOMNode* node) const {
  if (node == nullptr) return DOMNodeFilter::FILTER_ACCEPT;
  const DOMNode::NodeType type = node->getNodeType();
  // A node type outside the mask is none of our business.
  const unsigned long bit = 1UL << (static_cast<unsigned>(type) - 1);
  if ((what_to_show_ & bit) == 0) return DOMNodeFilter::FILTER_ACCEPT;
  switch (type) {
    case DOMNode::ELEMENT_NODE:
    case DOMNode::ATTRIBUTE_NODE:
      return DOMNodeFilter::FILTER_ACCEPT;
    case DOMNode::DOCUMENT_TYPE_NODE:
      return DOMNodeFilter::FILTER_REJECT;
    default:
      return DOMNodeFilter::FILTER_ACCEPT;
  }
}

}  // namespace quorvane::qvformat::format::io::xml
