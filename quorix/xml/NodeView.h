// What the two kinds of trees have in common, for what is done with either: a document's nodes, and those of
// a tree as it was parsed.
#pragma once

#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

inline XmlKind KindOf(const xmlNode* node) {
    switch (node->type) {
        case XML_ELEMENT_NODE: return XmlKind::Element;
        case XML_CDATA_SECTION_NODE: return XmlKind::CData;
        case XML_COMMENT_NODE: return XmlKind::Comment;
        case XML_PI_NODE: return XmlKind::Instruction;
        default: return XmlKind::Text;
    }
}
inline std::string_view NameOf(const xmlNode* node) { return Chars(node->name); }
inline std::string_view ContentOf(const xmlNode* node) { return Chars(node->content); }
inline const xmlNode* FirstChildOf(const xmlNode* node) { return ChildrenOf(node); }
inline const xmlNode* NextOf(const xmlNode* node) { return node->next; }
inline const xmlNode* ParentOf(const xmlNode* node) { return node->parent; }
inline std::string_view ValueOf(const xmlAttr* attribute) {
    return Chars(attribute->children ? attribute->children->content : nullptr);
}

template <class Visit>  // takes names and values
void ForEachAttribute(const xmlNode* element, Visit visit) {
    for (const xmlAttr* at = element->properties; at; at = at->next) visit(Chars(at->name), ValueOf(at));
}

inline XmlKind KindOf(const ParsedNode& node) { return node.Kind(); }
inline std::string_view NameOf(const ParsedNode& node) { return node.RawName(); }
inline std::string_view ContentOf(const ParsedNode& node) { return node.RawContent(); }
inline ParsedNode FirstChildOf(const ParsedNode& node) { return node.FirstChild(); }
inline ParsedNode NextOf(const ParsedNode& node) { return node.NextSibling(); }
inline ParsedNode ParentOf(const ParsedNode& node) { return node.Parent(); }

template <class Visit>
void ForEachAttribute(const ParsedNode& element, Visit visit) {
    element.ForEachRawAttribute(visit);
}

}  // namespace quorix
