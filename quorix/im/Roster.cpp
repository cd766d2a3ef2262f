#include "quorix/im/Roster.h"

#include <vector>

#include "quorix/im/cRosterItem.h"
#include "quorix/xml/Outermost.h"

namespace quorix {

void FetchRoster(SessionLink& session) {
    session.SendXML(u"<iq id='doroster_1' type='get'><query xmlns='jabber:iq:roster'/></iq>");
}

void ParseReceiveRoster(SessionLink& session, const cXML_Node& message) {
    const String from = message.Root().Attribute(u"from");
    for (const XmlNode& element : Outermost(message.Root(), u"item")) {
        auto item = std::make_shared<cRosterItem>();
        item->JID(message.GetAttrib(u"jid", {element}));
        item->NickName(message.GetAttrib(u"name", {element}));
        session.Raise(&SessionEvents::OnReceiveRosterItem, item, from);
    }
}

}  // namespace quorix
