#include "quorix/xml/XmlNode.h"

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/QuietParser.h"
#include "quorix/xml/XmlQuery.h"
#include "quorix/xml/XmlSerializer.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

namespace {

xmlNode* RequireElement(xmlNode* node) {
    if (!IsElementNode(node)) throw AutomationError(ERR_ObjectNotSet);
    return node;
}

const xmlChar* Value(const xmlAttr* attribute) {
    return attribute->children ? attribute->children->content : nullptr;
}

// An attribute's neighbours are attributes, and a document's are nobody's.
xmlNode* SiblingOf(const xmlNode* node) { return node && CanBeChild(node) ? node->next : nullptr; }

bool IsOnlyText(const xmlNode* node) { return IsTextNode(node) && !node->next; }

String TextBelow(const xmlNode* top) {
    if (IsOnlyText(top->children)) return FromTree(top->children->content);
    std::string all;
    for (const xmlNode* node = top->children; node; node = Following(node, top)) {
        if (IsTextNode(node)) all += Chars(node->content);
    }
    return TextFromUtf8(all);
}

void DropChildren(xmlNode* element) {
    while (xmlNode* child = element->children) Remove(child);
}

bool IsWithin(const xmlNode* node, const xmlNode* ancestor) {
    while (node && node != ancestor) node = node->parent;
    return node != nullptr;
}

String FixedName(const xmlNode* node) {
    switch (node->type) {
        case XML_TEXT_NODE: return u"#text";
        case XML_CDATA_SECTION_NODE: return u"#cdata-section";
        case XML_COMMENT_NODE: return u"#comment";
        case XML_DOCUMENT_NODE: return u"#document";
        default: return FromTree(node->name);
    }
}

}  // namespace

XmlNode::XmlNode(_xmlNode* node) : node_(node) { AddHandle(node_); }
XmlNode::XmlNode(const XmlNode& other) : XmlNode(other.node_) {}
XmlNode::~XmlNode() { DropHandle(node_); }

XmlNode& XmlNode::operator=(XmlNode other) noexcept {
    std::swap(node_, other.node_);
    return *this;
}

bool XmlNode::IsElement() const { return IsElementNode(node_); }
bool XmlNode::IsText() const { return IsTextNode(node_); }
String XmlNode::Name() const { return node_ ? FixedName(node_) : String(); }
bool XmlNode::Is(StringView name) const { return IsElement() && Equals(node_->name, name); }

String XmlNode::Text() const {
    if (!node_) return {};
    bool composed = node_->type == XML_ELEMENT_NODE || node_->type == XML_ATTRIBUTE_NODE ||
                    node_->type == XML_DOCUMENT_NODE;
    return composed ? TextBelow(node_) : FromTree(node_->content);
}

void XmlNode::Text(StringView value) {
    DropChildren(RequireElement(node_));
    if (value.empty()) return;
    QuietParser quiet;
    LinkLast(node_, NewText(*TreeOf(node_), TreeText(value)));
}

String XmlNode::Xml() const { return node_ ? Serialize(node_) : String(); }

String XmlNode::Attribute(StringView name) const {
    const xmlAttr* attribute = FindAttribute(node_, name);
    return attribute ? FromTree(Value(attribute)) : String();
}

bool XmlNode::HasAttribute(StringView name) const { return FindAttribute(node_, name) != nullptr; }

bool XmlNode::AttributeIs(StringView name, StringView value) const {
    const xmlAttr* attribute = FindAttribute(node_, name);
    return attribute && Equals(Value(attribute), value);
}

std::vector<std::pair<String, String>> XmlNode::Attributes() const {
    std::vector<std::pair<String, String>> all;
    const xmlAttr* attribute = IsElement() ? node_->properties : nullptr;
    for (; attribute; attribute = attribute->next) {
        all.emplace_back(FromTree(attribute->name), FromTree(Value(attribute)));
    }
    return all;
}

void XmlNode::SetAttribute(StringView name, StringView value) {
    RequireElement(node_);
    std::string text = TreeText(value);
    QuietParser quiet;
    PutAttribute(node_, TreeName(name), text);
}

void XmlNode::RemoveAttribute(StringView name) {
    xmlAttr* attribute = FindAttribute(RequireElement(node_), name);
    if (attribute) Remove(AsNode(attribute));
}

XmlNode XmlNode::Parent() const {
    return XmlNode(node_ && IsElementNode(node_->parent) ? node_->parent : nullptr);
}
XmlNode XmlNode::FirstChild() const { return XmlNode(ChildrenOf(node_)); }
XmlNode XmlNode::NextSibling() const { return XmlNode(SiblingOf(node_)); }
XmlNode XmlNode::FirstElement() const { return XmlNode(FirstElementFrom(ChildrenOf(node_))); }
XmlNode XmlNode::NextElement() const { return XmlNode(FirstElementFrom(SiblingOf(node_))); }

XmlNode XmlNode::Child(StringView name) const { return XmlNode(FindChild(node_, name)); }

XmlNode XmlNode::Following(const XmlNode& top) const {
    return XmlNode(node_ ? quorix::Following(node_, top.node_) : nullptr);
}

std::vector<XmlNode> XmlNode::Select(StringView xpath) const {
    return node_ ? SelectNodes(node_, xpath) : std::vector<XmlNode>();
}

XmlNode XmlNode::SelectSingle(StringView xpath) const {
    std::vector<XmlNode> found = Select(xpath);
    return found.empty() ? XmlNode() : found.front();
}

XmlNode XmlNode::AppendElement(StringView name) {
    QuietParser quiet;
    xmlNode* child = NewElement(*TreeOf(RequireElement(node_)), TreeName(name));
    LinkLast(node_, child);
    return XmlNode(child);
}

XmlNode XmlNode::AppendChild(const XmlNode& child) {
    RequireElement(node_);
    if (!child) throw AutomationError(ERR_ObjectNotSet);
    if (!CanBeChild(child.node_) || IsWithin(node_, child.node_)) throw AutomationError(ERR_InvalidCall);
    Unlink(child.node_);
    Adopt(*TreeOf(node_), child.node_);
    LinkLast(node_, child.node_);
    return child;
}

void XmlNode::RemoveChild(const XmlNode& child) {
    RequireElement(node_);
    if (!child || child.node_->parent != node_ || !CanBeChild(child.node_))
        throw AutomationError(ERR_InvalidCall);
    Remove(child.node_);
}

}  // namespace quorix
