#include "quorix/xml/XmlSerializer.h"

#include <cstring>

#include "quorix/base/XmlText.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

namespace {

void AppendEscaped(std::string& out, const char* text, Place place) {
    const char* special = place == Place::Content ? "&<>\r" : "&<>\"\t\n\r";
    while (true) {
        std::size_t plain = std::strcspn(text, special);
        out.append(text, plain);
        text += plain;
        if (*text == '\0') return;
        StringView reference = ReferenceOf(static_cast<unsigned char>(*text++), place);
        out.append(reference.begin(), reference.end());
    }
}

void AppendAttribute(std::string& out, const xmlAttr* attribute) {
    out += Chars(attribute->name);
    out += "=\"";
    if (attribute->children) AppendEscaped(out, Chars(attribute->children->content), Place::DoubleQuotes);
    out += '"';
}

void OpenElement(std::string& out, const xmlNode* element) {
    out += '<';
    out += Chars(element->name);
    for (const xmlAttr* attribute = element->properties; attribute; attribute = attribute->next) {
        out += ' ';
        AppendAttribute(out, attribute);
    }
    out += element->children ? ">" : "/>";
}

void CloseElement(std::string& out, const xmlNode* element) {
    out += "</";
    out += Chars(element->name);
    out += '>';
}

void AppendInstruction(std::string& out, const xmlNode* node) {
    out += "<?";
    out += Chars(node->name);
    if (node->content && *node->content) out += ' ';
    out += Chars(node->content);
    out += "?>";
}

// All of a leaf, the opening tag of an element.
void Open(std::string& out, const xmlNode* node) {
    switch (node->type) {
        case XML_ELEMENT_NODE: OpenElement(out, node); break;
        case XML_ATTRIBUTE_NODE: AppendAttribute(out, reinterpret_cast<const xmlAttr*>(node)); break;
        case XML_TEXT_NODE: AppendEscaped(out, Chars(node->content), Place::Content); break;
        case XML_CDATA_SECTION_NODE:
            out.append("<![CDATA[").append(Chars(node->content)).append("]]>");
            break;
        case XML_COMMENT_NODE: out.append("<!--").append(Chars(node->content)).append("-->"); break;
        case XML_PI_NODE: AppendInstruction(out, node); break;
        default: break;
    }
}

}  // namespace

std::string Serialize(const xmlNode* top) {
    std::string out;
    const xmlNode* node = top;
    while (true) {
        Open(out, node);
        if (const xmlNode* first = ChildrenOf(node)) {
            node = first;
            continue;
        }
        while (node != top && !node->next) {
            node = node->parent;
            if (node->type == XML_ELEMENT_NODE) CloseElement(out, node);
        }
        if (node == top) return out;
        node = node->next;
    }
}

}  // namespace quorix
