#include "quorix/xml/XmlBuilder.h"

#include <string>

namespace quorix {

namespace {

xmlNode* NewNode(XmlTree& tree, const ParsedNode& node) {
    switch (node.Kind()) {
        case XmlKind::Element: return NewElement(tree, std::string(node.RawName()));
        case XmlKind::Text: return NewText(tree, node.RawContent());
        case XmlKind::CData: return NewCData(tree, node.RawContent());
        case XmlKind::Comment: return NewComment(tree, node.RawContent());
        case XmlKind::Instruction:
            return NewInstruction(tree, std::string(node.RawName()), std::string(node.RawContent()));
    }
    return nullptr;
}

void AddAttributes(xmlNode* element, const ParsedNode& node) {
    xmlAttr* last = nullptr;
    node.ForEachRawAttribute([&](std::string_view name, std::string_view value) {
        last = AppendAttribute(element, last, std::string(name), value);
    });
}

// Each node is linked before anything else is asked of memory, so that it goes when the tree goes.
xmlNode* Append(XmlTree& tree, xmlNode* parent, const ParsedNode& node) {
    xmlNode* made = NewNode(tree, node);
    LinkLast(parent, made);
    AddAttributes(made, node);
    return made;
}

void AppendWhole(XmlTree& tree, const ParsedNode& top) {
    xmlNode* parent = AsNode(tree);
    ParsedNode node = top;
    while (node) {
        xmlNode* made = Append(tree, parent, node);
        if (ParsedNode first = node.FirstChild()) {
            parent = made;
            node = first;
            continue;
        }
        while (node != top && !node.NextSibling()) {
            node = node.Parent();
            parent = parent->parent;
        }
        if (node == top) return;
        node = node.NextSibling();
    }
}

}  // namespace

XmlTreePtr BuildTree(const ParsedXml& parsed) {
    XmlTreePtr tree = NewTree();
    for (ParsedNode node = parsed.First(); node; node = node.NextSibling()) {
        if (!node.IsBlankText()) AppendWhole(*tree, node);
    }
    return tree;
}

XmlTreePtr BuildTree(const ParsedNode& node) {
    XmlTreePtr tree = NewTree();
    AppendWhole(*tree, node);
    return tree;
}

}  // namespace quorix
