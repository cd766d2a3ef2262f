// One account's connection to a Jabber server: the object that an application creates first.
//
// Set ServerAddress, Port, username, Password and Resource, Advise a SessionEvents, call Connect, and run the
// thread's message loop: everything the server sends arrives as events. The session speaks the
// `jabber:client` stream (RFC 3920's predecessor) and logs in by jabber:iq:auth (XEP-0078); it knows no SASL.
//
// Ownership: made by Create and shared with the application. Dropping the last reference ends the session
// without a word to the server; Disconnect says good-bye. Records given out by events may be kept.
// Threads: a session, its records and its timers belong to the thread that created it.
// Errors: an AutomationError for an impossible argument, and in KV_Modern 10057 for whatever is to be sent
// while not connected. Network and protocol failures are events. Text: in KV_Modern every value of the
// session and its records is text, and where a comment tells text from wire text (see WireText.h) it speaks
// of KV_Classic. A value that is sent never leaves its place in the stanza.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "quorix/auth/Account.h"
#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/im/Roster.h"
#include "quorix/im/RosterTable.h"
#include "quorix/link/SessionLink.h"
#include "quorix/net/Socks5Exchange.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mTimer.h"
#include "quorix/services/Agents.h"
#include "quorix/services/Browse.h"
#include "quorix/services/Conference.h"
#include "quorix/services/GroupChats.h"
#include "quorix/services/Information.h"
#include "quorix/services/OutOfBand.h"
#include "quorix/services/PrivateStorage.h"
#include "quorix/services/Search.h"
#include "quorix/services/VCard.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/session/EventSinks.h"
#include "quorix/session/Rules.h"

namespace quorix {

class Dispatcher;

enum eProxyType : std::int32_t {
    KV_NoProxy = 0,
    KV_HTTPProxy = 1,
    KV_SOCKS4Proxy = 2,  // not supported: Connect does nothing
    KV_SOCKS5Proxy = 3,
};

class cSession final : public SessionLink, public TimerTarget, public std::enable_shared_from_this<cSession> {
public:
    static std::shared_ptr<cSession> Create();
    ~cSession() override;

    // Sinks are kept until Unadvise. Both may be called inside an event.
    void Advise(std::shared_ptr<SessionEvents> sink) { sinks_.Advise(std::move(sink)); }
    void Unadvise(const std::shared_ptr<SessionEvents>& sink) { sinks_.Unadvise(sink); }

    // KV_Classic at first. Error 5 unless the socket is closed, 6 for a value that is no mode.
    eMode Mode() const { return rules_->Mode(); }
    void Mode(eMode value);

    // -- Account and server --

    // Host name of the server, and the domain that every request to the server is addressed to.
    String ServerAddress() const override { return serverAddress_; }
    void ServerAddress(StringView value) { serverAddress_ = value; }

    // The name before the "@". In KV_Classic it is wire text and goes out as it is, unescaped.
    String username() const override { return username_; }
    void username(StringView value) { username_ = value; }

    String Password() const override { return password_; }
    void Password(StringView value) { password_ = value; }

    // Servers refuse an empty resource.
    String Resource() const override { return resource_; }
    void Resource(StringView value) { resource_ = value; }

    // A signed 16-bit property whose unsigned value goes to the wire. No default.
    std::int16_t Port() const { return port_; }
    void Port(std::int16_t value) { port_ = value; }

    // In KV_Modern: the host to connect to in place of ServerAddress (text), "" for none. With neither this
    // nor Port set, the domain's SRV records say where the server is; else Port 0 counts as 5222. Every
    // address, IPv6 or IPv4, is tried in turn.
    String ConnectHost() const { return connectHost_; }
    void ConnectHost(StringView value) { connectHost_ = value; }

    // In KV_Modern: seconds from Connect, and from each attempt to connect again, until the login must have
    // succeeded: then OnError 408, and the session ends and reconnects as configured. 0 is no limit, 30 the
    // default. Error 6 for a negative value.
    std::int32_t LoginTimeout() const { return loginTimeout_; }
    void LoginTimeout(std::int32_t value);

    // In KV_Modern: bytes that the stream's header, or one stanza, may have; 0 is no limit, 10 MiB the
    // default. More is an OnError, and the session ends. Error 6 for a negative value.
    std::int32_t MaxStanzaSize() const { return maxStanzaSize_; }
    void MaxStanzaSize(std::int32_t value);

