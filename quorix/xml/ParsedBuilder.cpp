#include "quorix/xml/ParsedBuilder.h"

#include <algorithm>
#include <limits>
#include <new>

#include "quorix/base/WireText.h"
#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

constexpr unsigned kFirstLetter = 0xD724 - 0x80;  // the letter of byte 0, if it had one
constexpr std::size_t kKeptBytes = 1U << 16U;

unsigned Unsigned(char c) { return static_cast<unsigned char>(c); }

// The byte behind a letter of three UTF-8 bytes at `at`; 0 for any other character.
unsigned ByteOfLetter(const char* at) {
    unsigned letter =
        ((Unsigned(at[0]) & 0x0FU) << 12U) | ((Unsigned(at[1]) & 0x3FU) << 6U) | (Unsigned(at[2]) & 0x3FU);
    return letter >= kFirstLetter + 0x80 && letter <= kFirstLetter + 0xFF ? letter - kFirstLetter : 0;
}

// Letters become the characters U+0080 to U+00FF of wire text.
void AppendBytesOfLetters(std::string& out, std::string_view text) {
    constexpr char kLead = '\xED';
    while (true) {
        std::size_t plain = std::min(text.find(kLead), text.size());
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return;
        if (unsigned byte = ByteOfLetter(text.data())) {
            out += static_cast<char>(0xC0U | (byte >> 6U));
            out += static_cast<char>(0x80U | (byte & 0x3FU));
        } else {
            out += text.substr(0, 3);
        }
        text.remove_prefix(3);
    }
}

// What one large tree took is not kept for small ones.
template <class Items>
void KeepSmall(Items& items) {
    items.clear();
    if (items.capacity() * sizeof(*items.data()) > kKeptBytes)
        Items().swap(items);  // assigning would keep it
}

}  // namespace

bool IsBlankUtf8(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

void AppendLettersOfBytes(std::string& out, std::string_view bytes) {
    while (true) {
        std::size_t plain = AsciiPrefix(bytes);
        out += bytes.substr(0, plain);
        if (plain == bytes.size()) return;
        unsigned letter = kFirstLetter + Unsigned(bytes[plain]);
        const char utf8[] = {static_cast<char>(0xE0U | (letter >> 12U)),
                             static_cast<char>(0x80U | ((letter >> 6U) & 0x3FU)),
                             static_cast<char>(0x80U | (letter & 0x3FU))};
        out.append(utf8, sizeof utf8);
        bytes.remove_prefix(plain + 1);
    }
}

std::uint32_t ParsedBuilder::Put(std::string_view text) {
    std::size_t at = chars_.size();
    letters_ ? AppendBytesOfLetters(chars_, text) : void(chars_ += text);
    if (chars_.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    return static_cast<std::uint32_t>(chars_.size() - at);
}

std::uint32_t ParsedBuilder::Append(XmlKind kind, std::string_view text) {
    auto index = static_cast<std::uint32_t>(nodes_.size());
    ParsedXml::Node node;
    node.kind = kind;
    node.text.at = At();
    node.text.size = Put(text);
    if (!open_.empty()) node.parent = open_.back().index;
    nodes_.push_back(node);
    std::uint32_t& last = open_.empty() ? lastAtTop_ : open_.back().last;
    if (last != ParsedXml::kNone) {
        nodes_[last].next = index;
    } else if (!open_.empty()) {
        nodes_[open_.back().index].toFirst = 1;
    }
    last = index;
    return index;
}

void ParsedBuilder::Start(std::string_view name, const char* const* attributes) {
    EndText();
    if (!open_.empty()) open_.back().hasElement = true;
    auto first = static_cast<std::uint32_t>(attributes_.size());
    std::uint32_t index = Append(XmlKind::Element, name);
    for (; *attributes != nullptr; attributes += 2) {
        ParsedXml::Attribute& attribute = attributes_.emplace_back();
        attribute.at = At();
        attribute.nameSize = Put(attributes[0]);
        attribute.valueSize = Put(attributes[1]);
    }
    std::size_t count = attributes_.size() - first;
    if (count > ParsedXml::kMostAttributes) throw std::bad_alloc();
    nodes_[index].attributes = first;
    nodes_[index].attributeCount = static_cast<std::uint32_t>(count);
    open_.push_back({index});
    tooDeep_ = tooDeep_ || open_.size() > kMaxXmlDepth;
}

void ParsedBuilder::End() {
    EndText();
    const Open& element = open_.back();
    if (element.hasElement && element.hasBlank && !element.hasText) DropBlankChildren(element.index);
    open_.pop_back();
}

void ParsedBuilder::Text(std::string_view text) {
    if (inText_) {
        MoreOfLeaf(text);
    } else {
        Append(XmlKind::Text, text);
        inText_ = true;
    }
}

void ParsedBuilder::EndText() {
    if (!inText_) return;
    inText_ = false;
    if (open_.empty()) return;
    const ParsedXml::Span& text = nodes_.back().text;
    bool blank = IsBlankUtf8({chars_.data() + text.at, text.size});
    (blank ? open_.back().hasBlank : open_.back().hasText) = true;
}

void ParsedBuilder::Leaf(XmlKind kind, std::string_view content) {
    EndText();
    if (kind == XmlKind::CData && !open_.empty()) open_.back().hasText = true;
    Append(kind, content);
}

void ParsedBuilder::MoreOfLeaf(std::string_view content) { nodes_.back().text.size += Put(content); }

void ParsedBuilder::DropBlankChildren(std::uint32_t element) {
    std::uint32_t kept = ParsedXml::kNone;
    std::uint32_t child = element + 1;
    nodes_[element].toFirst = 0;
    while (child != ParsedXml::kNone) {
        std::uint32_t next = nodes_[child].next;
        if (nodes_[child].kind != XmlKind::Text) {
            if (kept == ParsedXml::kNone) {
                nodes_[element].toFirst = child - element;
            } else {
                nodes_[kept].next = child;
            }
            kept = child;
        }
        child = next;
    }
    nodes_[kept].next = ParsedXml::kNone;
}

bool ParsedBuilder::IsBlank() const {
    return nodes_.empty() || (nodes_.size() == 1 && inText_ && IsBlankUtf8(chars_));
}

ParsedXmlPtr ParsedBuilder::Take() {
    auto tree = ParsedXml::Blank(nodes_.size(), attributes_.size(), chars_.size());
    std::copy(nodes_.begin(), nodes_.end(), tree->nodes_);
    std::copy(attributes_.begin(), attributes_.end(), tree->attributes_);
    std::copy(chars_.begin(), chars_.end(), tree->chars_);
    tree->tooDeep_ = tooDeep_;
    Clear();
    return tree;
}

void ParsedBuilder::Clear() {
    KeepSmall(nodes_);
    KeepSmall(attributes_);
    KeepSmall(chars_);
    KeepSmall(open_);
    lastAtTop_ = ParsedXml::kNone;
    inText_ = tooDeep_ = false;
}

}  // namespace quorix
