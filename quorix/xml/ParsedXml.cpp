#include "quorix/xml/ParsedXml.h"

#include <algorithm>
#include <array>

#include "quorix/base/WireText.h"
#include "quorix/xml/StreamParser.h"
#include "quorix/xml/XmlSerializer.h"

namespace quorix {

namespace {

// A name to look for, as the tree has it. Most are short ASCII and need no memory of their own.
class Sought {
public:
    explicit Sought(StringView text) {
        char16_t all = text.size() > short_.size() ? 0x80 : 0;
        for (std::size_t i = 0; i < text.size() && all < 0x80; ++i) {
            all |= text[i];
            short_[i] = static_cast<char>(text[i]);
        }
        if (all >= 0x80) long_ = Utf8FromText(text);
        view_ = all < 0x80 ? std::string_view(short_.data(), text.size()) : std::string_view(long_);
    }
    Sought(const Sought&) = delete;
    Sought& operator=(const Sought&) = delete;

    bool operator==(std::string_view name) const { return view_ == name; }

private:
    std::array<char, 48> short_;
    std::string long_;
    std::string_view view_;
};

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
    Sought sought(name);
    const Attribute* end = attributes_ + element.attributes + element.attributeCount;
    const Attribute* found =
        std::find_if(attributes_ + element.attributes, end,
                     [&](const Attribute& attribute) { return sought == View(attribute.name); });
    return found == end ? nullptr : found;
}

// The index behind the last node below.
std::uint32_t ParsedXml::EndOf(std::uint32_t index) const {
    for (; index != kNone; index = nodes_[index].parent) {
        if (nodes_[index].next != kNone) return nodes_[index].next;
    }
    return nodeCount_;
}

XmlKind ParsedNode::Kind() const { return tree_->nodes_[index_].kind; }

bool ParsedNode::IsBlankText() const {
    return tree_ != nullptr && Kind() == XmlKind::Text && IsBlankUtf8(RawContent());
}

String ParsedNode::Name() const { return IsElement() ? TextFromUtf8(RawName()) : String(); }
bool ParsedNode::Is(StringView name) const { return IsElement() && Sought(name) == RawName(); }

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
    return found != nullptr && Sought(value) == tree_->View(found->value);
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
    Sought sought(name);
    ParsedNode child = FirstElement();
    while (child && !(sought == child.RawName())) child = child.NextElement();
    return child;
}

ParsedNode ParsedNode::FindExtension(StringView xmlns) const {
    if (!tree_) return {};
    std::uint32_t end = tree_->EndOf(index_);
    for (std::uint32_t i = 0; i < tree_->extensionCount_; ++i) {
        ParsedNode node(tree_, tree_->extensions_[i]);
        if (node.index_ >= index_ && node.index_ < end && node.AttributeIs(u"xmlns", xmlns)) return node;
    }
    return {};
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
