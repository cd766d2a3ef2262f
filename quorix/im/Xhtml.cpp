#include "quorix/im/Xhtml.h"

#include <algorithm>
#include <array>

namespace quorix {

String BodyMarkup(StringView markup) {
    const String upper = ToUpper(markup);  // as long as `markup`, position by position
    std::size_t opening = upper.find(u"<BODY");
    std::size_t begin = opening == String::npos ? opening : upper.find(u'>', opening);
    std::size_t end = begin == String::npos ? begin : upper.find(u"</BODY>", begin);
    return end == String::npos ? String() : String(markup.substr(begin + 1, end - begin - 1));
}

bool HoldsCriticalMarkup(StringView markup) {
    static constexpr std::array<StringView, 7> kCritical = {u"<SCRIPT", u"<OBJECT", u"<FORM",  u"<PHP",
                                                            u"<IMG",    u"<IFRAME", u"<APPLET"};
    const String upper = ToUpper(markup);
    return std::any_of(kCritical.begin(), kCritical.end(),
                       [&](StringView opening) { return upper.find(opening) != String::npos; });
}

}  // namespace quorix