    // Runs the whole connection over TLS from its first byte. Copied to the socket at each Connect.
    bool UseSSL() const { return useSSL_; }
    void UseSSL(bool value) { useSSL_ = value; }

    eAuthType AuthType() const { return login_.authType; }
    void AuthType(eAuthType value) { login_.authType = value; }

    // `username`@`ServerAddress`, without the resource.
    String MyJid() const override { return Concat({username_, u"@", serverAddress_}); }

    // -- The user's own presence: stored here, sent by SendMyPresence --

    std::int16_t Priority() const { return priority_; }
    void Priority(std::int16_t value) { priority_ = value; }
    bool available() const { return available_; }
    void available(bool value) { available_ = value; }
    String Status() const { return status_; }
    void Status(StringView value) { status_ = value; }
    eShowType ShowType() const { return static_cast<eShowType>(showType_); }
    // Kept in 16 bits: error 6 for what does not fit.
    void ShowType(eShowType value) { showType_ = ToInt16(value); }

    // -- Keeping the line --

    // White space sent every KeepAliveInterval units of 64 seconds. Setting the interval to 0 also switches
    // KeepAlive off; an interval of 0 or less is never armed. Both take effect at the next login. In
    // KV_Modern a server that has been silent for one interval is asked something, and after another one the
    // session ends with OnError 408.
    bool KeepAlive() const { return keepAlive_; }
    void KeepAlive(bool value) { keepAlive_ = value; }
    std::int16_t KeepAliveInterval() const { return keepAliveInterval_; }
    void KeepAliveInterval(std::int16_t value);

    // After a loss (not after Disconnect): connect again every ReconnectInterval seconds. A loss and the
    // attempt that follows it count as two against ReconnectAttempts. A negative interval is never armed.
    // In KV_Modern also after a first attempt that failed; each wait is twice the one before, up to 16
    // intervals, and up to a quarter shorter or longer; each attempt counts one, a login resets the count,
    // and OnError 408 tells that the last one has failed.
    bool Reconnect() const { return reconnect_; }
    void Reconnect(bool value) { reconnect_ = value; }
    std::int16_t ReconnectAttempts() const { return static_cast<std::int16_t>(reconnectAttempts_); }
    void ReconnectAttempts(std::int16_t value) { reconnectAttempts_ = value; }
    std::int16_t ReconnectInterval() const { return static_cast<std::int16_t>(reconnectInterval_); }
    void ReconnectInterval(std::int16_t value) { reconnectInterval_ = value; }

    // In KV_Modern: seconds until the next attempt to connect again, rounded up; 0 when none is waited for,
    // and still inside the events of the loss or failure before it.
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

    eProxyType ProxyType() const { return proxyType_; }
    void ProxyType(eProxyType value) { proxyType_ = value; }
    String ProxyHostname() const { return proxyHostname_; }
    void ProxyHostname(StringView value) { proxyHostname_ = value; }
    // 0 to 65535: error 6 for anything else.
    std::int32_t ProxyPort() const { return proxyPort_; }
    void ProxyPort(std::int32_t value);
    String ProxyUsername() const { return proxyUsername_; }
    void ProxyUsername(StringView value) { proxyUsername_ = value; }
    String ProxyPassword() const { return proxyPassword_; }
    void ProxyPassword(StringView value) { proxyPassword_ = value; }
    eProxy_Authentication ProxyAuthentication() const { return proxyAuthentication_; }
    void ProxyAuthentication(eProxy_Authentication value) { proxyAuthentication_ = value; }

    // Error 13 when it is read before it was ever set.
    bool ProxyUseRemoteDNS() const;
    void ProxyUseRemoteDNS(bool value) { proxyUseRemoteDNS_ = value; }

    // -- State --

    // The stream id, and what the server offered for the login.
    String SessionID() const { return login_.sessionID; }
    bool digest() const { return login_.digest; }
    std::int32_t Sequence() const { return login_.sequence; }
    String Token() const { return login_.token; }
    LoginFacts Login() const override { return login_; }

    // True from the login's success until the connection ends.
    bool Active() const { return active_; }
    void LetOthersRun() override { rules_->LetOthersRun(); }
    bool IsConnected() const override { return socket_->State() == sockConnected && line_->IsFree(); }
    String LocalIP() const { return socket_->LocalIP(); }

