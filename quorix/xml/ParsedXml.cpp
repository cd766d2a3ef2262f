#include "quorix/xml/ParsedXml.h"

#include <algorithm>

#include "quorix/base/WireText.h"
#include "quorix/xml/StreamParser.h"
#include "quorix/xml/XmlSerializer.h"

namespace quorix {

namespace {

bool Equals(std::string_view left, StringView right) {
    if (left.size() == right.size()) {
        std::size_t i = 0;
        while (i < left.size() && static_cast<char16_t>(left[i]) == right[i] && right[i] < 0x80) ++i;
        if (i == left.size()) return true;
    }
    bool ascii =
        std::all_of(left.begin(), left.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
    return !ascii && TextFromUtf8(left) == right;
}

bool IsBlankUtf8(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

ParsedNode FirstElementFrom(ParsedNode node) {
    while (node && !node.IsElement()) node = node.NextSibling();
    return node;
}

}  // namespace

ParsedXmlPtr ParsedXml::FromText(StringView text) {
    return HasLoneSurrogate(text) ? nullptr : FromUtf8(Utf8FromText(text));
}

ParsedXmlPtr ParsedXml::FromUtf8(std::string_view utf8) {
    ParsedXmlPtr tree = StreamParser::Document(StreamParser::Bytes::Utf8, utf8);
    return tree && !tree->TooDeep() ? tree : nullptr;
}

ParsedXmlPtr ParsedXml::FromWire(std::string_view bytes) {
    return StreamParser::Document(StreamParser::Bytes::Wire, bytes);
}

ParsedXmlPtr ParsedXml::ContentFromWire(std::string_view bytes) {
    return StreamParser::Content(StreamParser::Bytes::Wire, bytes);
}

ParsedNode ParsedXml::Root() const { return FirstElementFrom(First()); }

String ParsedXml::Xml() const {
    std::string all;
    for (ParsedNode node = First(); node; node = node.NextSibling()) all += Serialize(node);
    return TextFromUtf8(all);
}

const ParsedXml::Attribute* ParsedXml::Find(const Node& element, StringView name) const {
    const Attribute* end = attributes_ + element.attributes + element.attributeCount;
    const Attribute* found =
        std::find_if(attributes_ + element.attributes, end,
                     [&](const Attribute& attribute) { return Equals(View(attribute.name), name); });
    return found == end ? nullptr : found;
}

XmlKind ParsedNode::Kind() const { return tree_->nodes_[index_].kind; }

bool ParsedNode::IsBlankText() const {
    return tree_ != nullptr && Kind() == XmlKind::Text && IsBlankUtf8(RawContent());
}

String ParsedNode::Name() const { return IsElement() ? TextFromUtf8(RawName()) : String(); }
bool ParsedNode::Is(StringView name) const { return IsElement() && Equals(RawName(), name); }

std::string_view ParsedNode::RawName() const {
    const ParsedXml::Node& node = tree_->nodes_[index_];
    std::string_view text = tree_->View(node.text);
    if (node.kind == XmlKind::Element) return text;
    return node.kind == XmlKind::Instruction ? text.substr(0, text.find(' ')) : std::string_view();
}

std::string_view ParsedNode::RawContent() const {
    const ParsedXml::Node& node = tree_->nodes_[index_];
    std::string_view text = tree_->View(node.text);
    if (node.kind == XmlKind::Element) return {};
    return node.kind == XmlKind::Instruction ? text.substr(std::min(RawName().size() + 1, text.size()))
                                             : text;
}

String ParsedNode::Text() const {
    if (!tree_) return {};
    if (!IsElement()) return TextFromUtf8(RawContent());
    ParsedNode only = FirstChild();
    if (!only) return {};
    if (only.IsText() && !only.NextSibling()) return TextFromUtf8(only.RawContent());
    std::string all;
    for (ParsedNode node = only; node; node = node.Following(*this)) {
        if (node.IsText()) all += node.RawContent();
    }
    return TextFromUtf8(all);
}

bool ParsedNode::HasText() const {
    if (!IsElement()) return tree_ != nullptr && !RawContent().empty();
    ParsedNode node = FirstChild();
    while (node && !(node.IsText() && !node.RawContent().empty())) node = node.Following(*this);
    return static_cast<bool>(node);
}

String ParsedNode::Xml() const { return tree_ ? TextFromUtf8(Serialize(*this)) : String(); }

String ParsedNode::Attribute(StringView name) const {
    if (!IsElement()) return {};
    const ParsedXml::Attribute* found = tree_->Find(tree_->nodes_[index_], name);
    return found ? TextFromUtf8(tree_->View(found->value)) : String();
}

bool ParsedNode::HasAttribute(StringView name) const {
    return IsElement() && tree_->Find(tree_->nodes_[index_], name) != nullptr;
}

bool ParsedNode::AttributeIs(StringView name, StringView value) const {
    const ParsedXml::Attribute* found = IsElement() ? tree_->Find(tree_->nodes_[index_], name) : nullptr;
    return found != nullptr && Equals(tree_->View(found->value), value);
}

ParsedNode ParsedNode::Parent() const {
    std::uint32_t parent = tree_ ? tree_->nodes_[index_].parent : ParsedXml::kNone;
    return parent == ParsedXml::kNone ? ParsedNode() : ParsedNode(tree_, parent);
}

ParsedNode ParsedNode::FirstChild() const {
    std::uint32_t first = tree_ ? tree_->nodes_[index_].first : ParsedXml::kNone;
    return first == ParsedXml::kNone ? ParsedNode() : ParsedNode(tree_, first);
}

ParsedNode ParsedNode::NextSibling() const {
    std::uint32_t next = tree_ ? tree_->nodes_[index_].next : ParsedXml::kNone;
    return next == ParsedXml::kNone ? ParsedNode() : ParsedNode(tree_, next);
}

ParsedNode ParsedNode::FirstElement() const { return FirstElementFrom(FirstChild()); }
ParsedNode ParsedNode::NextElement() const { return FirstElementFrom(NextSibling()); }

ParsedNode ParsedNode::Child(StringView name) const {
    ParsedNode child = FirstElement();
    while (child && !child.Is(name)) child = child.NextElement();
    return child;
}

ParsedNode ParsedNode::Following(const ParsedNode& top) const {
    if (ParsedNode first = FirstChild()) return first;
    ParsedNode node = *this;
    while (node != top) {
        if (ParsedNode next = node.NextSibling()) return next;
        node = node.Parent();
    }
    return {};
}

}  // namespace quorix
