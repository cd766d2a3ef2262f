// Finding elements by a direct walk, which costs far less than an XPath.
#pragma once

#include <vector>

#include "quorix/base/String.h"
#include "quorix/xml/XmlNode.h"

namespace quorix {

// All elements of this name, `top` and what is below it, in document order.
std::vector<XmlNode> ElementsNamed(const XmlNode& top, StringView name);

// The first element `name` of this `xmlns`, `top` and what is below it; empty when there is none.
XmlNode FindElement(const XmlNode& top, StringView name, StringView xmlns);

// The first `x` element of this `xmlns`.
inline XmlNode FindExtension(const XmlNode& top, StringView xmlns) { return FindElement(top, u"x", xmlns); }

}  // namespace quorix