    // The connection itself, for its TimeOut and what TLS needs and tells: SSLCAFile before Connect;
    // SSLTrusted, SSLCipher, SSLSubject and SSLIssuer after it. In KV_Classic TLS connects before Connect
    // returns, so an application judges the certificate there, and Disconnects when it does not trust it: no
    // password has been sent by then. In KV_Modern what is not trusted, or is not the SSLPin, ends the
    // session with OnSocketError 101 before anything was sent. Its events are the session's alone.
    const std::shared_ptr<cSocketSSL>& Socket() const { return socket_; }

    // -- Connection --

    // Opens the connection, after closing one that is open. With `bNewUser` the account is created first
    // (jabber:iq:register), then the session logs in with it.
    void Connect(bool bNewUser = false);

    // Says good-bye and closes; no reconnection follows.
    void Disconnect();

    // Sends XML as it is: wire text in KV_Classic, text in KV_Modern. Part of every sender. While the socket
    // is not connected, what is sent is dropped in silence in KV_Classic; KV_Modern raises error 10057.
    void SendXML(StringView xml) override;

    // "KV_1", "KV_2", ... The current id is the last one given out.
    String GetNextID() override;
    String GetCurrentID() const;

    // Text to wire text without escaping; wire text to text, entities resolved. See modUTF_8.h for the
    // limits.
    String Convert2UTF8(StringView sIn) const;
    String Convert2Unicode(StringView sIn) const;

    // -- Presence (RFC 3921) --

    // The presences known, one record for each address and resource. Never null.
    PresenceTable& Presence() { return presence_; }

    // Sends Status, ShowType and Priority to everybody who may see them.
    void SendMyPresence() { quorix::SendMyPresence(*this, status_, showType_, priority_); }

    // Sends a presence or a subscription request or answer to `jid` (wire text in KV_Classic; "" is
    // everybody). `status` is text. In KV_Classic it delivers what is pending on the
    // message loop before it returns.
    void SendPresence(StringView jid, eSubType subType, StringView status) {
        quorix::SendPresence(*this, jid, subType, status);
    }

    // See PresenceTable::FindPresence for the three manners of finding, and the cursor they share.
    std::int32_t FindPresence(StringView jid, StringView resource, bool primary) {
        return presence_.FindPresence(jid, resource, primary);
    }

    String RemoveResource(StringView jid) const { return quorix::RemoveResource(jid); }
    String GetResource(StringView jid) const { return quorix::GetResource(jid); }

    // -- Contacts (jabber:iq:roster) --

    RosterTable& Roster() { return roster_; }
    void FetchRoster() { quorix::FetchRoster(*this); }

    // A contact to fill and Add. It enters the table when the server reports it, not here.
    std::shared_ptr<cRosterItem> CreateRosterItem();
    std::int16_t FindRosterItem(StringView jid) const { return roster_.FindRosterItem(jid); }
    // Raises OnReceiveRosterItem for each contact in a message. Error 91 for null.
    void ParseReceiveRoster(const NodePtr& message);

    // -- Messages --

    // A message to fill and send. `toJid` is wire text, `body` and `subject` are text.
    std::shared_ptr<cMessage> CreateMessage(StringView toJid, eMsgType type, StringView body,
                                            StringView subject) {
        return quorix::CreateMessage(shared_from_this(), toJid, type, body, subject);
    }

    // Tells `jid` what became of its message `id`: typing, displayed, delivered (jabber:x:event, XEP-0022).
    void SendEvent(StringView jid, eEvent event, StringView id, bool cancel = false) {
        quorix::SendEvent(*this, jid, event, id, cancel);
    }

    // -- The account (jabber:iq:register, XEP-0077) --

    // OnChangedPassword follows. Password stays as it is. In KV_Classic the name and the new password go out
    // unescaped. In KV_Modern error 5 without TLS, unless AuthType is KV_PlainAuth.
    void ChangePassword(StringView NewPassword);
    // OnAccountRemoved follows.
    void RemoveAccount() { quorix::RemoveAccount(*this); }

    // -- Agents (jabber:iq:agents) --

    // What FetchAgents has brought, keyed by name.
    quorix::Agents::List& Agents() { return agents_.Items(); }
    void FetchAgents() { quorix::FetchAgents(*this); }
    std::int16_t FindAgent(StringView JID) const { return agents_.FindAgent(JID); }
    // Asks an agent for its registration form under the id `ID`. The reply fills the agent's Fields.
    void GetAgentRegister(StringView JID, StringView ID) { quorix::GetAgentRegister(*this, JID, ID); }

