/// \class quorix::cSession
/// One account's connection to a Jabber server: the object that an application creates first.
///
/// Set ServerAddress, Port, username, Password and Resource, Advise a SessionEvents, call Connect, and run
/// the thread's message loop: everything the server sends arrives as events. The session speaks the
/// `jabber:client` stream (RFC 3920's predecessor) and logs in by jabber:iq:auth (XEP-0078); it knows no
/// SASL.
///
/// Ownership: made by Create and shared with the application. Dropping the last reference ends the session
/// without a word to the server; Disconnect says good-bye. Records given out by events may be kept. The
/// session owns its sinks: a sink that holds its session in a shared_ptr keeps both alive for ever, and no
/// leak checker shows it. A sink holds a reference or a weak_ptr. Threads: a session, its records and its
/// timers belong to the thread that created it. Errors: an AutomationError for an impossible argument, and in
/// KV_Modern 10057 for whatever is to be sent while not connected. Network and protocol failures are events.
/// Text: in KV_Modern every value of the session and its records is text, and where a comment tells text from
/// wire text (see WireText.h) it speaks of KV_Classic. A value that is sent never leaves its place in the
/// stanza.
#pragma once

#include <memory>

#include "quorix/base/Enumerations.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/im/PresenceTable.h"
#include "quorix/im/RosterTable.h"
#include "quorix/im/cMessage.h"
#include "quorix/link/SessionEvents.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/services/cAgentItem.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/services/cSearchFields.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cVcard.h"
#include "quorix/services/cXData.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

class SessionCore;

class QUORIX_API cSession final {
public:
    static std::shared_ptr<cSession> Create();

    /// Sinks are kept until Unadvise. Both may be called inside an event.
    void Advise(std::shared_ptr<SessionEvents> sink);
    void Unadvise(const std::shared_ptr<SessionEvents>& sink);

    /// KV_Classic at first. Error 5 unless the socket is closed, 6 for a value that is no mode.
    eMode Mode() const;
    void Mode(eMode value);

    // -- Account and server --

    /// Host name of the server, and the domain that every request to the server is addressed to.
    String ServerAddress() const;
    void ServerAddress(StringView value);

    /// The name before the "@". In KV_Classic it is wire text and goes out as it is, unescaped.
    String username() const;
    void username(StringView value);

    String Password() const;
    void Password(StringView value);

    /// Servers refuse an empty resource.
    String Resource() const;
    void Resource(StringView value);

    /// A signed 16-bit property whose unsigned value goes to the wire. No default.
    std::int16_t Port() const;
    void Port(std::int16_t value);

    /// In KV_Modern: the host to connect to in place of ServerAddress (text), "" for none. With neither this
    /// nor Port set, the domain's SRV records say where the server is; else Port 0 counts as 5222. Every
    /// address, IPv6 or IPv4, is tried in turn.
    String ConnectHost() const;
    void ConnectHost(StringView value);

    /// In KV_Modern: seconds from Connect, and from each attempt to connect again, until the login must have
    /// succeeded: then OnError 408, and the session ends and reconnects as configured. 0 is no limit, 30 the
    /// default. Error 6 for a negative value.
    std::int32_t LoginTimeout() const;
    void LoginTimeout(std::int32_t value);

    /// In KV_Modern: bytes that the stream's header, or one stanza, may have; 0 is no limit, 10 MiB the
    /// default. More is an OnError, and the session ends. Error 6 for a negative value.
    std::int32_t MaxStanzaSize() const;
    void MaxStanzaSize(std::int32_t value);

    /// Runs the whole connection over TLS from its first byte. Copied to the socket at each Connect.
    bool UseSSL() const;
    void UseSSL(bool value);

    eAuthType AuthType() const;
    void AuthType(eAuthType value);

    /// The account's address: `username`, "@" and `ServerAddress`, without a resource.
    String MyJid() const;

    // -- The user's own presence: stored here, sent by SendMyPresence --

    std::int16_t Priority() const;
    void Priority(std::int16_t value);
    bool available() const;
    void available(bool value);
    String Status() const;
    void Status(StringView value);
    eShowType ShowType() const;
    /// Kept in 16 bits: error 6 for what does not fit.
    void ShowType(eShowType value);

    // -- Keeping the line --

    /// White space sent every KeepAliveInterval units of 64 seconds. Setting the interval to 0 also switches
    /// KeepAlive off; an interval of 0 or less is never armed. Both take effect at the next login. In
    /// KV_Modern a server that has been silent for one interval is asked something, and after another one the
    /// session ends with OnError 408.
    bool KeepAlive() const;
    void KeepAlive(bool value);
    std::int16_t KeepAliveInterval() const;
    void KeepAliveInterval(std::int16_t value);

