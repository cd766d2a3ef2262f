// The markup inside a message (XEP-0071).
#pragma once

#include "quorix/base/String.h"

namespace quorix {

inline constexpr StringView kXhtml = u"http://www.w3.org/1999/xhtml";

// What stands between the tags of the body in `markup`, an html element; "" when there is none.
String BodyMarkup(StringView markup);

// Whether one of the openings stands in `markup` that can run or fetch something; in any ASCII case.
bool HoldsCriticalMarkup(StringView markup);

}  // namespace quorix
