#include "quorix/xml/Outermost.h"

namespace quorix {

namespace {

// The element after `node` in document order that is not inside it; empty at the end of `top`.
XmlNode Beyond(XmlNode node, const XmlNode& top) {
    while (node && node != top) {
        if (XmlNode next = node.NextElement()) return next;
        node = node.Parent();
    }
    return {};
}

}  // namespace

std::vector<XmlNode> Outermost(const XmlNode& top, StringView name) {
    std::vector<XmlNode> found;
    for (XmlNode node = top.FirstElement(); node;) {
        bool matches = node.Is(name);
        if (matches) found.push_back(node);
        XmlNode inner = matches ? XmlNode() : node.FirstElement();
        node = inner ? inner : Beyond(node, top);
    }
    return found;
}

}  // namespace quorix
