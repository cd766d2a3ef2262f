// The parser library's tree with a life of its own: it lives as long as a document or a handle needs it.
//
// Every node counts its handles in its private field, and the tree counts all of them. So a subtree can move
// to another tree and take its handles along, and what is removed is freed at once unless someone looks at
// it.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_set>

#include "quorix/base/String.h"
#include "quorix/xml/AttributeIndex.h"
#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/XmlDocument.h"

namespace quorix {

struct XmlTree : xmlDoc {
    std::size_t references = 1;
    std::unordered_set<xmlNode*> loose;          // removed or not yet placed, but in sight of a handle
    std::unique_ptr<AttributeIndex> attributes;  // of the element with many that was written last
};

// A tree without nodes.
XmlTreePtr NewTree();

// What the library has made, unless memory ran out.
template <class T>
T* Required(T* made) {
    if (made == nullptr) throw std::bad_alloc();
    return made;
}

// A node that no tree holds yet.
using OwnedNode = std::unique_ptr<xmlNode, decltype([](xmlNode* node) { xmlFreeNode(node); })>;

inline XmlTree* TreeOf(const xmlNode* node) { return static_cast<XmlTree*>(node->doc); }
inline xmlNode* AsNode(XmlTree& tree) { return reinterpret_cast<xmlNode*>(static_cast<xmlDoc*>(&tree)); }
inline xmlNode* AsNode(xmlAttr* attribute) { return reinterpret_cast<xmlNode*>(attribute); }

void AddHandle(xmlNode* node);
void DropHandle(xmlNode* node);

// The node after `node` in document order, inside the subtree of `top`; null at its end.
xmlNode* Following(const xmlNode* node, const xmlNode* top);

// Appends `node`, which must stand outside, in constant time.
void LinkLast(xmlNode* parent, xmlNode* node);

// Takes `node` out of its place. It must be linked next.
void Unlink(xmlNode* node);

// Takes `node` out of its place and frees it, or keeps it with the tree while a handle may look at it.
// Changes nothing when memory runs out.
void Remove(xmlNode* node);

// Puts `element`, wherever it stands, in the place of `former`, which is removed. Changes nothing when memory
// runs out.
void Replace(xmlNode* former, xmlNode* element);

// Makes an unlinked node and all below it part of `tree`, whatever tree it came from.
void Adopt(XmlTree& tree, xmlNode* node);

xmlNode* NewElement(XmlTree& tree, const std::string& name);
xmlNode* NewLooseElement(XmlTree& tree, const std::string& name);  // kept with the tree, in no place
xmlNode* NewInstruction(XmlTree& tree, const std::string& target, const std::string& data);
xmlNode* NewText(XmlTree& tree, std::string_view text);
xmlNode* NewComment(XmlTree& tree, std::string_view text);
xmlNode* NewCData(XmlTree& tree, std::string_view text);

// A new attribute behind `last`, which is the element's last one or null without any.
xmlAttr* AppendAttribute(xmlNode* element, xmlAttr* last, const std::string& name, std::string_view value);

// Gives the attribute `name` this value; a new one comes last.
void PutAttribute(xmlNode* element, const std::string& name, std::string_view value);

// Text as the tree keeps it: what XML cannot hold becomes U+FFFD.
std::string TreeText(StringView text);

// The name, checked. Error 5 when it is no XML name.
std::string TreeName(StringView name);

// Never null, whatever the tree holds.
inline const char* Chars(const xmlChar* text) { return text ? reinterpret_cast<const char*>(text) : ""; }

String FromTree(const xmlChar* text);
bool Equals(const xmlChar* left, StringView right);

inline bool IsElementNode(const xmlNode* node) { return node && node->type == XML_ELEMENT_NODE; }
inline bool IsTextNode(const xmlNode* node) {
    return node && (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE);
}

// The first element among `node` and its later siblings.
inline xmlNode* FirstElementFrom(xmlNode* node) {
    while (node && !IsElementNode(node)) node = node->next;
    return node;
}
xmlNode* FindChild(const xmlNode* parent, StringView name);       // an element; null in all but a parent
xmlAttr* FindAttribute(const xmlNode* element, StringView name);  // null in all but an element

// An attribute's value hangs below it too, but is no child.
inline xmlNode* ChildrenOf(const xmlNode* node) {
    return node && (IsElementNode(node) || node->type == XML_DOCUMENT_NODE) ? node->children : nullptr;
}

// Whether the node may stand below an element.
inline bool CanBeChild(const xmlNode* node) {
    return IsElementNode(node) || IsTextNode(node) || node->type == XML_COMMENT_NODE ||
           node->type == XML_PI_NODE;
}

}  // namespace quorix