    /// After a loss (not after Disconnect): connect again every ReconnectInterval seconds. A loss and the
    /// attempt that follows it count as two against ReconnectAttempts. A negative interval is never armed.
    /// In KV_Modern also after a first attempt that failed; each wait is twice the one before, up to 16
    /// intervals, and up to a quarter shorter or longer; each attempt counts one, a login resets the count,
    /// and OnError 408 tells that the last one has failed.
    bool Reconnect() const;
    void Reconnect(bool value);
    std::int16_t ReconnectAttempts() const;
    void ReconnectAttempts(std::int16_t value);
    std::int16_t ReconnectInterval() const;
    void ReconnectInterval(std::int16_t value);

    /// In KV_Modern: seconds until the next attempt to connect again, rounded up; 0 when none is waited for,
    /// and still inside the events of the loss or failure before it.
    std::int32_t ReconnectDelay() const;

    // -- Proxy --
    //
    // The socket connects to ProxyHostname:ProxyPort instead of the server. An HTTP proxy gets each text as
    // the body of its own PUT request; a SOCKS5 proxy (RFC 1928) opens a tunnel first. With UseSSL, TLS is
    // spoken to the proxy itself, so it is the proxy's certificate that Socket shows.
    //
    // In KV_Modern a SOCKS5 proxy that refuses is OnSocketError 102 with its reason, and the texts are text
    // of 255 bytes in UTF-8. In KV_Classic it is not reported: the stream does not open, until somebody
    // closes the connection. ProxyUsername, ProxyPassword and, with ProxyUseRemoteDNS, ServerAddress hold 255
    // characters at most; nothing is sent otherwise. Without ProxyUseRemoteDNS the server's address is looked
    // up here, and OnSocketError with number 100 reports that it has none.

    eProxyType ProxyType() const;
    void ProxyType(eProxyType value);
    String ProxyHostname() const;
    void ProxyHostname(StringView value);
    /// 0 to 65535: error 6 for anything else.
    std::int32_t ProxyPort() const;
    void ProxyPort(std::int32_t value);
    String ProxyUsername() const;
    void ProxyUsername(StringView value);
    String ProxyPassword() const;
    void ProxyPassword(StringView value);
    eProxy_Authentication ProxyAuthentication() const;
    void ProxyAuthentication(eProxy_Authentication value);

    /// Error 13 when it is read before it was ever set.
    bool ProxyUseRemoteDNS() const;
    void ProxyUseRemoteDNS(bool value);

    // -- State --

    /// The stream id, and what the server offered for the login.
    String SessionID() const;
    bool digest() const;
    std::int32_t Sequence() const;
    String Token() const;

    /// True from the login's success until the connection ends.
    bool Active() const;
    /// The connection is up, logged in or not.
    bool IsConnected() const;
    String LocalIP() const;

    /// The connection itself, for its TimeOut and what TLS needs and tells: SSLCAFile before Connect;
    /// SSLTrusted, SSLCipher, SSLSubject and SSLIssuer after it. In KV_Classic TLS connects before Connect
    /// returns, so an application judges the certificate there, and Disconnects when it does not trust it: no
    /// password has been sent by then. In KV_Modern what is not trusted, or is not the SSLPin, ends the
    /// session with OnSocketError 101 before anything was sent. Its events are the session's alone.
    const std::shared_ptr<cSocketSSL>& Socket() const;

    // -- Connection --

    /// Opens the connection, after closing one that is open. With `bNewUser` the account is created first
    /// (jabber:iq:register), then the session logs in with it.
    void Connect(bool bNewUser = false);

    /// Says good-bye and closes; no reconnection follows.
    void Disconnect();

    /// Sends XML as it is: wire text in KV_Classic, text in KV_Modern. Part of every sender. While the socket
    /// is not connected, what is sent is dropped in silence in KV_Classic; KV_Modern raises error 10057.
    void SendXML(StringView xml);

    /// "KV_1", "KV_2", ... The current id is the last one given out.
    String GetNextID();
    String GetCurrentID() const;

    /// Text to wire text without escaping; wire text to text, entities resolved. See modUTF_8.h for the
    /// limits.
    String Convert2UTF8(StringView sIn) const;
    String Convert2Unicode(StringView sIn) const;

    // -- Presence (RFC 3921) --

    /// The presences known, one record for each address and resource. Never null.
    PresenceTable& Presence();

    /// Sends Status, ShowType and Priority to everybody who may see them.
    void SendMyPresence();

    /// Sends a presence or a subscription request or answer to `jid` (wire text in KV_Classic; "" is
    /// everybody). `status` is text. In KV_Classic it delivers what is pending on the
    /// message loop before it returns.
    void SendPresence(StringView jid, eSubType subType, StringView status);

    /// See PresenceTable::FindPresence for the three manners of finding, and the cursor they share.
    std::int32_t FindPresence(StringView jid, StringView resource, bool primary);

    String RemoveResource(StringView jid) const;
    String GetResource(StringView jid) const;

