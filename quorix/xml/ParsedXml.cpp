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

// Memory for one object and, behind it, for `size` bytes, of which it tells the place.
template <class T>
struct WithTail {
    using value_type = T;

    WithTail(std::size_t theSize, char** thePlace) : size(theSize), place(thePlace) {}
    template <class Other>
    WithTail(const WithTail<Other>& other)  // NOLINT(google-explicit-constructor): allocators convert
        : size(other.size), place(other.place) {}

    T* allocate(std::size_t count) {
        char* block = static_cast<char*>(::operator new(count * sizeof(T) + size));
        *place = block + count * sizeof(T);
        return reinterpret_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t) { ::operator delete(block); }
    bool operator==(const WithTail&) const = default;

    std::size_t size;
    char** place;
};

}  // namespace

bool EqualsBeyondAscii(std::string_view utf8, StringView text) {
    return !IsAscii(utf8) && TextFromUtf8(utf8) == text;
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

std::shared_ptr<ParsedXml> ParsedXml::Blank(std::size_t nodes, std::size_t attributes, std::size_t chars) {
    const std::size_t toAttributes = nodes * sizeof(Node);
    const std::size_t toChars = toAttributes + attributes * sizeof(Attribute);
    char* tail = nullptr;
    auto tree = std::allocate_shared<ParsedXml>(WithTail<ParsedXml>{toChars + chars, &tail}, Key());
    tree->nodes_ = reinterpret_cast<Node*>(tail);
    tree->attributes_ = reinterpret_cast<Attribute*>(tail + toAttributes);
    tree->chars_ = tail + toChars;
    tree->nodeCount_ = static_cast<std::uint32_t>(nodes);
    tree->attributeCount_ = static_cast<std::uint32_t>(attributes);
    tree->charCount_ = static_cast<std::uint32_t>(chars);
    return tree;
}

const ParsedXml::Attribute* ParsedXml::Find(const Node& element, StringView name) const {
    const Attribute* begin = attributes_ + element.attributes;
    const Attribute* end = begin + element.attributeCount;
    const Attribute* found = std::find_if(
        begin, end, [&](const Attribute& attribute) { return EqualsText(NameOf(attribute), name); });
    return found == end ? nullptr : found;
}

// They stand in document order, up to the next node that is not below this one.
std::uint32_t ParsedXml::EndOf(std::uint32_t node) const {
    while (nodes_[node].next == kNone && nodes_[node].parent != kNone) node = nodes_[node].parent;
    return std::min(nodes_[node].next, nodeCount_);
}

bool ParsedNode::IsBlankText() const {
    return tree_ != nullptr && Kind() == XmlKind::Text && IsBlankUtf8(RawContent());
}

ParsedNode ParsedNode::OrNextNotBlank() const {
    ParsedNode node = *this;
    while (node.IsBlankText()) node = node.NextSibling();
    return node;
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

std::size_t ParsedNode::RawSize() const {
    std::uint32_t behind = tree_->EndOf(index_);
    std::uint32_t end = behind < tree_->nodeCount_ ? tree_->nodes_[behind].text.at : tree_->charCount_;
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

// Every message is looked through so, some of them several times.
ParsedNode ParsedNode::Find(StringView name, StringView xmlns) const {
    const std::uint32_t end = tree_ ? tree_->EndOf(index_) : 0;
    for (std::uint32_t i = index_; i < end; ++i) {
        ParsedNode node(tree_, i);
        if (node.Is(name) && node.AttributeIs(u"xmlns", xmlns)) return node;
    }
    return {};
}

}  // namespace quorix