    // -- Searching (jabber:iq:search, XEP-0055): requests are the agents' --

    // None is ever null. Fields and results are emptied when the connection ends.
    const std::shared_ptr<cSearchFields>& SearchFields() const { return search_.SearchFields(); }
    const std::shared_ptr<cSearchResults>& Searchresults() const { return search_.Searchresults(); }
    const std::shared_ptr<cXData>& SearchXData() const { return search_.SearchXData(); }

    // -- Business cards (vcard-temp, XEP-0054) --

    void SendVCardRequest(StringView JID) { quorix::SendVCardRequest(*this, JID); }
    // Publishes the card as the user's own, whole. Nothing happens without one.
    void UpdateVcard(const std::shared_ptr<cVcard>& vcard) { quorix::UpdateVcard(*this, vcard); }

    // -- Rooms (jabber:iq:browse, jabber:iq:conference) --

    // The rooms joined; FindGroupChat gives positions in it, by the exact JID.
    GroupChats::List& Rooms() { return rooms_.Items(); }
    std::int32_t FindGroupChat(StringView JID) const { return rooms_.FindGroupChat(JID); }
    void BrowseChatServer(StringView JID, StringView ID) { quorix::BrowseChatServer(*this, JID, ID); }
    void BrowseChatRoom(StringView JID, StringView ID) { quorix::BrowseChatRoom(*this, JID, ID); }
    // Joins or leaves. Error 91 without a room.
    void SendGroupChatRequest(const std::shared_ptr<cGroupChat>& groupChat, bool available) {
        rooms_.SendGroupChatRequest(*this, groupChat, available);
    }
    void SendGroupChatPresence(StringView groupJID, eShowType showType, StringView status) {
        quorix::SendGroupChatPresence(*this, groupJID, showType, status);
    }
    void ChangeGCNickName(const std::shared_ptr<cGroupChat>& groupChat, StringView sNickname) {
        quorix::ChangeGCNickName(*this, groupChat, sNickname);
    }
    void SendGCInvite10(StringView JID, StringView GCJID) { quorix::SendGCInvite10(*this, JID, GCJID); }

    // -- Questions and answers (jabber:iq:version, jabber:iq:time, jabber:iq:last) --

    void SendVersionRequest(StringView JID) { quorix::SendVersionRequest(*this, JID); }
    void SendTimeRequest(StringView JID) { quorix::SendTimeRequest(*this, JID); }
    void SendLastSeenRequest(StringView JID) { quorix::SendLastSeenRequest(*this, JID); }
    // The answers carry a fresh id. In KV_Classic all values are wire text.
    void SendVersionResponse(StringView JID, StringView name, StringView version, StringView os) {
        quorix::SendVersionResponse(*this, JID, name, version, os);
    }
    void SendTimeResponse(StringView JID, StringView utc, StringView timeZone, StringView display) {
        quorix::SendTimeResponse(*this, JID, utc, timeZone, display);
    }
    void SendGetLastResponse(StringView JID, StringView seconds) {
        quorix::SendGetLastResponse(*this, JID, seconds);
    }

    // -- Private storage (jabber:iq:private, XEP-0049) and file offers (jabber:iq:oob, XEP-0066) --

    // Error 5 for a namespace without ":".
    void StorePrivateData(StringView nameSpace, StringView data) {
        quorix::StorePrivateData(*this, nameSpace, data);
    }
    // Sends nothing, always "". Ask with SendXML; the answer comes with OnIQ.
    String getPrivateData(StringView nameSpace) { return quorix::getPrivateData(*this, nameSpace); }
    void SendOOBRequest(StringView JID, StringView description, StringView url) {
        quorix::SendOOBRequest(*this, JID, description, url);
    }
    void SendOOBComplete(StringView JID) { quorix::SendOOBComplete(*this, JID); }

    // -- SessionLink --

    const TextRules& Text() const override { return rules_->Text(); }
    StanzaError ErrorOf(const Stanza& stanza) const override { return rules_->ErrorOf(stanza); }

    // `jid` is wire text. A joined room (exactly this JID, as text or as wire text), else an agent, else a
    // contact (without the resource, ASCII case aside), else unknown.
    eItemType FindItemType(StringView jid) override;
    bool LeaveRoom(StringView jid, StringView nickname) override;
    void ForEachSink(const std::function<void(SessionEvents&)>& raise) override;

private:
    friend class Dispatcher;
    friend class Line;
    friend class ClassicLine;
    friend class ModernLine;

