#include "quorix/xml/XmlTree.h"

#include <libxml/parser.h>

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

// Before threads can race for it. What the library keeps for a thread it makes when it reports something, and
// counts on it even when memory has run out.
void StartLibrary() {
    [[maybe_unused]] static const bool started = (xmlInitParser(), true);
    Required(xmlGetGlobalState());
}

// The library makes a node without the name for which there is no memory.
template <class Node, class Free>
Node* WithName(Node* node, Free free) {
    if (Required(node)->name != nullptr) return node;
    free(node);
    throw std::bad_alloc();
}

xmlNode* WithContent(xmlNode* node, std::string_view content) {
    Required(node);  // first: an assignment asks its right side before its left
    node->content = xmlStrndup(BAD_CAST content.data(), static_cast<int>(content.size()));
    if (node->content != nullptr) return node;
    xmlFreeNode(node);
    throw std::bad_alloc();
}

bool InSight(xmlNode* top) {
    std::uintptr_t handles = 0;
    ForEachNode(top, [&](xmlNode* node) { handles += Handles(node); });
    return handles > 0;
}

// Before the tree is changed, since memory may run out.
bool KeepIfInSight(xmlNode* node) {
    bool kept = InSight(node);
    if (kept) TreeOf(node)->loose.insert(node);
    return kept;
}

void TakeOut(xmlNode* node) {
    if (TreeOf(node)->attributes) TreeOf(node)->attributes->Forget();
    xmlUnlinkNode(node);
}

void ReleaseTree(XmlTree* tree) {
    if (--tree->references > 0) return;
    xmlFreeNodeList(tree->children);
    for (xmlNode* node : tree->loose) xmlFreeNode(node);
    delete tree;
}

}  // namespace

void XmlTreeRelease::operator()(XmlTree* tree) const { ReleaseTree(tree); }

XmlTreePtr NewTree() {
    StartLibrary();
    XmlTreePtr tree(new XmlTree{});
    tree->type = XML_DOCUMENT_NODE;
    tree->doc = tree.get();
    tree->standalone = -1;
    tree->charset = XML_CHAR_ENCODING_UTF8;
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
    TakeOut(node);
    if (!TreeOf(node)->loose.empty()) TreeOf(node)->loose.erase(node);
}

void Remove(xmlNode* node) {
    bool kept = KeepIfInSight(node);
    TakeOut(node);
    if (!kept) xmlFreeNode(node);
}

void Replace(xmlNode* former, xmlNode* element) {
    XmlTree& tree = *TreeOf(former);
    bool kept = KeepIfInSight(former);
    Unlink(element);
    Adopt(tree, element);
    xmlReplaceNode(former, element);
    if (!kept) xmlFreeNode(former);
}

void Adopt(XmlTree& tree, xmlNode* top) {
    XmlTree* from = TreeOf(top);
    if (from == &tree) return;
    std::size_t handles = 0;
    ForEachNode(top, [&](xmlNode* node) {
        handles += Handles(node);
        node->doc = &tree;
    });
    tree.references += handles;
    from->references -= handles;
    ++from->references;
    ReleaseTree(from);
}

xmlNode* NewElement(XmlTree& tree, const std::string& name) {
    xmlNode* node = WithName(xmlNewNode(nullptr, BAD_CAST name.c_str()), xmlFreeNode);
    node->doc = &tree;
    return node;
}

xmlNode* NewLooseElement(XmlTree& tree, const std::string& name) {
    OwnedNode made(NewElement(tree, name));
    tree.loose.insert(made.get());
    return made.release();
}

xmlNode* NewInstruction(XmlTree& tree, const std::string& target, const std::string& data) {
    xmlNode* node = WithName(xmlNewDocPI(&tree, BAD_CAST target.c_str(), nullptr), xmlFreeNode);
    return WithContent(node, data);
}

xmlNode* NewText(XmlTree& tree, std::string_view text) {
    return WithContent(xmlNewDocText(&tree, nullptr), text);
}

xmlNode* NewComment(XmlTree& tree, std::string_view text) {
    return WithContent(xmlNewDocComment(&tree, nullptr), text);
}

xmlNode* NewCData(XmlTree& tree, std::string_view text) {
    return WithContent(xmlNewCDataBlock(&tree, nullptr, 0), text);
}

xmlAttr* AppendAttribute(xmlNode* element, xmlAttr* last, const std::string& name, std::string_view value) {
    OwnedNode text(NewText(*TreeOf(element), value));
    xmlAttr* attribute = WithName(xmlNewDocProp(element->doc, BAD_CAST name.c_str(), nullptr), xmlFreeProp);
    attribute->parent = element;
    text->parent = AsNode(attribute);
    attribute->children = attribute->last = text.release();
    attribute->prev = last;
    (last ? last->next : element->properties) = attribute;
    return attribute;
}

namespace {

constexpr std::size_t kManyAttributes = 32;

// Where PutAttribute writes: the attribute of the name, or behind the last one.
struct AttributePlace {
    xmlAttr* attribute = nullptr;
    xmlAttr* last = nullptr;
    AttributeIndex* index = nullptr;
};

AttributePlace PlaceOf(xmlNode* element, const std::string& name) {
    xmlAttr* last = nullptr;
    xmlAttr* next = element->properties;
    for (std::size_t seen = 0; next && seen < kManyAttributes; ++seen, next = next->next) {
        if (name == Chars(next->name)) return {next};
        last = next;
    }
    if (!next) return {nullptr, last};
    std::unique_ptr<AttributeIndex>& index = TreeOf(element)->attributes;
    if (!index) index = std::make_unique<AttributeIndex>();
    xmlAttr* found = index->Find(element, name);
    return {found, index->Last(), index.get()};
}

void SetValue(xmlAttr* attribute, std::string_view value) {
    xmlNode* text = NewText(*TreeOf(AsNode(attribute)), value);
    xmlFreeNodeList(attribute->children);
    attribute->children = attribute->last = text;
    text->parent = AsNode(attribute);
}

}  // namespace

void PutAttribute(xmlNode* element, const std::string& name, std::string_view value) {
    AttributePlace place = PlaceOf(element, name);
    if (place.attribute) return SetValue(place.attribute, value);
    xmlAttr* attribute = AppendAttribute(element, place.last, name, value);
    if (place.index) place.index->Append(attribute);
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
