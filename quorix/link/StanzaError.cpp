#include "quorix/link/StanzaError.h"

#include <algorithm>
#include <iterator>

#include "quorix/base/Number.h"

namespace quorix {

namespace {

constexpr StringView kStanzaErrors = u"urn:ietf:params:xml:ns:xmpp-stanzas";

struct Condition {
    StringView name;
    std::int16_t code;
};

constexpr Condition kConditions[] = {
    {u"bad-request", 400},
    {u"conflict", 409},
    {u"feature-not-implemented", 501},
    {u"forbidden", 403},
    {u"gone", 302},
    {u"internal-server-error", 500},
    {u"item-not-found", 404},
    {u"jid-malformed", 400},
    {u"not-acceptable", 406},
    {u"not-allowed", 405},
    {u"not-authorized", 401},
    {u"payment-required", 402},
    {u"recipient-unavailable", 404},
    {u"redirect", 302},
    {u"registration-required", 407},
    {u"remote-server-not-found", 404},
    {u"remote-server-timeout", 504},
    {u"resource-constraint", 500},
    {u"service-unavailable", 503},
    {u"subscription-required", 407},
    {u"undefined-condition", 500},
    {u"unexpected-request", 400},
};

String ConditionOf(const ParsedNode& error) {
    for (ParsedNode child = error.FirstElement(); child; child = child.NextElement()) {
        if (child.AttributeIs(u"xmlns", kStanzaErrors) && !child.Is(u"text")) return child.Name();
    }
    return {};
}

std::int16_t CodeOf(StringView condition) {
    const auto* found = std::find_if(std::begin(kConditions), std::end(kConditions),
                                     [&](const Condition& known) { return known.name == condition; });
    return found == std::end(kConditions) ? std::int16_t{0} : found->code;
}

}  // namespace

StanzaError ErrorAsSent(const Stanza& stanza) {
    ParsedNode error = stanza.root.Child(u"error");
    return {WireInt16(error.Attribute(u"code")), error.Text()};
}

StanzaError ErrorByCondition(const Stanza& stanza) {
    StanzaError sent = ErrorAsSent(stanza);
    String condition = ConditionOf(stanza.root.Child(u"error"));
    if (sent.code == 0) sent.code = CodeOf(condition);
    if (IsBlank(sent.text)) sent.text = condition;
    return sent;
}

}  // namespace quorix
