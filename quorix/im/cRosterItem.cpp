#include "quorix/im/cRosterItem.h"

#include <array>

#include "quorix/base/modUTF_8.h"

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

void cRosterItem::Add() const { Send(u">"); }

void cRosterItem::Update() const {
    Send(Concat({u" subscription='", SubscriptionText(subscription_), u"' >"}));
}

void cRosterItem::Send(StringView restOfTag) const {
    std::shared_ptr<SessionLink> session = RequireSession(session_);
    String xml = Concat({u"<iq id='", session->GetNextID(), u"' type='set'><query xmlns='jabber:iq:roster'>",
                         u"<item jid='", jid_, u"' name='", EncodeUTF8(nickName_, true), u"'", restOfTag});
    for (const String& group : groups_) xml += Concat({u"<group>", EncodeUTF8(group, true), u"</group>"});
    xml += u"</item></query></iq>";
    session->SendXML(xml);
}

}  // namespace quorix
