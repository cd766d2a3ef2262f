#include "quorix/im/Elements.h"

namespace quorix {

namespace {

// Visits elements in document order until `visit` answers true. The parser bounds the depth.
template <class Visit>
bool Walk(const XmlNode& element, Visit& visit) {
    if (!element) return false;
    if (visit(element)) return true;
    for (XmlNode child = element.FirstElement(); child; child = child.NextElement()) {
        if (Walk(child, visit)) return true;
    }
    return false;
}

}  // namespace

std::vector<XmlNode> ElementsNamed(const XmlNode& top, StringView name) {
    std::vector<XmlNode> found;
    auto collect = [&](const XmlNode& element) {
        if (element.Is(name)) found.push_back(element);
        return false;
    };
    Walk(top, collect);
    return found;
}

XmlNode FindElement(const XmlNode& top, StringView name, StringView xmlns) {
    XmlNode found;
    auto match = [&](const XmlNode& element) {
        bool matches = element.Is(name) && element.AttributeIs(u"xmlns", xmlns);
        if (matches) found = element;
        return matches;
    };
    Walk(top, match);
    return found;
}

}  // namespace quorix
