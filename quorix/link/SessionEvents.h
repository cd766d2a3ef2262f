// Everything a session tells its application, as 45 events in their fixed order.
//
// Derive from SessionEvents, override what is of interest, and hand the object to cSession::Advise. Events
// are raised synchronously on the session's thread. A handler may do anything: send, disconnect, connect
// again, drop the last reference to the session. What it throws is swallowed.
//
// In KV_Modern texts are text (UTF-16). In KV_Classic they are where a parser decodes them, and wire text
// where it hands them on as received; each event says which. Nodes and records are shared: an application may
// keep any it is given.
#pragma once

#include <memory>

#include "quorix/base/String.h"

namespace quorix {

class cAgentItem;
class cBrowseItem;
class cGroupChat;
class cMessage;
class cPresenceItem;
class cRosterItem;
class cSearchFields;
class cSearchResults;
class cVcard;
class cXML_Node;
class SessionLink;

using NodePtr = std::shared_ptr<cXML_Node>;

class SessionEvents {
public:
    virtual ~SessionEvents() = default;

    // 1: login succeeded. 2: the account was created; the session now logs in with it.
    virtual void OnAuthorized() {}
    virtual void OnNewUserCreated() {}

    // 3-5: an agent list (jabber:iq:agents). One OnAgentItem for each new agent.
    virtual void OnAgentBegin() {}
    virtual void OnAgentItem(const std::shared_ptr<cAgentItem>& /*Agent*/, const NodePtr& /*XMLElement*/) {}
    virtual void OnAgentEnd() {}

    // 6: a message of type "error", or the end of the stream with an error.
    virtual void OnError(const NodePtr& /*XMLElement*/, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                         StringView /*ErrorDescription*/) {}
    // 7: an error of the socket: the number (10xxx, 100 for a name that does not resolve, 0 for a time-out).
    virtual void OnSocketError(const NodePtr& /*XMLElement*/, StringView /*Description*/,
                               std::int16_t /*Code*/) {}
    // 8: the connection has ended, on purpose or not. Once for each closing.
    virtual void OnDisConnected() {}

    // 9: a message. 10: an event (eEvent) that it requests or reports; the flag tells that it has no body.
    virtual void OnMessage(const std::shared_ptr<cMessage>& /*Message*/) {}
    virtual void OnMessageEvent(bool /*NoBody*/, std::int32_t /*EventKind*/, StringView /*FromJid*/) {}

    // 11-13: a roster result or push. OnRosterItem comes right after each item was applied to the table; the
    // presence is the contact's primary resource, or null.
    virtual void OnRosterBegin() {}
    virtual void OnRosterItem(const std::shared_ptr<cRosterItem>& /*RosterItem*/,
                              const std::shared_ptr<cPresenceItem>& /*PresenceItem*/,
                              const NodePtr& /*XMLElement*/) {}
    virtual void OnRosterEnd() {}

    // 14: somebody became available, changed, or left. ShowType is the eShowType as decimal text, ItemType
    // the eItemType of the sender.
    virtual void OnPresence(const std::shared_ptr<cPresenceItem>& /*PresenceItem*/, bool /*bAvailable*/,
                            StringView /*ShowType*/, std::int32_t /*ItemType*/,
                            const NodePtr& /*XMLElement*/) {}
    // 15: SubType is KV_Subscribe or KV_UnSubscribe. 16, 17: the answers to our own requests.
    virtual void OnSubscriptionRequest(StringView /*FromJid*/, std::int32_t /*SubType*/,
                                       StringView /*Status*/) {}
    virtual void OnSubscriptionAccept(StringView /*FromJid*/, StringView /*Status*/) {}
    virtual void OnSubscriptionDenied(StringView /*FromJid*/, StringView /*Status*/) {}

    // 18, 19: the traffic itself, as wire text, before anything else is done with it. It holds passwords.
    virtual void OnIncomingXML(StringView /*XML*/) {}
    virtual void OnOutgoingXML(StringView /*XML*/) {}

