#include "quorix/xml/AttributeCount.h"

#include <algorithm>

#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

constexpr std::size_t kShortestAttribute = sizeof(" a=''") - 1;

void SkipPast(std::string_view& xml, std::string_view mark) {
    std::size_t at = xml.find(mark);
    xml.remove_prefix(at == std::string_view::npos ? xml.size() : at + mark.size());
}

// Skips a tag and counts its attributes, by their equals signs outside quotes.
int TakeTag(std::string_view& xml) {
    int count = 0;
    while (true) {
        xml.remove_prefix(std::min(xml.find_first_of("=\"'>"), xml.size()));
        if (xml.empty() || xml.front() == '>') return count;
        char mark = xml.front();
        xml.remove_prefix(1);
        if (mark == '=') {
            ++count;
        } else {
            SkipPast(xml, std::string_view(&mark, 1));
        }
    }
}

}  // namespace

bool HasTooManyAttributes(std::string_view xml) {
    if (xml.size() <= kShortestAttribute * kMaxXmlAttributes) return false;
    while (true) {
        xml.remove_prefix(std::min(xml.find('<'), xml.size()));
        if (xml.empty()) return false;
        if (xml.starts_with("<!--")) {
            SkipPast(xml, "-->");
        } else if (xml.starts_with("<![CDATA[")) {
            SkipPast(xml, "]]>");
        } else if (xml.starts_with("<?")) {
            SkipPast(xml, "?>");
        } else if (TakeTag(xml) > kMaxXmlAttributes) {
            return true;
        }
    }
}

}  // namespace quorix
