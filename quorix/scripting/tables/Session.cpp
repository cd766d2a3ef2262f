#include "quorix/auth/cAuth.h"
#include "quorix/scripting/Collections.h"
#include "quorix/scripting/SessionEventTable.h"
#include "quorix/scripting/SetSession.h"

namespace quorix::scripting {

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
void GetPrivateData(T& session, StringView nameSpace) { session.getPrivateData(nameSpace); }

}  // namespace

template <>
// A list, one line for each member: NOLINTNEXTLINE(readability-function-size)
const ClassTable& TableOf<cSession>() {
    static const auto table =
        Class<T>("cSession")
            .Creatable(&T::Create)
            .Raises(SessionEventList(), &ListenToSession)
            .Property("Mode", &T::Mode, &T::Mode)
            .Property("ServerAddress", &T::ServerAddress, &T::ServerAddress)
            .Property("username", &T::username, &T::username)
            .Property("Password", &T::Password, &T::Password)
            .Property("Resource", &T::Resource, &T::Resource)
            .Property("Port", &T::Port, &T::Port)
            .Property("ConnectHost", &T::ConnectHost, &T::ConnectHost)
            .Property("LoginTimeout", &T::LoginTimeout, &T::LoginTimeout)
            .Property("MaxStanzaSize", &T::MaxStanzaSize, &T::MaxStanzaSize)
            .Property("UseSSL", &T::UseSSL, &T::UseSSL)
            .Property("Priority", &T::Priority, &T::Priority)
            .Property("available", &T::available, &T::available)
            .Property("Status", &T::Status, &T::Status)
            .Property("ShowType", &T::ShowType, &T::ShowType)
            .Property("AuthType", &T::AuthType, &T::AuthType)
            .Property("KeepAlive", &T::KeepAlive, &T::KeepAlive)
            .Property("KeepAliveInterval", &T::KeepAliveInterval, &T::KeepAliveInterval)
            .Property("Reconnect", &T::Reconnect, &T::Reconnect)
            .Property("ReconnectAttempts", &T::ReconnectAttempts, &T::ReconnectAttempts)
            .Property("ReconnectInterval", &T::ReconnectInterval, &T::ReconnectInterval)
            .Property("ProxyType", &T::ProxyType, &T::ProxyType)
            .Property("ProxyHostname", &T::ProxyHostname, &T::ProxyHostname)
            .Property("ProxyPort", &T::ProxyPort, &T::ProxyPort)
            .Property("ProxyUsername", &T::ProxyUsername, &T::ProxyUsername)
            .Property("ProxyPassword", &T::ProxyPassword, &T::ProxyPassword)
            .Property("ProxyAuthentication", &T::ProxyAuthentication, &T::ProxyAuthentication)
            .Property("ProxyUseRemoteDNS", &T::ProxyUseRemoteDNS, &T::ProxyUseRemoteDNS)
            .Get("ReconnectDelay", &T::ReconnectDelay)
            .Get("SessionID", &T::SessionID)
            .Get("digest", &T::digest)
            .Get("Sequence", &T::Sequence)
            .Get("Token", &T::Token)
            .Get("Active", &T::Active)
            .Get("MyJid", &T::MyJid)
            .Get("LocalIP", &T::LocalIP)
            .Get("GetCurrentID", &T::GetCurrentID)
            .Get("GetNextID", &T::GetNextID)
            .Get("Roster", &RosterOf)
            .Get("Presence", &PresenceOf)
            .Get("Agents", &AgentsOf)
            .Get("Rooms", &RoomsOf)
            .Get("Socket", &T::Socket)
            .Get("SearchFields", &T::SearchFields)
            .Get("Searchresults", &T::Searchresults)
            .Get("SearchXData", &T::SearchXData)
            .Method("Connect", &T::Connect)
            .Method("Disconnect", &T::Disconnect)
            .Method("SendXML", &T::SendXML)
            .Method("Convert2UTF8", &T::Convert2UTF8)
            .Method("Convert2Unicode", &T::Convert2Unicode)
            .Method("ChangePassword", &T::ChangePassword)
            .Method("RemoveAccount", &T::RemoveAccount)
            .Method("CreateMessage", &T::CreateMessage)
            .Method("SendEvent", &T::SendEvent, 1)
            .Method("SendMyPresence", &T::SendMyPresence)
            .Method("SendPresence", &T::SendPresence)
            .Method("FindPresence", &T::FindPresence)
            .Method("RemoveResource", &T::RemoveResource)
            .Method("GetResource", &T::GetResource)
            .Method("FetchRoster", &T::FetchRoster)
            .Method("CreateRosterItem", &T::CreateRosterItem)
            .Method("FindRosterItem", &T::FindRosterItem)
            .Method("ParseReceiveRoster", &T::ParseReceiveRoster)
            .Method("FetchAgents", &T::FetchAgents)
            .Method("FindAgent", &T::FindAgent)
            .Method("GetAgentRegister", &T::GetAgentRegister)
            .Method("FindItemType", &T::FindItemType)
            .Method("SendVCardRequest", &T::SendVCardRequest)
            .Method("UpdateVcard", &T::UpdateVcard)
            .Method("BrowseChatServer", &T::BrowseChatServer)
            .Method("BrowseChatRoom", &T::BrowseChatRoom)
            .Method("SendGroupChatRequest", &T::SendGroupChatRequest)
            .Method("SendGroupChatPresence", &T::SendGroupChatPresence)
            .Method("ChangeGCNickName", &T::ChangeGCNickName)
            .Method("SendGCInvite10", &T::SendGCInvite10)
            .Method("FindGroupChat", &T::FindGroupChat)
            .Method("SendVersionRequest", &T::SendVersionRequest)
            .Method("SendTimeRequest", &T::SendTimeRequest)
            .Method("SendLastSeenRequest", &T::SendLastSeenRequest)
            .Method("SendVersionResponse", &T::SendVersionResponse)
            .Method("SendTimeResponse", &T::SendTimeResponse)
            .Method("SendGetLastResponse", &T::SendGetLastResponse)
            .Method("SendOOBRequest", &T::SendOOBRequest)
            .Method("SendOOBComplete", &T::SendOOBComplete)
            .Method("StorePrivateData", &T::StorePrivateData)
            .Method("getPrivateData", &GetPrivateData);
    return table;
}

template <>
const ClassTable& TableOf<cAuth>() {
    static const auto table = Class<cAuth>("cAuth")
                                  .Creatable()
                                  .Method("SetSession", &SetSession<cAuth>)
                                  .Method("SendAuth", &cAuth::SendAuth);
    return table;
}

}  // namespace quorix::scripting
