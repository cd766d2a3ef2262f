#include "quorix/im/Elements.h"

namespace quorix {

// The parser bounds the depth.
XmlNode FindElement(const XmlNode& top, StringView name, StringView xmlns) {
    if (top.Is(name) && top.AttributeIs(u"xmlns", xmlns)) return top;
    for (XmlNode child = top.FirstElement(); child; child = child.NextElement()) {
        if (XmlNode found = FindElement(child, name, xmlns)) return found;
    }
    return {};
}

}  // namespace quorix
