#include "quorix/xml/XmlSerializer.h"

#include <array>
#include <string_view>

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

void AppendEscaped(String& out, std::string_view text, Place place) {
    const Specials& specials = place == Place::Content ? kInContent : kInQuotes;
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto byte = static_cast<unsigned char>(text[at]);
        if (!specials[byte]) continue;
        AppendText(out, text.substr(copied, at - copied));
        out.append(ReferenceOf(byte, place));
        copied = at + 1;
    }
    AppendText(out, text.substr(copied));
}

void AppendAttribute(String& out, std::string_view name, std::string_view value) {
    AppendText(out, name);
    out.append(u"=\"");
    AppendEscaped(out, value, Place::DoubleQuotes);
    out += u'"';
}

// -- Writing --

void AppendBetween(String& out, StringView opening, std::string_view content, StringView closing) {
    out.append(opening);
    AppendText(out, content);
    out.append(closing);
}

template <class Node>
void OpenElement(String& out, const Node& element) {
    AppendBetween(out, u"<", NameOf(element), {});
    ForEachAttribute(element, [&](std::string_view name, std::string_view value) {
        out += u' ';
        AppendAttribute(out, name, value);
    });
    out.append(FirstChildOf(element) ? u">" : u"/>");
}

template <class Node>
void AppendInstruction(String& out, const Node& node) {
    std::string_view data = ContentOf(node);
    AppendBetween(out, u"<?", NameOf(node), data.empty() ? u"" : u" ");
    AppendBetween(out, {}, data, u"?>");
}

// All of a leaf, the opening tag of an element.
template <class Node>
void Open(String& out, const Node& node) {
    switch (KindOf(node)) {
        case XmlKind::Element: return OpenElement(out, node);
        case XmlKind::Text: return AppendEscaped(out, ContentOf(node), Place::Content);
        case XmlKind::CData: return AppendBetween(out, u"<![CDATA[", ContentOf(node), u"]]>");
        case XmlKind::Comment: return AppendBetween(out, u"<!--", ContentOf(node), u"-->");
        case XmlKind::Instruction: return AppendInstruction(out, node);
    }
}

template <class Node>
void AppendNode(String& out, const Node& top) {
    Node node = top;
    while (true) {
        Open(out, node);
        if (Node first = FirstChildOf(node)) {
            node = first;
            continue;
        }
        while (!(node == top) && !NextOf(node)) {
            node = ParentOf(node);
            AppendBetween(out, u"</", NameOf(node), u">");
        }
        if (node == top) return;
        node = NextOf(node);
    }
}

}  // namespace

String Serialize(const xmlNode* top) {
    String out;
    if (top->type == XML_ATTRIBUTE_NODE) {
        const auto* attribute = reinterpret_cast<const xmlAttr*>(top);
        AppendAttribute(out, Chars(attribute->name), ValueOf(attribute));
    } else if (top->type == XML_DOCUMENT_NODE) {
        for (const xmlNode* node = top->children; node; node = node->next) AppendNode(out, node);
    } else {
        AppendNode(out, top);
    }
    return out;
}

String Serialize(const ParsedNode& top) {
    const std::size_t size = top.RawSize();
    String out;
    out.reserve(size + size / 8 + kMostMarkup);
    AppendNode(out, top);
    return out;
}

}  // namespace quorix
