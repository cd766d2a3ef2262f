#include "quorix/auth/cAuth.h"
#include "quorix/automation/Collections.h"
#include "quorix/automation/SetSession.h"
#include "quorix/automation/tables/SessionRelay.h"

namespace quorix::automation {

namespace {

using T = cSession;

auto RosterOf(const std::shared_ptr<T>& session) {
    return PartOf<Shared<cRosterItem>>(session, session->Roster());
}
auto PresenceOf(const std::shared_ptr<T>& session) {
    return PartOf<Shared<cPresenceItem>>(session, session->Presence());
}

auto AgentsOf(const std::shared_ptr<T>& session) {
    return PartOf<Shared<cAgentItem>>(session, session->Agents());
}

auto RoomsOf(const std::shared_ptr<T>& session) {
    return PartOf<Shared<cGroupChat>>(session, session->Rooms());
}

// There is no answer to return: the server's comes later, if at all.
Variant GetPrivateData(T& session, StringView nameSpace) {
    session.getPrivateData(nameSpace);
    return {};
}

}  // namespace

template <>
const ClassTable& TableOf<cSession>() {
    static const auto table =
        Class<T>(L"cSession")
            .Creatable(&T::Create)
            .Raises<SessionRelay>()
            .Property(L"Mode", &T::Mode, &T::Mode)
            .Property(L"ServerAddress", &T::ServerAddress, &T::ServerAddress)
            .Property(L"username", &T::username, &T::username)
            .Property(L"Password", &T::Password, &T::Password)
            .Property(L"Resource", &T::Resource, &T::Resource)
            .Property(L"Port", &T::Port, &T::Port)
            .Property(L"ConnectHost", &T::ConnectHost, &T::ConnectHost)
            .Property(L"LoginTimeout", &T::LoginTimeout, &T::LoginTimeout)
            .Property(L"MaxStanzaSize", &T::MaxStanzaSize, &T::MaxStanzaSize)
            .Property(L"UseSSL", &T::UseSSL, &T::UseSSL)
            .Property(L"Priority", &T::Priority, &T::Priority)
            .Property(L"available", &T::available, &T::available)
            .Property(L"Status", &T::Status, &T::Status)
            .Property(L"ShowType", &T::ShowType, &T::ShowType)
            .Property(L"AuthType", &T::AuthType, &T::AuthType)
            .Property(L"KeepAlive", &T::KeepAlive, &T::KeepAlive)
            .Property(L"KeepAliveInterval", &T::KeepAliveInterval, &T::KeepAliveInterval)
            .Property(L"Reconnect", &T::Reconnect, &T::Reconnect)
            .Property(L"ReconnectAttempts", &T::ReconnectAttempts, &T::ReconnectAttempts)
            .Property(L"ReconnectInterval", &T::ReconnectInterval, &T::ReconnectInterval)
            .Property(L"ProxyType", &T::ProxyType, &T::ProxyType)
            .Property(L"ProxyHostname", &T::ProxyHostname, &T::ProxyHostname)
            .Property(L"ProxyPort", &T::ProxyPort, &T::ProxyPort)
            .Property(L"ProxyUsername", &T::ProxyUsername, &T::ProxyUsername)
            .Property(L"ProxyPassword", &T::ProxyPassword, &T::ProxyPassword)
            .Property(L"ProxyAuthentication", &T::ProxyAuthentication, &T::ProxyAuthentication)
            .Property(L"ProxyUseRemoteDNS", &T::ProxyUseRemoteDNS, &T::ProxyUseRemoteDNS)
            .Get(L"ReconnectDelay", &T::ReconnectDelay)
            .Get(L"SessionID", &T::SessionID)
            .Get(L"digest", &T::digest)
            .Get(L"Sequence", &T::Sequence)
            .Get(L"Token", &T::Token)
            .Get(L"Active", &T::Active)
            .Get(L"MyJid", &T::MyJid)
            .Get(L"LocalIP", &T::LocalIP)
            .Get(L"GetCurrentID", &T::GetCurrentID)
            .Get(L"GetNextID", &T::GetNextID)
            .Get(L"Roster", &RosterOf)
            .Get(L"Presence", &PresenceOf)
            .Get(L"Agents", &AgentsOf)
            .Get(L"Rooms", &RoomsOf)
            .Get(L"Socket", &T::Socket)
            .Get(L"SearchFields", &T::SearchFields)
            .Get(L"Searchresults", &T::Searchresults)
            .Get(L"SearchXData", &T::SearchXData)
            .Method(L"Connect", &T::Connect)
            .Method(L"Disconnect", &T::Disconnect)
            .Method(L"SendXML", &T::SendXML)
            .Method(L"Convert2UTF8", &T::Convert2UTF8)
            .Method(L"Convert2Unicode", &T::Convert2Unicode)
            .Method(L"ChangePassword", &T::ChangePassword)
            .Method(L"RemoveAccount", &T::RemoveAccount)
            .Method(L"CreateMessage", &T::CreateMessage)
            .Method(L"SendEvent", &T::SendEvent, 1)
            .Method(L"SendMyPresence", &T::SendMyPresence)
            .Method(L"SendPresence", &T::SendPresence)
            .Method(L"FindPresence", &T::FindPresence)
            .Method(L"RemoveResource", &T::RemoveResource)
            .Method(L"GetResource", &T::GetResource)
            .Method(L"FetchRoster", &T::FetchRoster)
            .Method(L"CreateRosterItem", &T::CreateRosterItem)
            .Method(L"FindRosterItem", &T::FindRosterItem)
            .Method(L"ParseReceiveRoster", &T::ParseReceiveRoster)
            .Method(L"FetchAgents", &T::FetchAgents)
            .Method(L"FindAgent", &T::FindAgent)
            .Method(L"GetAgentRegister", &T::GetAgentRegister)
            .Method(L"FindItemType", &T::FindItemType)
            .Method(L"SendVCardRequest", &T::SendVCardRequest)
            .Method(L"UpdateVcard", &T::UpdateVcard)
            .Method(L"BrowseChatServer", &T::BrowseChatServer)
            .Method(L"BrowseChatRoom", &T::BrowseChatRoom)
            .Method(L"SendGroupChatRequest", &T::SendGroupChatRequest)
            .Method(L"SendGroupChatPresence", &T::SendGroupChatPresence)
            .Method(L"ChangeGCNickName", &T::ChangeGCNickName)
            .Method(L"SendGCInvite10", &T::SendGCInvite10)
            .Method(L"FindGroupChat", &T::FindGroupChat)
            .Method(L"SendVersionRequest", &T::SendVersionRequest)
            .Method(L"SendTimeRequest", &T::SendTimeRequest)
            .Method(L"SendLastSeenRequest", &T::SendLastSeenRequest)
            .Method(L"SendVersionResponse", &T::SendVersionResponse)
            .Method(L"SendTimeResponse", &T::SendTimeResponse)
            .Method(L"SendGetLastResponse", &T::SendGetLastResponse)
            .Method(L"SendOOBRequest", &T::SendOOBRequest)
            .Method(L"SendOOBComplete", &T::SendOOBComplete)
            .Method(L"StorePrivateData", &T::StorePrivateData)
            .Method(L"getPrivateData", &GetPrivateData);
    return table;
}

template <>
const ClassTable& TableOf<cAuth>() {
    using T = cAuth;
    static const auto table = Class<T>(L"cAuth")
                                  .Creatable()
                                  .Method(L"SetSession", &SetSession<T>)
                                  .Method(L"SendAuth", &T::SendAuth);
    return table;
}

}  // namespace quorix::automation
