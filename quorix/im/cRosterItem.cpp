#include "quorix/im/cRosterItem.h"

#include <array>

#include "quorix/link/SessionLink.h"
#include "quorix/link/StanzaText.h"

namespace quorix {

StringView SubscriptionText(std::int32_t subscription) {
    static constexpr std::array<StringView, 5> kTexts = {u"none", u"to", u"from", u"both", u"remove"};
    bool isKnown = subscription >= KV_Empty && subscription <= KV_Remove;
    return isKnown ? kTexts[static_cast<std::size_t>(subscription)] : StringView();
}

eSubscriptionType SubscriptionOf(StringView text) {
    for (std::int32_t subscription = KV_To; subscription <= KV_Remove; ++subscription) {
        if (text == SubscriptionText(subscription)) return static_cast<eSubscriptionType>(subscription);
    }
    return KV_Empty;
}

const GroupListPtr& cRosterItem::NoGroups() {
    static const auto none = std::make_shared<Collection<String>>();
    return none;
}

Collection<String>& cRosterItem::OwnGroups() {
    if (groups_.use_count() > 1) {
        auto own = std::make_shared<Collection<String>>();
        for (const String& group : *groups_) own->Add(group, group);
        groups_ = std::move(own);
    }
    return *groups_;
}

void cRosterItem::SetSession(const std::shared_ptr<cSession>& session) { session_ = LinkOf(session); }
void cRosterItem::SetSession(const std::shared_ptr<SessionLink>& session) { session_ = session; }

void cRosterItem::Add() const { Send(u">"); }

void cRosterItem::Update() const {
    Send(Concat({u" subscription='", SubscriptionText(subscription_), u"' >"}));
}

void cRosterItem::Send(StringView restOfTag) const {
    std::shared_ptr<SessionLink> session = RequireSession(session_);
    const TextRules& rules = session->Text();
    String xml =
        Compose(rules, {u"<iq id='", Quoted(session->GetNextID()),
                        u"' type='set'><query xmlns='jabber:iq:roster'><item jid='", Quoted(jid_.View()),
                        u"' name='", Quoted(nickName_.View(), Put::Escaped), u"'", Markup(restOfTag)});
    for (const String& group : *groups_) {
        Extend(xml, rules, {u"<group>", Content(group, Put::Escaped), u"</group>"});
    }
    session->SendXML(xml += u"</item></query></iq>");
}

}  // namespace quorix
