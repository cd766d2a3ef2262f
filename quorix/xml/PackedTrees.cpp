#include "quorix/xml/PackedTrees.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace quorix {

namespace {

constexpr std::size_t kBlock = 1U << 16U;

struct Head {
    std::uint32_t nodes;
    std::uint32_t attributes;
    std::uint32_t chars;
    bool tooDeep;

    // Almost every stanza is; what is not takes no less memory than before.
    bool IsSmall() const {
        constexpr std::uint32_t kFew = std::numeric_limits<std::uint8_t>::max();
        constexpr std::uint32_t kShort = std::numeric_limits<std::uint16_t>::max();
        return nodes <= kFew && attributes <= kFew && chars <= kShort;
    }
};

// A node, whose places are those behind what came before it, and an attribute. `Count` holds a number of
// nodes or attributes, `Size` one of characters.
template <class Count, class Size>
struct Packed {
    struct Node {
        Count toParent;
        Count toNext;
        Count attributes;
        std::uint8_t toFirst : 2;
        std::uint8_t kind : 3;
        Size size;
    };
    struct Attribute {
        Size name;
        Size value;
    };
};
using Small = Packed<std::uint8_t, std::uint16_t>;
using Large = Packed<std::uint32_t, std::uint32_t>;

template <class T>
void Put(char*& at, const T& value) {
    std::memcpy(at, &value, sizeof value);
    at += sizeof value;
}

template <class T>
T Get(const char*& at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    at += sizeof value;
    return value;
}

}  // namespace

struct PackedTrees::Format {
    template <class As>
    static std::size_t Size(const ParsedXml& tree) {
        return tree.nodeCount_ * sizeof(typename As::Node) +
               tree.attributeCount_ * sizeof(typename As::Attribute);
    }

    template <class As>
    static void Write(const ParsedXml& tree, char* at) {
        for (std::uint32_t i = 0; i < tree.nodeCount_; ++i) {
            const ParsedXml::Node& node = tree.nodes_[i];
            typename As::Node packed;
            packed.toParent = node.parent == ParsedXml::kNone ? 0 : i - node.parent;
            packed.toNext = node.next == ParsedXml::kNone ? 0 : node.next - i;
            packed.attributes = node.attributeCount;
            packed.toFirst = node.toFirst & 3U;
            packed.kind = static_cast<std::uint8_t>(node.kind) & 7U;
            packed.size = node.text.size;
            Put(at, packed);
        }
        for (std::uint32_t i = 0; i < tree.attributeCount_; ++i) {
            const ParsedXml::Attribute& attribute = tree.attributes_[i];
            typename As::Attribute packed;
            packed.name = attribute.nameSize;
            packed.value = attribute.valueSize;
            Put(at, packed);
        }
        std::copy_n(tree.chars_, tree.charCount_, at);
    }

    template <class As>
    static void Read(const char* at, ParsedXml& tree) {
        const char* attributesAt = at + tree.nodeCount_ * sizeof(typename As::Node);
        std::uint32_t place = 0;
        std::uint32_t attribute = 0;
        for (std::uint32_t i = 0; i < tree.nodeCount_; ++i) {
            const auto packed = Get<typename As::Node>(at);
            ParsedXml::Node& node = tree.nodes_[i];
            node.parent = packed.toParent == 0 ? ParsedXml::kNone : i - packed.toParent;
            node.next = packed.toNext == 0 ? ParsedXml::kNone : i + packed.toNext;
            node.text = {place, packed.size};
            node.attributes = attribute;
            node.attributeCount = packed.attributes & ParsedXml::kMostAttributes;
            node.toFirst = packed.toFirst;
            node.kind = static_cast<XmlKind>(packed.kind);
            place += packed.size;
            for (std::uint32_t k = 0; k < packed.attributes; ++k) {
                const auto sizes = Get<typename As::Attribute>(attributesAt);
                tree.attributes_[attribute++] = {place, sizes.name, sizes.value};
                place += sizes.name + sizes.value;
            }
        }
        std::copy_n(attributesAt, tree.charCount_, tree.chars_);
    }
};

void PackedTrees::Push(const ParsedXml& tree) {
    if (blocks_.empty() || blocks_.back().size() >= kBlock) blocks_.emplace_back();
    const Head head{tree.nodeCount_, tree.attributeCount_, tree.charCount_, tree.tooDeep_};
    const bool isSmall = head.IsSmall();
    const std::size_t size = isSmall ? Format::Size<Small>(tree) : Format::Size<Large>(tree);
    std::string& block = blocks_.back();
    const std::size_t begin = block.size();
    block.resize(begin + sizeof head + size + tree.charCount_);
    char* at = block.data() + begin;
    Put(at, head);
    isSmall ? Format::Write<Small>(tree, at) : Format::Write<Large>(tree, at);
}

ParsedXmlPtr PackedTrees::Pop() {
    const char* at = blocks_.front().data() + read_;
    const auto head = Get<Head>(at);
    auto tree = ParsedXml::Blank(head.nodes, head.attributes, head.chars);
    tree->tooDeep_ = head.tooDeep;
    const bool isSmall = head.IsSmall();
    isSmall ? Format::Read<Small>(at, *tree) : Format::Read<Large>(at, *tree);
    read_ += sizeof head + (isSmall ? Format::Size<Small>(*tree) : Format::Size<Large>(*tree)) + head.chars;
    if (read_ == blocks_.front().size()) {
        blocks_.pop_front();
        read_ = 0;
    }
    return tree;
}

void PackedTrees::Clear() { *this = PackedTrees(); }

}  // namespace quorix
