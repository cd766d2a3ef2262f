// Makes a ParsedXml, node by node in document order.
//
// What is being built is kept in buffers that serve one tree after another; a finished tree is a copy of the
// right size.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quorix/xml/ParsedXml.h"

namespace quorix {

bool IsBlankUtf8(std::string_view text);  // nothing but the white space of XML

class ParsedBuilder {
public:
    // Names and values, as UTF-8. `attributes`: names and values in turn, ended by null.
    void Start(std::string_view name, const char* const* attributes);
    // Drops white space between elements, where no other text stands among them.
    void End();
    void Text(std::string_view text);  // follows other text in the same node
    void Leaf(XmlKind kind, std::string_view content);
    void MoreOfLeaf(std::string_view content);  // right behind it

    // Elements that are open.
    std::size_t Depth() const { return open_.size(); }
    bool IsBlank() const;  // nothing but white space has come

    // All that was built, in which every element has ended; the builder is empty afterwards.
    ParsedXmlPtr Take();
    void Clear();

    // How the parser's bytes are put into the tree: as they are, or taken for wire text's letters (see
    // LettersOfBytes).
    void ReadLetters(bool letters) { letters_ = letters; }

private:
    struct Open {
        std::uint32_t index;
        std::uint32_t last = ParsedXml::kNone;  // child
        bool hasElement = false;
        bool hasBlank = false;
        bool hasText = false;
    };

    std::uint32_t Append(XmlKind kind, std::string_view text);
    // Appends `text` to the characters; its size there.
    std::uint32_t Put(std::string_view text);
    std::uint32_t At() const { return static_cast<std::uint32_t>(chars_.size()); }
    void EndText();
    void DropBlankChildren(std::uint32_t element);

    std::vector<ParsedXml::Node> nodes_;
    std::vector<ParsedXml::Attribute> attributes_;
    std::string chars_;
    std::vector<Open> open_;
    std::uint32_t lastAtTop_ = ParsedXml::kNone;
    bool inText_ = false;  // the last node is text that may go on
    bool letters_ = false;
    bool tooDeep_ = false;
};

// Bytes of a stream as UTF-8 in which each byte above 127 is a letter of its own, so that a parser takes
// names and values for what they are, whatever they hold. The letters are the 128 last Hangul syllables.
void AppendLettersOfBytes(std::string& out, std::string_view bytes);

}  // namespace quorix
