/// \file
/// Everything a session tells its application, as 45 events in their fixed order.
///
/// Derive from SessionEvents, override what is of interest, and hand the object to cSession::Advise. Events
/// are raised synchronously on the session's thread. A handler may do anything: send, disconnect, connect
/// again, drop the last reference to the session. What it throws is swallowed.
///
/// The number of each, in brackets, is the one by which automation clients know it. In KV_Modern texts are
/// text (UTF-16). In KV_Classic they are wire text, as received, where nothing else is said. `XMLElement` is
/// the stanza, or the part of it that the event is about; a handler may change it. Nodes and records are
/// shared: an application may keep any it is given.
#pragma once

#include <memory>

#include "quorix/base/Export.h"
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

/// What a session tells; each event does nothing unless it is overridden.
class QUORIX_API SessionEvents {
public:
    virtual ~SessionEvents() = default;

    // -- The connection --

    /// The login has succeeded; from now on the session may send. (1)
    virtual void OnAuthorized() {}
    /// The account was created; the session now ends the connection and logs in with it on another. (2)
    virtual void OnNewUserCreated() {}

    // -- Agents (jabber:iq:agents) --

    /// The answer to FetchAgents begins. (3)
    virtual void OnAgentBegin() {}
    /// An agent that the session did not know by its name yet; it is in Agents. (4)
    virtual void OnAgentItem(const std::shared_ptr<cAgentItem>& /*Agent*/, const NodePtr& /*XMLElement*/) {}
    /// The answer to FetchAgents has ended. (5)
    virtual void OnAgentEnd() {}

    // -- What goes wrong --

    /// A message of type "error", from `FromJid`; or, with ServerAddress as `FromJid`, what ends the session:
    /// the end of the stream with an error and, in KV_Modern, a refused login and whatever else ends it.
    /// OnDisConnected follows then, but for the giving up of reconnecting. `eErrorCode` and
    /// `ErrorDescription` (text) are the server's, 0 and "" where it gives none; in KV_Modern those that its
    /// condition stands for. (6)
    virtual void OnError(const NodePtr& /*XMLElement*/, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                         StringView /*ErrorDescription*/) {}
    /// An error of the socket. `Code` is its number (10xxx; 100 for a name that does not resolve, 0 for a
    /// time-out, and in KV_Modern 101 for a certificate that is not trusted, 102 for a proxy that refuses),
    /// `Description` its text. `XMLElement` is empty. (7)
    virtual void OnSocketError(const NodePtr& /*XMLElement*/, StringView /*Description*/,
                               std::int16_t /*Code*/) {}
    /// The connection has ended, on purpose or not. Once for each closing. (8)
    virtual void OnDisConnected() {}

    // -- Messages --

    /// A message that is none of the other kinds: no error, no contacts, no invitation. (9)
    virtual void OnMessage(const std::shared_ptr<cMessage>& /*Message*/) {}
    /// After OnMessage, for each eEvent in it (jabber:x:event): `NoBody` false for a message that asks to be
    /// told of `EventKind`, true for the report that it has come to pass. (10)
    virtual void OnMessageEvent(bool /*NoBody*/, std::int32_t /*EventKind*/, StringView /*FromJid*/) {}

    // -- Contacts (jabber:iq:roster) --

    /// The answer to FetchRoster, or a change that the server reports, begins. (11)
    virtual void OnRosterBegin() {}
    /// Right after each contact was applied to the table. `PresenceItem` is the contact's primary resource,
    /// or null; a contact whose Subscription is KV_Remove has gone. (12)
    virtual void OnRosterItem(const std::shared_ptr<cRosterItem>& /*RosterItem*/,
                              const std::shared_ptr<cPresenceItem>& /*PresenceItem*/,
                              const NodePtr& /*XMLElement*/) {}
    /// The answer, or the change, has ended. (13)
    virtual void OnRosterEnd() {}

    // -- Presence --

    /// Somebody became available, changed, or (`bAvailable` false) left. `ShowType` is the eShowType as
    /// decimal text, `ItemType` the eItemType of the sender. (14)
    virtual void OnPresence(const std::shared_ptr<cPresenceItem>& /*PresenceItem*/, bool /*bAvailable*/,
                            StringView /*ShowType*/, std::int32_t /*ItemType*/,
                            const NodePtr& /*XMLElement*/) {}
    /// Somebody asks to see our presence, or no longer wants to: `SubType` is KV_Subscribe or KV_UnSubscribe.
    /// The bare address and `Status` are text, here and in the next two. (15)
    virtual void OnSubscriptionRequest(StringView /*FromJid*/, std::int32_t /*SubType*/,
                                       StringView /*Status*/) {}
    /// Somebody lets us see his presence, after our KV_Subscribe. (16)
    virtual void OnSubscriptionAccept(StringView /*FromJid*/, StringView /*Status*/) {}
    /// Somebody does not, or no longer, let us see his presence. (17)
    virtual void OnSubscriptionDenied(StringView /*FromJid*/, StringView /*Status*/) {}

    // -- The traffic itself --

