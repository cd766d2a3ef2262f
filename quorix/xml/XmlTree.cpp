#include "quorix/xml/XmlTree.h"

#include <libxml/dict.h>

#include <algorithm>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/base/XmlText.h"

namespace quorix {

namespace {

std::uintptr_t Handles(const xmlNode* node) { return reinterpret_cast<std::uintptr_t>(node->_private); }
void SetHandles(xmlNode* node, std::uintptr_t count) { node->_private = reinterpret_cast<void*>(count); }

template <class Visit>
void ForEachNode(xmlNode* top, Visit visit) {
    for (xmlNode* node = top; node; node = Following(node, top)) {
        visit(node);
        if (!IsElementNode(node)) continue;
        for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
            visit(AsNode(attribute));
            if (attribute->children) visit(attribute->children);
        }
    }
}

bool InSight(xmlNode* top) {
    std::uintptr_t handles = 0;
    ForEachNode(top, [&](xmlNode* node) { handles += Handles(node); });
    return handles > 0;
}

void ReleaseTree(XmlTree* tree) {
    if (--tree->references > 0) return;
    xmlFreeNodeList(tree->children);
    for (xmlNode* node : tree->loose) xmlFreeNode(node);
    xmlDictFree(tree->dict);
    delete tree;
}

bool HasOwnName(const xmlNode* node) {
    return node->type != XML_TEXT_NODE && node->type != XML_CDATA_SECTION_NODE &&
           node->type != XML_COMMENT_NODE;
}

// A name in `names` must not outlive them in a tree that does not share them.
void OwnName(xmlNode* node, xmlDict* names) {
    if (HasOwnName(node) && xmlDictOwns(names, node->name) == 1) node->name = xmlStrdup(node->name);
}

}  // namespace

void XmlTreeRelease::operator()(XmlTree* tree) const { ReleaseTree(tree); }

XmlTreePtr NewTree(xmlDict* names) {
    XmlTreePtr tree(new XmlTree{});
    tree->type = XML_DOCUMENT_NODE;
    tree->doc = tree.get();
    tree->standalone = -1;
    tree->charset = XML_CHAR_ENCODING_UTF8;
    tree->dict = names;
    if (names) xmlDictReference(names);
    return tree;
}

void AddHandle(xmlNode* node) {
    if (!node) return;
    SetHandles(node, Handles(node) + 1);
    ++TreeOf(node)->references;
}

void DropHandle(xmlNode* node) {
    if (!node) return;
    SetHandles(node, Handles(node) - 1);
    ReleaseTree(TreeOf(node));
}

xmlNode* Following(const xmlNode* node, const xmlNode* top) {
    if (xmlNode* first = ChildrenOf(node)) return first;
    while (node != top && !node->next) node = node->parent;
    return node == top ? nullptr : node->next;
}

xmlNode* FindChild(const xmlNode* parent, StringView name) {
    xmlNode* child = FirstElementFrom(ChildrenOf(parent));
    while (child && !Equals(child->name, name)) child = FirstElementFrom(child->next);
    return child;
}

xmlAttr* FindAttribute(const xmlNode* element, StringView name) {
    xmlAttr* attribute = IsElementNode(element) ? element->properties : nullptr;
    while (attribute && !Equals(attribute->name, name)) attribute = attribute->next;
    return attribute;
}

void LinkLast(xmlNode* parent, xmlNode* node) {
    node->parent = parent;
    node->prev = parent->last;
    node->next = nullptr;
    (parent->last ? parent->last->next : parent->children) = node;
    parent->last = node;
}

void Unlink(xmlNode* node) {
    xmlUnlinkNode(node);
    if (!TreeOf(node)->loose.empty()) TreeOf(node)->loose.erase(node);
}

void Discard(xmlNode* node) {
    if (InSight(node)) {
        TreeOf(node)->loose.insert(node);
    } else {
        xmlFreeNode(node);
    }
}

void Adopt(XmlTree& tree, xmlNode* top) {
    XmlTree* from = TreeOf(top);
    if (from == &tree) return;
    xmlDict* foreign = from->dict == tree.dict ? nullptr : from->dict;
    std::size_t handles = 0;
    ForEachNode(top, [&](xmlNode* node) {
        if (foreign) OwnName(node, foreign);
        handles += Handles(node);
        node->doc = &tree;
    });
    tree.references += handles;
    from->references -= handles;
    ++from->references;
    ReleaseTree(from);
}

xmlNode* NewElement(XmlTree& tree, const std::string& name) {
    xmlNode* node = xmlNewNode(nullptr, BAD_CAST name.c_str());
    node->doc = &tree;
    return node;
}

xmlNode* NewInstruction(XmlTree& tree, const std::string& target, const std::string& data) {
    return xmlNewDocPI(&tree, BAD_CAST target.c_str(), BAD_CAST data.c_str());
}

xmlNode* NewText(XmlTree& tree, const char* text, std::size_t size) {
    return xmlNewDocTextLen(&tree, BAD_CAST text, static_cast<int>(size));
}

std::string TreeText(StringView text) {
    return HasForbidden(text) ? Utf8FromText(WithoutForbidden(text)) : Utf8FromText(text);
}

std::string TreeName(StringView name) {
    std::string utf8 = Utf8FromText(name);
    bool isName = !HasForbidden(name) && xmlValidateName(BAD_CAST utf8.c_str(), 0) == 0;
    if (!isName) throw AutomationError(ERR_InvalidCall);
    return utf8;
}

String FromTree(const xmlChar* text) { return TextFromUtf8(Chars(text)); }

bool Equals(const xmlChar* left, StringView right) {
    if (!left) return right.empty();
    for (; !right.empty() && *left == right.front() && *left < 0x80; ++left) right.remove_prefix(1);
    bool ascii = *left < 0x80 && (right.empty() || right.front() < 0x80);
    return ascii ? *left == 0 && right.empty() : FromTree(left) == right;
}

}  // namespace quorix
