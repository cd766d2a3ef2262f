// XML as it was parsed: a tree that never changes.
//
// All of a tree stands in one piece of memory, in document order. Reading converts what is
// read, when it is read. For editing and for XPath there is XmlDocument, which is made from a tree when it is
// asked for.
//
// Names and values are text, as in XmlNode.h: no namespace processing, comparisons are exact.
//
// Ownership: a ParsedNode points into its tree and must not outlive it. Threads: a tree may be read by
// several.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "quorix/base/String.h"

namespace quorix {

class ParsedXml;
using ParsedXmlPtr = std::shared_ptr<const ParsedXml>;

enum class XmlKind : std::uint8_t { Element, Text, CData, Comment, Instruction };

// A handle on one node, cheap to copy and maybe empty. Reading an empty one answers "", false or an empty
// one, so that a path of children can be followed without a test at each step.
class ParsedNode {
public:
    ParsedNode() = default;
    ParsedNode(const ParsedXml* tree, std::uint32_t index) : tree_(tree), index_(index) {}

    explicit operator bool() const { return tree_ != nullptr; }
    bool operator==(const ParsedNode&) const = default;

    bool IsElement() const { return tree_ != nullptr && Kind() == XmlKind::Element; }
    bool IsText() const { return tree_ != nullptr && (Kind() == XmlKind::Text || Kind() == XmlKind::CData); }
    bool IsBlankText() const;           // white space, and not in a CDATA section
    ParsedNode OrNextNotBlank() const;  // this one, or the first sibling behind it that is no blank text
    XmlKind Kind() const;               // of a node
    String Name() const;                // of an element
    bool Is(StringView name) const;     // an element of this name

    // The text of all descendants of an element in one; the content of other nodes.
    String Text() const;
    bool HasText() const;  // Text is not empty

    // The serialized form: no declaration, no indentation, attributes in source order.
    String Xml() const;

    String Attribute(StringView name) const;  // "" when absent
    bool HasAttribute(StringView name) const;
    bool AttributeIs(StringView name, StringView value) const;  // present and equal

    ParsedNode Parent() const;  // the parent element
    ParsedNode FirstChild() const;
    ParsedNode NextSibling() const;
    ParsedNode FirstElement() const;
    ParsedNode NextElement() const;
    ParsedNode Child(StringView name) const;  // the first child element of this name

    // The first element of this name and `xmlns`, here or below.
    ParsedNode Find(StringView name, StringView xmlns) const;

    // The next node in document order below `top`; empty at its end.
    ParsedNode Following(const ParsedNode& top) const;

    std::uint32_t Index() const { return index_; }  // by which it can be made again from its tree

    // As they stand in the tree, in UTF-8. An instruction has its target as its name, other leaves have no
    // name.
    std::string_view RawName() const;
    std::string_view RawContent() const;  // of a leaf
    template <class Visit>                // takes names and values
    void ForEachRawAttribute(Visit visit) const;
    std::size_t RawSize() const;  // of all names, values and contents from here to below

private:
    const ParsedXml* tree_ = nullptr;
    std::uint32_t index_ = 0;
};

class ParsedXml {
public:
    // Null when `text` is not well-formed, holds a document type declaration, or exceeds kMaxXmlDepth. An
    // encoding declared in it has no meaning, since characters are characters already.
    static ParsedXmlPtr FromText(StringView text);
    static ParsedXmlPtr FromUtf8(std::string_view utf8);
    // The bytes of a stream, of which each is a character, however deep.
    static ParsedXmlPtr FromWire(std::string_view bytes);

    // The same as the content of an enclosing element that is not in them: any number of nodes side by side.
    static ParsedXmlPtr ContentFromWire(std::string_view bytes);

    // The first node at the top; the others are its siblings. A declaration is an instruction called "xml".
    ParsedNode First() const { return nodeCount_ > 0 ? ParsedNode(this, 0) : ParsedNode(); }
    ParsedNode Root() const;                   // the first element at the top
    String Xml() const;                        // of all that stands at the top
    bool TooDeep() const { return tooDeep_; }  // deeper than kMaxXmlDepth

    ParsedXml(const ParsedXml&) = delete;
    ParsedXml& operator=(const ParsedXml&) = delete;

private:
    friend class PackedTrees;
    friend class ParsedBuilder;
    friend class ParsedNode;
    struct Key {};