    /// What the server sent, a stanza at a time, before anything else is done with it. It may hold passwords.
    /// (18)
    virtual void OnIncomingXML(StringView /*XML*/) {}
    /// What was sent. It holds passwords. (19)
    virtual void OnOutgoingXML(StringView /*XML*/) {}
    /// Every iq, after its own events; in KV_Modern not one that has ended the session. (20)
    virtual void OnIQ(const NodePtr& /*XMLElement*/) {}
    /// Every iq of type "error", those of offers aside, with the error as OnError has it. (21)
    virtual void OnIQError(const NodePtr& /*XMLElement*/, StringView /*FromJid*/, std::int16_t /*eErrorCode*/,
                           StringView /*ErrorDescription*/) {}
    /// A result that nothing else reports. (22)
    virtual void OnIQResult(const NodePtr& /*XMLElement*/, StringView /*FromJid*/) {}

    // -- Business cards (vcard-temp) --

    /// The answer to SendVCardRequest. The card's values are text. (23)
    virtual void OnVCardResult(const std::shared_ptr<cVcard>& /*Vcard*/, StringView /*FromJid*/,
                               const NodePtr& /*XMLElement*/) {}

    // -- Questions and answers (jabber:iq:last, jabber:iq:time, jabber:iq:version) --

    /// Somebody asks how long the user has been idle: SendGetLastResponse. (24)
    virtual void OnGetLastRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    /// The answer to SendLastSeenRequest; 0 where `Seconds` do not fit 32 bits. (25)
    virtual void OnLastSeenResult(const NodePtr& /*XMLElement*/, StringView /*FromJid*/,
                                  std::int32_t /*Seconds*/) {}
    /// Somebody asks for the time here: SendTimeResponse. (26)
    virtual void OnTimeRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    /// The answer to SendTimeRequest: the time in UTC, and as the other side displays it. (27)
    virtual void OnTimeResult(StringView /*FromJid*/, StringView /*UTC*/, StringView /*Local_DateTime*/) {}
    /// Somebody asks for this program: SendVersionResponse. (28)
    virtual void OnVersionRequest(StringView /*FromJid*/, StringView /*ID*/) {}
    /// The answer to SendVersionRequest: the program, its version, the system it runs on. (29)
    virtual void OnVersionResult(StringView /*FromJid*/, StringView /*AppName*/, StringView /*AppVer*/,
                                 StringView /*OS*/) {}

    // -- Rooms (jabber:iq:conference, jabber:iq:browse) --

    /// What a room requires of whoever enters it. (30)
    virtual void OnGroupChat(const std::shared_ptr<cGroupChat>& /*GroupChat*/, StringView /*FromJid*/,
                             const NodePtr& /*XMLElement*/) {}
    /// One entry of the room `FromJid`, after OnChatRoomBrowseResult. (31)
    virtual void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& /*BrowseItem*/, StringView /*FromJid*/,
                                 const NodePtr& /*XMLElement*/) {}

    // -- Searching (jabber:iq:search) --

    /// A search form to fill, the same as cSession::SearchFields; a data form is in SearchXData. (32)
    virtual void OnSearchFields(const std::shared_ptr<cSearchFields>& /*SearchFields*/) {}
    /// The hits of a search. (33)
    virtual void OnSearchResults(const std::shared_ptr<cSearchResults>& /*Searchresults*/) {}

    // -- The account (jabber:iq:register) --

    /// The account was removed, after RemoveAccount. (34)
    virtual void OnAccountRemoved(StringView /*FromJid*/, StringView /*ID*/) {}
    /// The server has taken the new password, after ChangePassword. (35)
    virtual void OnChangedPassword() {}

    // -- Browsing (jabber:iq:browse) --

    /// One room of a conference server, after BrowseChatServer; null, once, when it has none. (36)
    virtual void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& /*Room*/,
                                          const NodePtr& /*XMLElement*/) {}
    /// A room was browsed, after BrowseChatRoom; its entries follow as OnGroupChatItem. (37)
    virtual void OnChatRoomBrowseResult(StringView /*FromJid*/, const NodePtr& /*XMLElement*/) {}

    // -- File offers (jabber:iq:oob) --

    /// Somebody offers a file by its URL. Fetch it, then SendOOBComplete. (38)
    virtual void OnOOBRequest(StringView /*FromJid*/, StringView /*desc*/, StringView /*URL*/) {}
    /// Our offer was fetched, or (`bSuccess` false) refused. (39)
    virtual void OnOOBResult(StringView /*FromJid*/, bool /*bSuccess*/) {}

    // -- Others --

    /// A message that invites to the room `RoomJid` (jabber:x:conference). (40)
    virtual void OnGCInvite10(StringView /*RoomJid*/, StringView /*FromJid*/, StringView /*Body*/,
                              StringView /*Subject*/, const NodePtr& /*XMLElement*/) {}
    /// The users that an administrator's query lists (jabber:iq:admin) begin. (41)
    virtual void OnWhoisOnlineStart() {}
    /// One of them, with the full address as JID. It is not in the presence table. (42)
    virtual void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>& /*PresenceItem*/) {}
    /// They have ended. (43)
    virtual void OnWhoisOnlineEnd() {}
    /// What a gateway asks for, after cAgentItem::QueryGateway (jabber:iq:gateway). (44)
    virtual void OnGatewayInfo(const NodePtr& /*XMLElement*/, StringView /*Desc*/) {}
    /// A contact sent to us inside a message (jabber:x:roster). It has no session until SetSession. (45)
    virtual void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>& /*RosterItem*/,
                                     StringView /*FromJid*/) {}

    /// Whether OnIncomingXML and OnOutgoingXML are wanted. Making the texts costs time: who wants none says
    /// so.
    virtual bool WantsWireText() const { return true; }
};

}  // namespace quorix
