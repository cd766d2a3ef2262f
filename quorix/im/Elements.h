// Finding elements by a direct walk, which costs far less than an XPath.
#pragma once

#include "quorix/base/String.h"
#include "quorix/xml/XmlNode.h"

namespace quorix {

// The first element `name` of this `xmlns`, `top` and what is below it; empty when there is none.
XmlNode FindElement(const XmlNode& top, StringView name, StringView xmlns);

// The first `x` element of this `xmlns`.
inline XmlNode FindExtension(const XmlNode& top, StringView xmlns) { return FindElement(top, u"x", xmlns); }

}  // namespace quorix