    class Held;
    class Entry;
    class SocketPort;

    cSession();
    void Initialise();

    // Only entries in progress still hold the session: nobody is left to hear it.
    bool IsAbandoned() const;

    void KeepAliveTick() override;
    void ReconnectTick() override;

    // Socket notifications are taken one at a time; those that arrive meanwhile wait in their order.
    void Deliver(std::function<void()> step);
    template <class Step>
    void TakeNow(Step step);
    bool MustWait() const { return delivering_ || closing_ || !deliveries_.empty(); }
    void DrainDeliveries();

    void socket1_Connect();
    void socket1_Closed();
    void socket1_Error(std::int32_t code, StringView description);
    void socket1_DataArrival(std::string_view bytes);

    void CloseSocket();
    void CloseSession(StringView code, StringView description);
    void SayGoodbye();
    void RaiseError(StringView code, StringView description);
    void RaiseSocketError(std::int32_t code, StringView description);
    Socks5Request ProxyRequest() const;
    std::int32_t KeepAliveMilliseconds() const { return keepAliveInterval_ * kKeepAliveUnit; }
    void EmptyTables();

    // Runs what a timer or a look-up calls.
    void Enter(const std::function<void()>& step);

    void SendStreamHeader();
    void Send(StringView xml);
    void ProcessIncoming(std::string_view bytes);
    bool TakeStep(Dispatcher& dispatcher);
    void TakeStreamHeader(const StreamStep& header);
    void EndWithStreamError(const StreamStep& error);
    void RaiseWireText(void (SessionEvents::*event)(StringView), StringView text);
    void StartLogin();
    void RequestLoginFields();
    bool MayTellPassword() const;
    void RefuseToTellPassword();
    void EndForGood(StringView code, StringView description);
    void BecomeActive();
    void CompleteLogin();

    struct Delivery {
        std::uint32_t socketEpoch;
        std::function<void()> step;
    };

    static constexpr std::int32_t kKeepAliveUnit = 64000;  // milliseconds

    const SessionRules* rules_ = &RulesOf(KV_Classic);
    String serverAddress_;
    String username_;
    String password_;
    String resource_;
    String status_;
    String connectHost_;
    std::int32_t loginTimeout_ = 30;
    String proxyHostname_;
    String proxyUsername_;
    String proxyPassword_;
    std::int32_t proxyPort_ = 0;
    std::int32_t reconnectAttempts_ = 10;
    std::int32_t reconnectInterval_ = 60;
    eProxyType proxyType_ = KV_NoProxy;
    eProxy_Authentication proxyAuthentication_ = KV_SocksNoAuth;
    std::optional<bool> proxyUseRemoteDNS_;
    std::int16_t port_ = 0;
    std::int16_t priority_ = 5;
    std::int16_t showType_ = 0;
    std::int16_t keepAliveInterval_ = 1;
    bool useSSL_ = false;
    bool available_ = false;
    bool keepAlive_ = true;
    bool reconnect_ = true;

    LoginFacts login_;
    String loginQueryId_;  // of the question for the login's fields, or for the form of a new account
    bool active_ = false;
    bool streamOpen_ = false;
    bool authorized_ = false;
    bool newUser_ = false;
    bool accountCreated_ = false;  // by this connection
    bool connectionWanted_ = false;
    bool delivering_ = false;
    bool closing_ = false;
    std::uint32_t idCounter_ = 0;
    std::uint32_t generation_ = 0;   // counts calls of Connect
    std::uint32_t socketEpoch_ = 0;  // counts the ends of connections
    long held_ = 0;                  // references held by entries in progress

    std::shared_ptr<Line> line_;
    std::shared_ptr<cSocketSSL> socket_;
    std::unique_ptr<SocketPort> socketPort_;
    std::deque<Delivery> deliveries_;
    EventSinks sinks_;
    std::unique_ptr<StreamReader> reader_;
    std::int32_t maxStanzaSize_ = 10 << 20;  // bytes
    PresenceTable presence_;
    RosterTable roster_;
    Search search_;
    quorix::Agents agents_{search_.SearchFields()};
    GroupChats rooms_;
};

}  // namespace quorix
