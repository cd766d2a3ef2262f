#include "quorix/xml/ParsedXml.h"

#include <algorithm>

#include "quorix/base/WireText.h"
#include "quorix/xml/StreamParser.h"
#include "quorix/xml/XmlSerializer.h"

namespace quorix {

namespace {

ParsedNode FirstElementFrom(ParsedNode node) {
    while (node && !node.IsElement()) node = node.NextSibling();
    return node;
}

}  // namespace

bool EqualsBeyondAscii(std::string_view utf8, StringView text) {
    return utf8.size() <= 3 * text.size() && !IsAscii(utf8) && TextFromUtf8(utf8) == text;
}

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
    String all;
    for (ParsedNode node = First(); node; node = node.NextSibling()) all += Serialize(node);
    return all;
}

const ParsedXml::Attribute* ParsedXml::Find(const Node& element, StringView name) const {
    const Attribute* end = attributes_ + element.attributes + element.attributeCount;
    const Attribute* found =
        std::find_if(attributes_ + element.attributes, end,
                     [&](const Attribute& attribute) { return EqualsText(NameOf(attribute), name); });
    return found == end ? nullptr : found;
}

bool ParsedNode::IsBlankText() const {
    return tree_ != nullptr && Kind() == XmlKind::Text && IsBlankUtf8(RawContent());
}

String ParsedNode::Name() const { return IsElement() ? TextFromUtf8(RawName()) : String(); }

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

// They stand in document order, so they end where those of the next node begin that is not below this one.
std::size_t ParsedNode::RawSize() const {
    ParsedNode behind = *this;
    while (behind && !behind.NextSibling()) behind = behind.Parent();
    std::uint32_t end = behind ? tree_->nodes_[behind.NextSibling().index_].text.at : tree_->charCount_;
    return end - tree_->nodes_[index_].text.at;
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

String ParsedNode::Xml() const { return tree_ ? Serialize(*this) : String(); }

String ParsedNode::Attribute(StringView name) const {
    if (!IsElement()) return {};
    const ParsedXml::Attribute* found = tree_->Find(tree_->nodes_[index_], name);
    return found ? TextFromUtf8(tree_->ValueOf(*found)) : String();
}

bool ParsedNode::HasAttribute(StringView name) const {
    return IsElement() && tree_->Find(tree_->nodes_[index_], name) != nullptr;
}

bool ParsedNode::AttributeIs(StringView name, StringView value) const {
    const ParsedXml::Attribute* found = IsElement() ? tree_->Find(tree_->nodes_[index_], name) : nullptr;
    return found != nullptr && EqualsText(tree_->ValueOf(*found), value);
}

ParsedNode ParsedNode::FirstElement() const { return FirstElementFrom(FirstChild()); }
ParsedNode ParsedNode::NextElement() const { return FirstElementFrom(NextSibling()); }

ParsedNode ParsedNode::Child(StringView name) const {
    ParsedNode child = FirstChild();
    while (child && !child.Is(name)) child = child.NextSibling();
    return child;
}

}  // namespace quorix
