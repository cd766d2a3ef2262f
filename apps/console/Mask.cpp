#include "apps/console/Mask.h"

#include <array>

namespace quorix::console {

namespace {

constexpr std::array<StringView, 5> kSecrets{u"password", u"digest", u"hash", u"key", u"token"};

// The length of a secret element's start tag at the front of `xml`, or 0.
std::size_t SecretTagLength(StringView xml) {
    for (StringView name : kSecrets) {
        if (xml.size() <= name.size() + 1 || !EqualsIgnoringCase(xml.substr(1, name.size()), name)) continue;
        char16_t next = xml[name.size() + 1];
        std::size_t end = xml.find(u'>');
        bool element = next == u'>' || IsSpace(next);
        if (element && end != StringView::npos && xml[end - 1] != u'/') return end + 1;
    }
    return 0;
}

}  // namespace

String MaskSecrets(StringView xml) {
    String result;
    while (!xml.empty()) {
        std::size_t tag = xml.find(u'<');
        result += xml.substr(0, tag);
        if (tag == StringView::npos) break;
        xml.remove_prefix(tag);
        std::size_t length = SecretTagLength(xml);
        result += xml.substr(0, length > 0 ? length : 1);
        xml.remove_prefix(length > 0 ? length : 1);
        if (length == 0) continue;
        result += u"***";
        std::size_t end = xml.find(u"</");
        xml.remove_prefix(end == StringView::npos ? xml.size() : end);
    }
    return result;
}

}  // namespace quorix::console
