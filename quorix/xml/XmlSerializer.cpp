#include "quorix/xml/XmlSerializer.h"

#include <cstring>

#include "quorix/xml/XmlTree.h"

namespace quorix {

namespace {

const char* Entity(char c) {
    switch (c) {
        case '&': return "&amp;";
        case '<': return "&lt;";
        case '>': return "&gt;";
        default: return "&quot;";
    }
}

void AppendEscaped(std::string& out, const char* text, const char* special) {
    while (true) {
        std::size_t plain = std::strcspn(text, special);
        out.append(text, plain);
        text += plain;
        if (*text == '\0') return;
        out += Entity(*text++);
    }
}

void AppendAttribute(std::string& out, const xmlAttr* attribute) {
    out += Chars(attribute->name);
    out += "=\"";
    if (attribute->children) AppendEscaped(out, Chars(attribute->children->content), "&<>\"");
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
        case XML_TEXT_NODE: AppendEscaped(out, Chars(node->content), "&<>"); break;
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
