// The markup inside a message (XEP-0071).
#pragma once

#include "quorix/base/String.h"
#include "quorix/xml/XmlNode.h"

namespace quorix {

inline constexpr StringView kXhtml = u"http://www.w3.org/1999/xhtml";

// What stands between the tags of the body of `html`, as wire text; "" when there is none.
String BodyMarkup(const XmlNode& html);

// Whether one of the openings stands in `markup` that can run or fetch something; in any ASCII case.
bool HoldsCriticalMarkup(StringView markup);

}  // namespace quorix