    static constexpr std::uint32_t kNone = UINT32_MAX;

    struct Span {
        std::uint32_t at = 0;
        std::uint32_t size = 0;
    };
    // A value stands behind its name.
    struct Attribute {
        std::uint32_t at = 0;
        std::uint32_t nameSize = 0;
        std::uint32_t valueSize = 0;
    };
    // Its first child stands behind a node, or behind one blank text that was dropped.
    struct Node {
        std::uint32_t parent = kNone;
        std::uint32_t next = kNone;
        Span text;  // the name of an element, the content of a leaf, "target data" of an instruction
        std::uint32_t attributes = 0;
        std::uint32_t attributeCount : 27 = 0;
        std::uint32_t toFirst : 2 = 0;  // how far behind the first child stands; 0 without one
        XmlKind kind : 3 = XmlKind::Element;
    };
    static constexpr std::uint32_t kMostAttributes = (1U << 27U) - 1;

    // One of this size, to be filled in.
    static std::shared_ptr<ParsedXml> Blank(std::size_t nodes, std::size_t attributes, std::size_t chars);

    std::string_view View(Span span) const { return {chars_ + span.at, span.size}; }
    std::string_view NameOf(const Attribute& attribute) const {
        return {chars_ + attribute.at, attribute.nameSize};
    }
    std::string_view ValueOf(const Attribute& attribute) const {
        return {chars_ + attribute.at + attribute.nameSize, attribute.valueSize};
    }
    const Attribute* Find(const Node& element, StringView name) const;
    std::uint32_t EndOf(std::uint32_t node) const;  // where those end that are in it

    // All of it stands behind this object, in the same piece of memory.
    Node* nodes_ = nullptr;
    Attribute* attributes_ = nullptr;
    char* chars_ = nullptr;
    std::uint32_t nodeCount_ = 0;
    std::uint32_t attributeCount_ = 0;
    std::uint32_t charCount_ = 0;
    bool tooDeep_ = false;

public:
    explicit ParsedXml(Key) {}
};

// -- What every look-up consists of --

bool EqualsBeyondAscii(std::string_view utf8, StringView text);

// Most names are ASCII, and most that differ do so in their length. In UTF-8, all other text is longer.
inline bool EqualsText(std::string_view utf8, StringView text) {
    if (utf8.size() > 3 * text.size()) return false;
    if (utf8.size() > text.size()) return EqualsBeyondAscii(utf8, text);
    if (utf8.size() < text.size()) return false;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if (text[i] != static_cast<unsigned char>(utf8[i]) || text[i] >= 0x80) return false;
    }
    return true;
}

inline XmlKind ParsedNode::Kind() const { return tree_->nodes_[index_].kind; }
inline bool ParsedNode::Is(StringView name) const {
    return IsElement() && EqualsText(tree_->View(tree_->nodes_[index_].text), name);
}

inline ParsedNode ParsedNode::Parent() const {
    std::uint32_t parent = tree_ ? tree_->nodes_[index_].parent : ParsedXml::kNone;
    return parent == ParsedXml::kNone ? ParsedNode() : ParsedNode(tree_, parent);
}
inline ParsedNode ParsedNode::FirstChild() const {
    std::uint32_t toFirst = tree_ ? tree_->nodes_[index_].toFirst : 0;
    return toFirst == 0 ? ParsedNode() : ParsedNode(tree_, index_ + toFirst);
}
inline ParsedNode ParsedNode::NextSibling() const {
    std::uint32_t next = tree_ ? tree_->nodes_[index_].next : ParsedXml::kNone;
    return next == ParsedXml::kNone ? ParsedNode() : ParsedNode(tree_, next);
}
inline ParsedNode ParsedNode::Following(const ParsedNode& top) const {
    if (ParsedNode first = FirstChild()) return first;
    ParsedNode node = *this;
    while (node != top) {
        if (ParsedNode next = node.NextSibling()) return next;
        node = node.Parent();
    }
    return {};
}

template <class Visit>
void ParsedNode::ForEachRawAttribute(Visit visit) const {
    const ParsedXml::Node& node = tree_->nodes_[index_];
    for (std::uint32_t i = 0; i < node.attributeCount; ++i) {
        const ParsedXml::Attribute& attribute = tree_->attributes_[node.attributes + i];
        visit(tree_->NameOf(attribute), tree_->ValueOf(attribute));
    }
}

}  // namespace quorix
