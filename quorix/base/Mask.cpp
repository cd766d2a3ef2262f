#include "quorix/base/Mask.h"

#include <algorithm>
#include <vector>

namespace quorix {

namespace {

constexpr StringView kMask = u"***";
// A name that holds one of these names a secret. Rather one too many than one too few.
constexpr StringView kSecretWords[] = {u"pass", u"secret", u"token", u"digest", u"key"};
constexpr StringView kSecretElements[] = {u"hash", u"auth", u"response", u"challenge"};

bool SoundsSecret(StringView name) {
    const String lower = ToLower(name);
    return std::any_of(std::begin(kSecretWords), std::end(kSecretWords),
                       [&](StringView word) { return lower.find(word) != String::npos; });
}

struct Attribute {
    StringView name;
    StringView value;
};

// The tag at the front of `xml`, with its attributes; to the end of the text when it is not closed.
struct Tag {
    explicit Tag(StringView xml);

    StringView LocalName() const { return name.substr(name.find(u':') + 1); }
    bool IsSecret() const;

    StringView text;
    StringView name;
    std::vector<Attribute> attributes;
    bool hasContent = false;
};

std::size_t NameEnd(StringView text, std::size_t start) {
    return std::min(text.find_first_of(u" \t\r\n=/>", start), text.size());
}

Tag::Tag(StringView xml) {
    std::size_t at = NameEnd(xml, 1);
    name = xml.substr(1, at - 1);
    while (at < xml.size() && xml[at] != u'>') {
        const std::size_t start = at;
        at = NameEnd(xml, at);
        if (at == start) {
            ++at;  // a blank or a mark between attributes
            continue;
        }
        const StringView attribute = xml.substr(start, at - start);
        if (at + 1 >= xml.size() || xml[at] != u'=' || (xml[at + 1] != u'"' && xml[at + 1] != u'\''))
            continue;
        const std::size_t end = std::min(xml.find(xml[at + 1], at + 2), xml.size());
        attributes.push_back({attribute, xml.substr(at + 2, end - at - 2)});
        at = std::min(end + 1, xml.size());
    }
    const bool isClosed = at < xml.size();
    text = xml.substr(0, isClosed ? at + 1 : at);
    const bool isMark = name.empty() || name.front() == u'/' || name.front() == u'!' || name.front() == u'?';
    hasContent = isClosed && !isMark && xml[at - 1] != u'/';
}

bool Tag::IsSecret() const {
    const StringView local = LocalName();
    const bool isSecretElement =
        std::any_of(std::begin(kSecretElements), std::end(kSecretElements),
                    [&](StringView secret) { return EqualsIgnoringCase(local, secret); });
    const bool isSecretField =
        local == u"field" && std::any_of(attributes.begin(), attributes.end(), [](auto& each) {
            return (each.name == u"type" && each.value == u"text-private") ||
                   (each.name == u"var" && SoundsSecret(each.value));
        });
    return isSecretElement || isSecretField || SoundsSecret(local);
}

String MaskedTag(const Tag& tag) {
    String masked;
    StringView rest = tag.text;
    for (const Attribute& attribute : tag.attributes) {
        if (!SoundsSecret(attribute.name)) continue;
        const auto start = static_cast<std::size_t>(attribute.value.data() - rest.data());
        masked += Concat({rest.substr(0, start), kMask});
        rest.remove_prefix(start + attribute.value.size());
    }
    return masked + String(rest);
}

// Where the content of `tag`, which begins at the front of `xml`, ends. A field ends at its first end tag,
// since others follow it; a secret at its last: it may hold one itself.
std::size_t ContentEnd(const Tag& tag, StringView xml) {
    const String endTag = Concat({u"</", tag.name});
    return std::min(tag.LocalName() == u"field" ? xml.find(endTag) : xml.rfind(endTag), xml.size());
}

}  // namespace

String MaskSecrets(StringView xml) {
    String result;
    while (!xml.empty()) {
        const std::size_t start = std::min(xml.find(u'<'), xml.size());
        result += xml.substr(0, start);
        xml.remove_prefix(start);
        if (xml.empty()) break;
        const Tag tag(xml);
        result += MaskedTag(tag);
        xml.remove_prefix(tag.text.size());
        if (!tag.hasContent || !tag.IsSecret()) continue;
        result += kMask;
        xml.remove_prefix(ContentEnd(tag, xml));
    }
    return result;
}

}  // namespace quorix
