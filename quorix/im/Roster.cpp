#include "quorix/im/Roster.h"

#include <vector>

#include "quorix/im/cRosterItem.h"
#include "quorix/xml/AskRoot.h"
#include "quorix/xml/Finding.h"

namespace quorix {

void FetchRoster(SessionLink& session) {
    session.SendXML(u"<iq id='doroster_1' type='get'><query xmlns='jabber:iq:roster'/></iq>");
}

namespace {

template <class Node>
void RaiseContacts(SessionLink& session, const Node& message) {
    const String from = message.Attribute(u"from");
    for (const Node& element : Outermost(message, u"item")) {
        auto item = std::make_shared<cRosterItem>();
        item->JID(FindBearer(element, u"jid").Attribute(u"jid"));
        item->NickName(FindBearer(element, u"name").Attribute(u"name"));
        session.Raise(&SessionEvents::OnReceiveRosterItem, item, from);
    }
}

}  // namespace

void ParseReceiveRoster(SessionLink& session, const cXML_Node& message) {
    AskRoot(message, [&](const auto& root) { RaiseContacts(session, root); });
}

}  // namespace quorix
