#include "quorix/link/Stanza.h"

#include <utility>

namespace quorix {

Stanza::Stanza(ParsedXmlPtr whole, const ParsedNode& element)
    : tree(std::move(whole)),
      root(element ? element : tree->Root()),
      type(root.Attribute(u"type")),
      part_(element) {}

const NodePtr& Stanza::Node() const {
    if (!node_) node_ = NodeOf(part_);
    return node_;
}

NodePtr Stanza::NodeOf(const ParsedNode& element) const { return std::make_shared<cXML_Node>(tree, element); }

String Stanza::ChildText(StringView name) const { return root.Child(name).Text(); }

}  // namespace quorix
