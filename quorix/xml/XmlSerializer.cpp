#include "quorix/xml/XmlSerializer.h"

#include <array>
#include <string_view>
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/base/XmlText.h"
#include "quorix/xml/NodeView.h"

namespace quorix {

namespace {

constexpr std::size_t kMostMarkup = 200;  // what most stanzas take besides names and values

using Specials = std::array<bool, 256>;

constexpr Specials SpecialsOf(std::string_view characters) {
    Specials specials{};
    for (char c : characters) specials[static_cast<unsigned char>(c)] = true;
    return specials;
}

// White space that a parser would take for something else is written as a reference.
constexpr Specials kInContent = SpecialsOf("&<>\r");
constexpr Specials kInQuotes = SpecialsOf("&<>\"\t\n\r");

// Joins the pieces of a text, and makes UTF-16 of many at once; but a text never stands there twice.
class Joiner {
public:
    explicit Joiner(std::size_t size) {
        if (size > kMost) {
            text_.reserve(size);
        } else {
            utf8_.reserve(size);
        }
    }

    Joiner& Append(std::string_view utf8) {
        if (utf8_.size() + utf8.size() > kMost) Convert();
        if (utf8.size() > kMost) {
            AppendText(text_, utf8);
        } else {
            utf8_ += utf8;
        }
        return *this;
    }
    Joiner& Append(StringView ascii) {
        utf8_.append(ascii.begin(), ascii.end());
        return *this;
    }

    String Take() {
        if (text_.empty()) return TextFromUtf8(utf8_);
        Convert();
        return std::move(text_);
    }

private:
    static constexpr std::size_t kMost = 4096;

    void Convert() {
        AppendText(text_, utf8_);
        utf8_.clear();
    }

    std::string utf8_;
    String text_;
};

void AppendEscaped(Joiner& out, std::string_view text, Place place) {
    const Specials& specials = place == Place::Content ? kInContent : kInQuotes;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto byte = static_cast<unsigned char>(text[at]);
        if (!specials[byte]) continue;
        out.Append(text.substr(copied, at - copied)).Append(ReferenceOf(byte, place));
        copied = at + 1;
    }
    out.Append(text.substr(copied));
}

void AppendAttribute(Joiner& out, std::string_view name, std::string_view value) {
    out.Append(name).Append("=\"");
    AppendEscaped(out, value, Place::DoubleQuotes);
    out.Append("\"");
}

// -- Writing --

template <class Node>
void OpenElement(Joiner& out, const Node& element) {
    out.Append("<").Append(NameOf(element));
    ForEachAttribute(element, [&](std::string_view name, std::string_view value) {
        out.Append(" ");
        AppendAttribute(out, name, value);
    });
    out.Append(FirstChildOf(element) ? ">" : "/>");
}

template <class Node>
void AppendInstruction(Joiner& out, const Node& node) {
    std::string_view data = ContentOf(node);
    out.Append("<?").Append(NameOf(node)).Append(data.empty() ? "" : " ").Append(data).Append("?>");
}

// All of a leaf, the opening tag of an element.
template <class Node>
void Open(Joiner& out, const Node& node) {
    switch (KindOf(node)) {
        case XmlKind::Element: return OpenElement(out, node);
        case XmlKind::Text: return AppendEscaped(out, ContentOf(node), Place::Content);
        case XmlKind::CData: out.Append("<![CDATA[").Append(ContentOf(node)).Append("]]>"); return;
        case XmlKind::Comment: out.Append("<!--").Append(ContentOf(node)).Append("-->"); return;
        case XmlKind::Instruction: return AppendInstruction(out, node);
    }
}

template <class Node>
void AppendNode(Joiner& out, const Node& top) {
    Node node = top;
    while (true) {
        Open(out, node);
        if (Node first = FirstChildOf(node)) {
            node = first;
            continue;
        }
        while (!(node == top) && !NextOf(node)) {
            node = ParentOf(node);
            out.Append("</").Append(NameOf(node)).Append(">");
        }
        if (node == top) return;
        node = NextOf(node);
    }
}

}  // namespace

String Serialize(const xmlNode* top) {
    Joiner out(0);
    if (top->type == XML_ATTRIBUTE_NODE) {
        const auto* attribute = reinterpret_cast<const xmlAttr*>(top);
        AppendAttribute(out, Chars(attribute->name), ValueOf(attribute));
    } else if (top->type == XML_DOCUMENT_NODE) {
        for (const xmlNode* node = top->children; node; node = node->next) AppendNode(out, node);
    } else {
        AppendNode(out, top);
    }
    return out.Take();
}

String Serialize(const ParsedNode& top) {
    const std::size_t size = top.RawSize();
    Joiner out(size + size / 8 + kMostMarkup);
    AppendNode(out, top);
    return out.Take();
}

}  // namespace quorix
