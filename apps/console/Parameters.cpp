#include "apps/console/Parameters.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix::console {

namespace {

constexpr std::size_t kMaxJidPart = 1023;  // bytes of each of the three, as servers count
constexpr int kMaxWait = 86400;

bool Anything(StringView /*value*/) { return true; }

bool HasNone(StringView text, StringView characters) {
    return std::none_of(text.begin(), text.end(), [&](char16_t c) {
        return c < u' ' || c == 0x7F || characters.find(c) != StringView::npos;
    });
}

bool IsName(StringView name) {
    return !name.empty() && name.size() <= kMaxJidPart && HasNone(name, u" \"&'/:<>@");
}

bool IsHost(StringView host) {
    return !host.empty() && host.size() <= kMaxJidPart && HasNone(host, u" \"&'/<>@\\#?");
}

bool IsRoom(StringView text) { return IsJid(text) && RemoveResource(text).find(u'@') != String::npos; }

bool AreJids(const Words& jids) {
    return !jids.empty() &&
           std::all_of(jids.begin(), jids.end(), [](const String& jid) { return IsJid(jid); });
}

bool IsNumber(StringView text, int least, int most) {
    const std::string digits = Utf8FromText(text);
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && value >= least && value <= most;
}

bool IsUrl(StringView text) { return text.find(u"://") != StringView::npos || StartsWith(text, u"xmpp:"); }

bool IsNamespace(StringView text) {
    const std::size_t colon = text.find(u':');
    return colon != StringView::npos && IsName(text.substr(0, colon)) && HasNone(text, u"<>&\"'");
}

// One that is not would end the stream.
bool IsStanza(StringView text) {
    cXML_Node node;
    node.xml(text);
    return static_cast<bool>(node.Root());
}

constexpr ParameterKind kKinds[] = {
    {"JID", false, IsJid, "an address: name@server or server, with or without /resource"},
    {"JIDS", false, [](StringView text) { return AreJids(Parts(text, u',')); },
     "addresses with commas between them"},
    {"CONTACTS", true, [](StringView text) { return AreJids(Parts(text, u' ')); },
     "addresses of contacts with blanks between them"},
    {"ROOM", false, IsRoom, "the address of a room: name@server"},
    {"NICK", true, Anything, "a name to be called by in a room"},
    {"NAME", true, Anything, "a name for a contact"},
    {"GROUPS", true, Anything, "groups with semicolons between them"},
    {"TEXT", true, Anything, "the rest of the line"},
    {"MARKUP", true, Anything, "formatted text as XHTML"},
    {"XML", true, IsStanza, "a whole stanza"},
    {"VALUES", true, [](StringView text) { return !ParseValues(text).empty(); }, "NAME=VALUE; NAME=VALUE"},
    {"USER", false, IsName, "the name of an account, without @server"},
    {"PASSWORD", true, Anything, "the rest of the line; on a terminal asked for when missing"},
    {"PRIORITY", false, [](StringView text) { return IsNumber(text, -128, 127); },
     "a number from -128 to 127"},
    {"SECONDS", false, [](StringView text) { return IsNumber(text, 0, kMaxWait); },
     "a number from 0 to 86400"},
    {"NUMBER", false, [](StringView text) { return IsNumber(text, 0, kMaxWait); }, "a whole number from 0"},
    {"URL", false, IsUrl, "an address such as https://example.org/file"},
    {"NAMESPACE", false, IsNamespace, "the name of an XML namespace with a colon, such as notes:mine"},
    {"WORD", false, Anything, "one word"},
};

const ParameterKind& KindOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                     [&](const auto& kind) { return kind.name == name; });
    if (found == std::end(kKinds)) throw std::logic_error("No kind of parameter " + std::string(name));
    return *found;
}

String TakeWord(StringView& rest) {
    const std::size_t end = std::min(rest.find(u' '), rest.size());
    String word(rest.substr(0, end));
    rest = Trim(rest.substr(end));
    return word;
}

}  // namespace

std::span<const ParameterKind> ParameterKinds() { return kKinds; }

std::vector<Parameter> ParametersOf(std::string_view usage) {
    std::vector<Parameter> parameters;
    while (!usage.empty()) {
        const std::size_t end = std::min(usage.find(' '), usage.size());
        std::string_view word = usage.substr(0, end);
        const bool optional = word.front() == '[';
        if (optional) word = word.substr(1, word.size() - 2);
        parameters.push_back({&KindOf(word), optional});
        usage.remove_prefix(std::min(end + 1, usage.size()));
    }
    return parameters;
}

ParsedLine ParseLine(std::string_view usage, StringView line) {
    ParsedLine parsed;
    StringView rest = Trim(line);
    for (const auto& [kind, optional] : ParametersOf(usage)) {
        const String value = kind->takesRest ? String(std::exchange(rest, StringView())) : TakeWord(rest);
        if (value.empty() && !optional && parsed.complaint.empty()) {
            parsed.complaint = fmt::format("{} is missing.", kind->name);
        } else if (!value.empty() && !kind->accepts(value)) {
            parsed.complaint = fmt::format("{} is not {}.", Utf8FromText(value), kind->help);
        }
        parsed.onlyPasswordMissing = kind->name == "PASSWORD" && value.empty();
        parsed.values.push_back(value);
    }
    if (!rest.empty()) parsed.complaint = fmt::format("{} is too much.", Utf8FromText(rest));
    if (parsed.complaint != "PASSWORD is missing." && !parsed.complaint.empty())
        parsed.onlyPasswordMissing = false;
    return parsed;
}

Values ParseValues(StringView text) {
    Values values;
    for (const String& pair : Parts(text, u';')) {
        const std::size_t equals = pair.find(u'=');
        const StringView name = Trim(StringView(pair).substr(0, equals));
        if (equals == String::npos || name.empty()) return {};
        values.emplace_back(name, Trim(StringView(pair).substr(equals + 1)));
    }
    return values;
}

Words Parts(StringView text, char16_t separator) {
    Words parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        const StringView part = Trim(text.substr(0, end));
        if (!part.empty()) parts.emplace_back(part);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

bool IsJid(StringView text) {
    const std::size_t slash = text.find(u'/');
    const StringView bare = text.substr(0, slash);
    const std::size_t at = bare.find(u'@');
    const bool named = at == StringView::npos || IsName(bare.substr(0, at));
    const StringView resource = slash == StringView::npos ? StringView(u"-") : text.substr(slash + 1);
    return named && IsHost(at == StringView::npos ? bare : bare.substr(at + 1)) && !resource.empty() &&
           resource.size() <= kMaxJidPart && HasNone(resource, u"");
}

}  // namespace quorix::console