    // -- Contacts (jabber:iq:roster) --

    RosterTable& Roster();
    void FetchRoster();

    /// A contact to fill and Add. It enters the table when the server reports it, not here.
    std::shared_ptr<cRosterItem> CreateRosterItem();
    std::int16_t FindRosterItem(StringView jid) const;
    /// Raises OnReceiveRosterItem for each contact in a message. Error 91 for null.
    void ParseReceiveRoster(const NodePtr& message);

    // -- Messages --

    /// A message to fill and send. `toJid` is wire text, `body` and `subject` are text.
    std::shared_ptr<cMessage> CreateMessage(StringView toJid, eMsgType type, StringView body,
                                            StringView subject);

    /// Tells `jid` what became of its message `id`: typing, displayed, delivered (jabber:x:event, XEP-0022).
    void SendEvent(StringView jid, eEvent event, StringView id, bool cancel = false);

    // -- The account (jabber:iq:register, XEP-0077) --

    /// OnChangedPassword follows. Password stays as it is. In KV_Classic the name and the new password go out
    /// unescaped. In KV_Modern error 5 without TLS, unless AuthType is KV_PlainAuth.
    void ChangePassword(StringView NewPassword);
    /// OnAccountRemoved follows.
    void RemoveAccount();

    // -- Agents (jabber:iq:agents) --

    /// What FetchAgents has brought, keyed by name.
    Collection<std::shared_ptr<cAgentItem>>& Agents();
    void FetchAgents();
    std::int16_t FindAgent(StringView JID) const;
    /// Asks an agent for its registration form under the id `ID`. The reply fills the agent's Fields.
    void GetAgentRegister(StringView JID, StringView ID);

    // -- Searching (jabber:iq:search, XEP-0055): requests are the agents' --

    /// None is ever null. Fields and results are emptied when the connection ends.
    const std::shared_ptr<cSearchFields>& SearchFields() const;
    const std::shared_ptr<cSearchResults>& Searchresults() const;
    const std::shared_ptr<cXData>& SearchXData() const;

    // -- Business cards (vcard-temp, XEP-0054) --

    void SendVCardRequest(StringView JID);
    /// Publishes the card as the user's own, whole. Nothing happens without one.
    void UpdateVcard(const std::shared_ptr<cVcard>& vcard);

    // -- Rooms (jabber:iq:browse, jabber:iq:conference) --

    /// The rooms joined; FindGroupChat gives positions in it, by the exact JID.
    Collection<std::shared_ptr<cGroupChat>>& Rooms();
    std::int32_t FindGroupChat(StringView JID) const;
    void BrowseChatServer(StringView JID, StringView ID);
    void BrowseChatRoom(StringView JID, StringView ID);
    /// Joins or leaves. Error 91 without a room.
    void SendGroupChatRequest(const std::shared_ptr<cGroupChat>& groupChat, bool available);
    void SendGroupChatPresence(StringView groupJID, eShowType showType, StringView status);
    void ChangeGCNickName(const std::shared_ptr<cGroupChat>& groupChat, StringView sNickname);
    void SendGCInvite10(StringView JID, StringView GCJID);

    // -- Questions and answers (jabber:iq:version, jabber:iq:time, jabber:iq:last) --

    void SendVersionRequest(StringView JID);
    void SendTimeRequest(StringView JID);
    void SendLastSeenRequest(StringView JID);
    /// The answers carry a fresh id. In KV_Classic all values are wire text.
    void SendVersionResponse(StringView JID, StringView name, StringView version, StringView os);
    void SendTimeResponse(StringView JID, StringView utc, StringView timeZone, StringView display);
    void SendGetLastResponse(StringView JID, StringView seconds);

    // -- Private storage (jabber:iq:private, XEP-0049) and file offers (jabber:iq:oob, XEP-0066) --

    /// Error 5 for a namespace without ":".
    void StorePrivateData(StringView nameSpace, StringView data);
    /// Sends nothing, always "". Ask with SendXML; the answer comes with OnIQ.
    String getPrivateData(StringView nameSpace);
    void SendOOBRequest(StringView JID, StringView description, StringView url);
    void SendOOBComplete(StringView JID);

    // -- What a JID is --

    /// `jid` is wire text. A joined room (exactly this JID, as text or as wire text), else an agent, else a
    /// contact (without the resource, ASCII case aside), else unknown.
    eItemType FindItemType(StringView jid);

    cSession(const cSession&) = delete;
    cSession& operator=(const cSession&) = delete;

private:
    friend class SessionCore;
    friend std::shared_ptr<SessionLink> LinkOf(const std::shared_ptr<cSession>& session);

    explicit cSession(SessionCore& core) : core_(&core) {}
    ~cSession() = default;

    SessionCore* const core_;  // which this is part of
};

}  // namespace quorix
