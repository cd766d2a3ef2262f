#include "quorix/xml/XmlBuilder.h"

#include <string>

#include "quorix/xml/NodeView.h"
#include "quorix/xml/QuietParser.h"

namespace quorix {

namespace {

template <class Node>
xmlNode* NewNode(XmlTree& tree, const Node& node) {
    switch (KindOf(node)) {
        case XmlKind::Element: return NewElement(tree, std::string(NameOf(node)));
        case XmlKind::Text: return NewText(tree, ContentOf(node));
        case XmlKind::CData: return NewCData(tree, ContentOf(node));
        case XmlKind::Comment: return NewComment(tree, ContentOf(node));
        case XmlKind::Instruction:
            return NewInstruction(tree, std::string(NameOf(node)), std::string(ContentOf(node)));
    }
    return nullptr;
}

template <class Node>
void AddAttributes(xmlNode* element, const Node& node) {
    xmlAttr* last = nullptr;
    ForEachAttribute(node, [&](std::string_view name, std::string_view value) {
        last = AppendAttribute(element, last, std::string(name), value);
    });
}

// Each node is linked before anything else is asked of memory, so that it goes when the tree goes.
template <class Node>
xmlNode* Append(XmlTree& tree, xmlNode* parent, const Node& node) {
    xmlNode* made = NewNode(tree, node);
    LinkLast(parent, made);
    if (KindOf(node) == XmlKind::Element) AddAttributes(made, node);
    return made;
}

template <class Node>
void AppendWhole(XmlTree& tree, const Node& top) {
    xmlNode* parent = AsNode(tree);
    Node node = top;
    while (node) {
        xmlNode* made = Append(tree, parent, node);
        if (Node first = FirstChildOf(node)) {
            parent = made;
            node = first;
            continue;
        }
        while (!(node == top) && !NextOf(node)) {
            node = ParentOf(node);
            parent = parent->parent;
        }
        if (node == top) return;
        node = NextOf(node);
    }
}

template <class Node>
XmlTreePtr TreeOfOne(const Node& node) {
    QuietParser quiet;
    XmlTreePtr tree = NewTree();
    AppendWhole(*tree, node);
    return tree;
}

}  // namespace

XmlTreePtr BuildTree(const ParsedXml& parsed) {
    QuietParser quiet;
    XmlTreePtr tree = NewTree();
    for (ParsedNode node = parsed.First(); node; node = node.NextSibling()) {
        if (!node.IsBlankText()) AppendWhole(*tree, node);
    }
    return tree;
}

XmlTreePtr BuildTree(const ParsedNode& node) { return TreeOfOne(node); }
XmlTreePtr BuildTree(const xmlNode* node) { return TreeOfOne(node); }

}  // namespace quorix
