#include "quorix/session/cSession.h"

#include <limits>
#include <utility>

#include "quorix/auth/Account.h"
#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/base/modUTF_8.h"
#include "quorix/im/Messages.h"
#include "quorix/im/Presence.h"
#include "quorix/im/Roster.h"
#include "quorix/services/Browse.h"
#include "quorix/services/Conference.h"
#include "quorix/services/Information.h"
#include "quorix/services/OutOfBand.h"
#include "quorix/services/PrivateStorage.h"
#include "quorix/services/VCard.h"
#include "quorix/session/SessionCore.h"

namespace quorix {

namespace {

constexpr std::int32_t kLongestLoginTimeout = std::numeric_limits<std::int32_t>::max() / 1000;

}  // namespace

std::shared_ptr<cSession> cSession::Create() {
    std::shared_ptr<SessionCore> core = SessionCore::Create();
    return {core, &core->interface_};
}
void cSession::Advise(std::shared_ptr<SessionEvents> sink) { core_->sinks_.Advise(std::move(sink)); }
void cSession::Unadvise(const std::shared_ptr<SessionEvents>& sink) { core_->sinks_.Unadvise(sink); }
eMode cSession::Mode() const { return core_->rules_->Mode(); }
void cSession::Mode(eMode value) { core_->Mode(value); }

// -- Account and server --

String cSession::ServerAddress() const { return core_->serverAddress_; }
void cSession::ServerAddress(StringView value) { core_->serverAddress_ = value; }
String cSession::username() const { return core_->username_; }
void cSession::username(StringView value) { core_->username_ = value; }
String cSession::Password() const { return core_->password_; }
void cSession::Password(StringView value) { core_->password_ = value; }
String cSession::Resource() const { return core_->resource_; }
void cSession::Resource(StringView value) { core_->resource_ = value; }
std::int16_t cSession::Port() const { return core_->port_; }
void cSession::Port(std::int16_t value) { core_->port_ = value; }
String cSession::ConnectHost() const { return core_->connectHost_; }
void cSession::ConnectHost(StringView value) { core_->connectHost_ = value; }
std::int32_t cSession::LoginTimeout() const { return core_->loginTimeout_; }
void cSession::LoginTimeout(std::int32_t value) {
    if (value < 0 || value > kLongestLoginTimeout) throw AutomationError(ERR_Overflow);
    core_->loginTimeout_ = value;
}
std::int32_t cSession::MaxStanzaSize() const { return core_->maxStanzaSize_; }
void cSession::MaxStanzaSize(std::int32_t value) {
    if (value < 0) throw AutomationError(ERR_Overflow);
    core_->maxStanzaSize_ = value;
}
bool cSession::UseSSL() const { return core_->useSSL_; }
void cSession::UseSSL(bool value) { core_->useSSL_ = value; }
eAuthType cSession::AuthType() const { return core_->login_.authType; }
void cSession::AuthType(eAuthType value) { core_->login_.authType = value; }
String cSession::MyJid() const { return core_->MyJid(); }

// -- The user's own presence: stored here, sent by SendMyPresence --

std::int16_t cSession::Priority() const { return core_->priority_; }
void cSession::Priority(std::int16_t value) { core_->priority_ = value; }
bool cSession::available() const { return core_->available_; }
void cSession::available(bool value) { core_->available_ = value; }
String cSession::Status() const { return core_->status_; }
void cSession::Status(StringView value) { core_->status_ = value; }
eShowType cSession::ShowType() const { return static_cast<eShowType>(core_->showType_); }
void cSession::ShowType(eShowType value) { core_->showType_ = ToInt16(value); }

// -- Keeping the line --

bool cSession::KeepAlive() const { return core_->keepAlive_; }
void cSession::KeepAlive(bool value) { core_->keepAlive_ = value; }
std::int16_t cSession::KeepAliveInterval() const { return core_->keepAliveInterval_; }
void cSession::KeepAliveInterval(std::int16_t value) {
    core_->keepAliveInterval_ = value;
    if (value == 0) core_->keepAlive_ = false;
}
bool cSession::Reconnect() const { return core_->reconnect_; }
void cSession::Reconnect(bool value) { core_->reconnect_ = value; }
std::int16_t cSession::ReconnectAttempts() const {
    return static_cast<std::int16_t>(core_->reconnectAttempts_);
}
void cSession::ReconnectAttempts(std::int16_t value) { core_->reconnectAttempts_ = value; }
std::int16_t cSession::ReconnectInterval() const {
    return static_cast<std::int16_t>(core_->reconnectInterval_);
}
void cSession::ReconnectInterval(std::int16_t value) { core_->reconnectInterval_ = value; }
std::int32_t cSession::ReconnectDelay() const { return core_->line_->RetryDelay(); }

// -- Proxy --

eProxyType cSession::ProxyType() const { return core_->proxyType_; }
void cSession::ProxyType(eProxyType value) { core_->proxyType_ = value; }
String cSession::ProxyHostname() const { return core_->proxyHostname_; }
void cSession::ProxyHostname(StringView value) { core_->proxyHostname_ = value; }
std::int32_t cSession::ProxyPort() const { return core_->proxyPort_; }
void cSession::ProxyPort(std::int32_t value) {
    if (value < 0 || value > std::numeric_limits<std::uint16_t>::max()) throw AutomationError(ERR_Overflow);
    core_->proxyPort_ = value;
}
String cSession::ProxyUsername() const { return core_->proxyUsername_; }
void cSession::ProxyUsername(StringView value) { core_->proxyUsername_ = value; }
String cSession::ProxyPassword() const { return core_->proxyPassword_; }
void cSession::ProxyPassword(StringView value) { core_->proxyPassword_ = value; }
eProxy_Authentication cSession::ProxyAuthentication() const { return core_->proxyAuthentication_; }
void cSession::ProxyAuthentication(eProxy_Authentication value) { core_->proxyAuthentication_ = value; }
bool cSession::ProxyUseRemoteDNS() const {
    if (!core_->proxyUseRemoteDNS_) throw AutomationError(ERR_TypeMismatch);
    return *core_->proxyUseRemoteDNS_;
}
void cSession::ProxyUseRemoteDNS(bool value) { core_->proxyUseRemoteDNS_ = value; }

// -- State --

String cSession::SessionID() const { return core_->login_.sessionID; }
bool cSession::digest() const { return core_->login_.digest; }
std::int32_t cSession::Sequence() const { return core_->login_.sequence; }
String cSession::Token() const { return core_->login_.token; }
bool cSession::Active() const { return core_->active_; }
bool cSession::IsConnected() const { return core_->IsConnected(); }
String cSession::LocalIP() const { return core_->socket_->LocalIP(); }
const std::shared_ptr<cSocketSSL>& cSession::Socket() const { return core_->socket_; }

// -- Connection --

void cSession::Connect(bool bNewUser) { core_->Connect(bNewUser); }
void cSession::Disconnect() { core_->Disconnect(); }
void cSession::SendXML(StringView xml) { core_->SendXML(xml); }
String cSession::GetNextID() { return core_->GetNextID(); }
String cSession::GetCurrentID() const { return core_->GetCurrentID(); }
String cSession::Convert2UTF8(StringView sIn) const { return EncodeUTF8(sIn, false); }
String cSession::Convert2Unicode(StringView sIn) const { return DecodeUTF8(sIn, true); }

// -- Presence (RFC 3921) --

PresenceTable& cSession::Presence() { return core_->presence_; }
void cSession::SendMyPresence() {
    quorix::SendMyPresence(*core_, core_->status_, core_->showType_, core_->priority_);
}
void cSession::SendPresence(StringView jid, eSubType subType, StringView status) {
    quorix::SendPresence(*core_, jid, subType, status);
}
std::int32_t cSession::FindPresence(StringView jid, StringView resource, bool primary) {
    return core_->presence_.FindPresence(jid, resource, primary);
}
String cSession::RemoveResource(StringView jid) const { return quorix::RemoveResource(jid); }
String cSession::GetResource(StringView jid) const { return quorix::GetResource(jid); }

// -- Contacts (jabber:iq:roster) --

RosterTable& cSession::Roster() { return core_->roster_; }
void cSession::FetchRoster() { quorix::FetchRoster(*core_); }
std::shared_ptr<cRosterItem> cSession::CreateRosterItem() {
    auto item = std::make_shared<cRosterItem>();
    item->SetSession(core_->shared_from_this());
    return item;
}
std::int16_t cSession::FindRosterItem(StringView jid) const { return core_->roster_.FindRosterItem(jid); }
void cSession::ParseReceiveRoster(const NodePtr& message) {
    // Handlers may let it go.
    NodePtr kept = message;  // NOLINT(performance-unnecessary-copy-initialization)
    if (!kept) throw AutomationError(ERR_ObjectNotSet);
    quorix::ParseReceiveRoster(*core_, *kept);
}

// -- Messages --

std::shared_ptr<cMessage> cSession::CreateMessage(StringView toJid, eMsgType type, StringView body,
                                                  StringView subject) {
    return quorix::CreateMessage(core_->shared_from_this(), toJid, type, body, subject);
}
void cSession::SendEvent(StringView jid, eEvent event, StringView id, bool cancel) {
    quorix::SendEvent(*core_, jid, event, id, cancel);
}

// -- The account (jabber:iq:register, XEP-0077) --

void cSession::ChangePassword(StringView NewPassword) { core_->ChangePassword(NewPassword); }
void cSession::RemoveAccount() { quorix::RemoveAccount(*core_); }

// -- Agents (jabber:iq:agents) --

Collection<std::shared_ptr<cAgentItem>>& cSession::Agents() { return core_->agents_.Items(); }
void cSession::FetchAgents() { quorix::FetchAgents(*core_); }
std::int16_t cSession::FindAgent(StringView JID) const { return core_->agents_.FindAgent(JID); }
void cSession::GetAgentRegister(StringView JID, StringView ID) { quorix::GetAgentRegister(*core_, JID, ID); }

// -- Searching (jabber:iq:search, XEP-0055): requests are the agents' --

const std::shared_ptr<cSearchFields>& cSession::SearchFields() const { return core_->search_.SearchFields(); }
const std::shared_ptr<cSearchResults>& cSession::Searchresults() const {
    return core_->search_.Searchresults();
}
const std::shared_ptr<cXData>& cSession::SearchXData() const { return core_->search_.SearchXData(); }

// -- Business cards (vcard-temp, XEP-0054) --

void cSession::SendVCardRequest(StringView JID) { quorix::SendVCardRequest(*core_, JID); }
void cSession::UpdateVcard(const std::shared_ptr<cVcard>& vcard) { quorix::UpdateVcard(*core_, vcard); }

// -- Rooms (jabber:iq:browse, jabber:iq:conference) --

Collection<std::shared_ptr<cGroupChat>>& cSession::Rooms() { return core_->rooms_.Items(); }
std::int32_t cSession::FindGroupChat(StringView JID) const { return core_->rooms_.FindGroupChat(JID); }
void cSession::BrowseChatServer(StringView JID, StringView ID) { quorix::BrowseChatServer(*core_, JID, ID); }
void cSession::BrowseChatRoom(StringView JID, StringView ID) { quorix::BrowseChatRoom(*core_, JID, ID); }
void cSession::SendGroupChatRequest(const std::shared_ptr<cGroupChat>& groupChat, bool available) {
    core_->rooms_.SendGroupChatRequest(*core_, groupChat, available);
}
void cSession::SendGroupChatPresence(StringView groupJID, eShowType showType, StringView status) {
    quorix::SendGroupChatPresence(*core_, groupJID, showType, status);
}
void cSession::ChangeGCNickName(const std::shared_ptr<cGroupChat>& groupChat, StringView sNickname) {
    quorix::ChangeGCNickName(*core_, groupChat, sNickname);
}
void cSession::SendGCInvite10(StringView JID, StringView GCJID) {
    quorix::SendGCInvite10(*core_, JID, GCJID);
}

// -- Questions and answers (jabber:iq:version, jabber:iq:time, jabber:iq:last) --

void cSession::SendVersionRequest(StringView JID) { quorix::SendVersionRequest(*core_, JID); }
void cSession::SendTimeRequest(StringView JID) { quorix::SendTimeRequest(*core_, JID); }
void cSession::SendLastSeenRequest(StringView JID) { quorix::SendLastSeenRequest(*core_, JID); }
void cSession::SendVersionResponse(StringView JID, StringView name, StringView version, StringView os) {
    quorix::SendVersionResponse(*core_, JID, name, version, os);
}
void cSession::SendTimeResponse(StringView JID, StringView utc, StringView timeZone, StringView display) {
    quorix::SendTimeResponse(*core_, JID, utc, timeZone, display);
}
void cSession::SendGetLastResponse(StringView JID, StringView seconds) {
    quorix::SendGetLastResponse(*core_, JID, seconds);
}

// -- Private storage (jabber:iq:private, XEP-0049) and file offers (jabber:iq:oob, XEP-0066) --

void cSession::StorePrivateData(StringView nameSpace, StringView data) {
    quorix::StorePrivateData(*core_, nameSpace, data);
}
String cSession::getPrivateData(StringView nameSpace) { return quorix::getPrivateData(*core_, nameSpace); }
void cSession::SendOOBRequest(StringView JID, StringView description, StringView url) {
    quorix::SendOOBRequest(*core_, JID, description, url);
}
void cSession::SendOOBComplete(StringView JID) { quorix::SendOOBComplete(*core_, JID); }

// -- What a JID is --

eItemType cSession::FindItemType(StringView jid) { return core_->FindItemType(jid); }

std::shared_ptr<SessionLink> LinkOf(const std::shared_ptr<cSession>& session) {
    if (!session) return nullptr;
    return {session, session->core_};
}

}  // namespace quorix
