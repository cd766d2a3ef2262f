// Asks `read` about the root element of a node: a ParsedNode as long as nothing has asked for its document,
// else an XmlNode. Both have the same words for reading.
#pragma once

#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

template <class Read>
auto AskRoot(const cXML_Node& node, Read read) {
    return node.document_ ? read(node.document_->Root()) : read(node.ArrivedRoot());
}

}  // namespace quorix
