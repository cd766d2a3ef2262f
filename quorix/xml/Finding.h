// Finding elements in a reply, in either kind of tree.
#pragma once

#include <vector>

#include "quorix/base/String.h"
#include "quorix/xml/ParsedXml.h"

namespace quorix {

// The node after `node` in document order that is not inside it; empty at the end of `top`.
template <class Node>
Node Beyond(Node node, const Node& top) {
    while (node && !(node == top)) {
        if (Node next = node.NextElement()) return next;
        node = node.Parent();
    }
    return {};
}

// Visits all elements called `name` below `top`, in document order, except those inside another of them: each
// record holds the text of all that is in it, so records inside records would let a short reply fill the
// memory. The tree must not change meanwhile.
template <class Node, class Visit>
void ForEachOutermost(const Node& top, StringView name, Visit visit) {
    for (Node node = top.FirstElement(); node;) {
        bool matches = node.Is(name);
        if (matches) visit(node);
        Node inner = matches ? Node() : node.FirstElement();
        node = inner ? inner : Beyond(node, top);
    }
}

// The same elements, for a tree that may change.
template <class Node>
std::vector<Node> Outermost(const Node& top, StringView name) {
    std::vector<Node> found;
    ForEachOutermost(top, name, [&](const Node& node) { found.push_back(node); });
    return found;
}

// The tag search: the first element called `tag` below `top`, the children of an element before what is in
// them.
template <class Node>
Node FindTagBelow(const Node& top, StringView tag) {
    for (Node node = top; node; node = node.Following(top)) {
        if (Node hit = node.Child(tag)) return hit;
    }
    return {};
}

// The attribute search: the first element that bears it, `top` itself included.
template <class Node>
Node FindBearer(const Node& top, StringView attribute) {
    Node node = top;
    while (node && !node.HasAttribute(attribute)) node = node.Following(top);
    return node;
}

// The first element `name` of this `xmlns`, `top` and what is below it; empty when there is none.
template <class Node>
Node FindElement(const Node& top, StringView name, StringView xmlns) {
    for (Node node = top; node; node = node.Following(top)) {
        if (node.Is(name) && node.AttributeIs(u"xmlns", xmlns)) return node;
    }
    return {};
}

inline ParsedNode FindElement(const ParsedNode& top, StringView name, StringView xmlns) {
    return top.Find(name, xmlns);
}

// The first `x` element of this `xmlns`.
template <class Node>
Node FindExtension(const Node& top, StringView xmlns) {
    return FindElement(top, u"x", xmlns);
}

}  // namespace quorix
