// Live nodes of a document, as scripts walk them.
#pragma once

#include <memory>
#include <vector>

#include "quorix/xml/XmlNode.h"

namespace quorix::scripting {

// Nodes that a query found, or the children of a node, which follow every change.
class DomNodeList {
public:
    explicit DomNodeList(std::vector<XmlNode> found) : found_(std::move(found)) {}
    static std::shared_ptr<DomNodeList> ChildrenOf(const XmlNode& parent);

    std::vector<XmlNode> Nodes() const;

    // Counted from 0. Empty outside.
    XmlNode Item(std::int32_t index) const;
    std::int32_t Length() const;
    XmlNode NamedItem(StringView name) const;

private:
    std::vector<XmlNode> found_;
    XmlNode parent_;
};

}  // namespace quorix::scripting