    // 20: every iq, after its own events; in KV_Modern not one that has ended the session. 21: every iq of
    // type "error". 22: results that nothing else reports.
    virtual void OnIQ(const NodePtr& /*XMLElement*/) {}
    virtual void OnIQError(const NodePtr& /*XMLElement*/, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                           StringView /*ErrorDescription*/) {}
    virtual void OnIQResult(const NodePtr& /*XMLElement*/, StringView /*FromJid*/) {}

    // 23: a business card (vcard-temp).
    virtual void OnVCardResult(const std::shared_ptr<cVcard>& /*Vcard*/, StringView /*FromJid*/,
                               const NodePtr& /*XMLElement*/) {}

    // 24-29: last activity, time and version (jabber:iq:last, :time, :version), asked of us and answered to
    // us.
    virtual void OnGetLastRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    virtual void OnLastSeenResult(const NodePtr& /*XMLElement*/, StringView /*FromJid*/,
                                  std::int32_t /*Seconds*/) {}
    virtual void OnTimeRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    virtual void OnTimeResult(StringView /*FromJid*/, StringView /*UTC*/, StringView /*Local_DateTime*/) {}
    virtual void OnVersionRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    virtual void OnVersionResult(StringView /*FromJid*/, StringView /*AppName*/, StringView /*AppVer*/,
                                 StringView /*OS*/) {}

    // 30: what a room requires (jabber:iq:conference). 31: one entry of a room, FromJid is the room.
    virtual void OnGroupChat(const std::shared_ptr<cGroupChat>& /*GroupChat*/, StringView /*FromJid*/,
                             const NodePtr& /*XMLElement*/) {}
    virtual void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& /*BrowseItem*/, StringView /*FromJid*/,
                                 const NodePtr& /*XMLElement*/) {}

    // 32, 33: a search form to fill, and the hits of a search (jabber:iq:search).
    virtual void OnSearchFields(const std::shared_ptr<cSearchFields>& /*SearchFields*/) {}
    virtual void OnSearchResults(const std::shared_ptr<cSearchResults>& /*Searchresults*/) {}

    // 34, 35: the account was removed; its password was changed (jabber:iq:register).
    virtual void OnAccountRemoved(StringView /*FromJid*/, StringView /*ID*/) {}
    virtual void OnChangedPassword() {}

    // 36: a room of a conference server, or null when it has none. 37: a room was browsed; its entries
    // follow.
    virtual void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& /*Room*/,
                                          const NodePtr& /*XMLElement*/) {}
    virtual void OnChatRoomBrowseResult(StringView /*FromJid*/, const NodePtr& /*XMLElement*/) {}

    // 38, 39: a file offered to us by its URL (jabber:iq:oob), and what became of our own offer.
    virtual void OnOOBRequest(StringView /*FromJid*/, StringView /*desc*/, StringView /*URL*/) {}
    virtual void OnOOBResult(StringView /*FromJid*/, bool /*bSuccess*/) {}

    // 40: an invitation to a room (jabber:x:conference).
    virtual void OnGCInvite10(StringView /*RoomJid*/, StringView /*FromJid*/, StringView /*Body*/,
                              StringView /*Subject*/, const NodePtr& /*XMLElement*/) {}

    // 41-43: the users that an administrator's query lists (jabber:iq:admin).
    virtual void OnWhoisOnlineStart() {}
    virtual void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& /*PresenceItem*/) {}
    virtual void OnWhoisOnlineEnd() {}

    // 44: what a gateway asks for (jabber:iq:gateway).
    virtual void OnGatewayInfo(const NodePtr& /*XMLElement*/, StringView /*Desc*/) {}
    // 45: a contact sent to us inside a message (jabber:x:roster). It has no session until SetSession.
    virtual void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& /*RosterItem*/,
                                     StringView /*FromJid*/) {}

    // Whether OnIncomingXML and OnOutgoingXML are wanted. Making the texts costs time: who wants none says
    // so.
    virtual bool WantsWireText() const { return true; }
};

}  // namespace quorix
