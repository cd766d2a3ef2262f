#include "apps/console/Console.h"
#include "apps/console/ServiceDesk.h"
#include "quorix/base/WireText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix::console {

namespace {

// -- The account --

void Register(Console& console, Arguments arguments) {
    cSession& session = console.Session();
    session.Disconnect();
    session.username(Wire(arguments.Word()));
    session.Password(arguments.Word());
    session.Connect(true);
}

void ChangePassword(Console& console, Arguments arguments) {
    console.Desk().ChangePassword(arguments.Word());
}

void Unregister(Console& console, Arguments /*arguments*/) { console.Session().RemoveAccount(); }

// -- Agents and searching --

void ListAgents(Console& console, Arguments /*arguments*/) { console.Session().FetchAgents(); }

void RegisterAgent(Console& console, Arguments arguments) {
    String jid = Wire(arguments.Word());
    console.Desk().Register(jid, ParseValues(arguments.Rest()));
}

std::shared_ptr<cAgentItem> Agent(Console& console, Arguments& arguments) {
    std::int16_t position = console.Session().FindAgent(Wire(arguments.Word()));
    if (position > 0) return console.Session().Agents().Item(position);
    console.Print(u"! Unknown agent; /agents fetches the list.");
    return nullptr;
}

void UnregisterAgent(Console& console, Arguments arguments) {
    if (auto agent = Agent(console, arguments)) agent->Delete();
}

void AskGateway(Console& console, Arguments arguments) {
    if (auto agent = Agent(console, arguments)) agent->QueryGateway();
}

void Search(Console& console, Arguments arguments) {
    String jid = arguments.Word();
    console.Desk().Search(jid, ParseValues(arguments.Rest()));
}

// -- Business cards --

// Written the way that servers of today look for; the answer is the same.
void ShowCard(Console& console, Arguments arguments) {
    String to = Wire(arguments.Word());
    String address = to.empty() ? String() : Concat({u" to='", to, u"'"});
    console.Session().SendXML(Concat({u"<iq type='get' id='", console.Session().GetNextID(), u"'", address,
                                      u"><vCard xmlns='vcard-temp'/></iq>"}));
}

struct CardProperty {
    StringView name;
    void (cVcard::*set)(StringView);
};

constexpr CardProperty kCard[] = {
    {u"FullName", &cVcard::FullName},
    {u"NickName", &cVcard::NickName},
    {u"Email", &cVcard::Email},
    {u"WebPage", &cVcard::WebPage},
    {u"BirthDate", &cVcard::BirthDate},
    {u"HomePhone", &cVcard::HomePhone},
    {u"HomeCity", &cVcard::HomeCity},
    {u"OrgName", &cVcard::OrgName},
    {u"Description", &cVcard::Description},
};

void PublishCard(Console& console, Arguments arguments) {
    auto card = std::make_shared<cVcard>();
    for (const auto& [name, value] : ParseValues(arguments.Rest())) {
        for (const CardProperty& property : kCard) {
            if (EqualsIgnoringCase(property.name, name)) ((*card).*property.set)(value);
        }
    }
    console.Session().UpdateVcard(card);
}

// -- Rooms --

void ListRooms(Console& console, Arguments arguments) {
    console.Session().BrowseChatServer(arguments.Word(), console.Session().GetNextID());
}

void LookIntoRoom(Console& console, Arguments arguments) {
    console.Session().BrowseChatRoom(arguments.Word(), console.Session().GetNextID());
}

void Join(Console& console, Arguments arguments) {
    String room = arguments.Word();
    console.Desk().Join(room, arguments.Rest());
}

void Leave(Console& console, Arguments arguments) { console.Desk().Leave(arguments.Word()); }

void Say(Console& console, Arguments arguments) {
    String room = console.Session().Convert2UTF8(arguments.Word());
    console.Session().CreateMessage(room, MSG_GroupChat, arguments.Rest(), {})->SendMessage();
}

void SetNick(Console& console, Arguments arguments) {
    auto room = console.Desk().Room(arguments.Word());
    if (room) console.Session().ChangeGCNickName(room, Wire(arguments.Rest()));
}

void Invite(Console& console, Arguments arguments) {
    String jid = Wire(arguments.Word());
    console.Session().SendGCInvite10(jid, Wire(arguments.Word()));
}

// -- Questions, storage, offers --

void AskVersion(Console& console, Arguments arguments) {
    console.Session().SendVersionRequest(Wire(arguments.Word()));
}

void AskTime(Console& console, Arguments arguments) {
    console.Session().SendTimeRequest(Wire(arguments.Word()));
}

void AskLast(Console& console, Arguments arguments) {
    console.Session().SendLastSeenRequest(Wire(arguments.Word()));
}

void Private(Console& console, Arguments arguments) {
    cSession& session = console.Session();
    String xmlns = Wire(arguments.Word());
    if (!arguments.Empty()) return session.StorePrivateData(xmlns, Wire(arguments.Rest()));
    session.getPrivateData(xmlns);  // error 5 for a namespace that cannot be stored under
    StringView name = StringView(xmlns).substr(0, xmlns.find(u':'));
    session.SendXML(
        Concat({u"<iq type='get' id='", session.GetNextID(), u"'><query xmlns='jabber:iq:private'><", name,
                u" xmlns='", xmlns, u"'/></query></iq>"}));
}

void Offer(Console& console, Arguments arguments) {
    String jid = Wire(arguments.Word());
    String url = XmlEscape(arguments.Word());
    console.Session().SendOOBRequest(jid, XmlEscape(arguments.Rest()), url);
}

void Fetched(Console& console, Arguments arguments) {
    console.Session().SendOOBComplete(Wire(arguments.Word()));
}

}  // namespace

const std::vector<Command>& ServiceCommands() {
    static const std::vector<Command> commands{
        {u"/register", u"USER PASSWORD", u"creates an account on this server and goes on with it", Register},
        {u"/passwd", u"PASSWORD", u"changes the password of the account", ChangePassword},
        {u"/unregister", u"", u"removes the account for good", Unregister},
        {u"/agents", u"", u"lists the server's agents", ListAgents},
        {u"/agent", u"JID [NAME=VALUE; ...]", u"shows an agent's registration form, or registers",
         RegisterAgent},
        {u"/unagent", u"JID", u"unregisters from an agent", UnregisterAgent},
        {u"/gateway", u"JID", u"asks a gateway what it needs", AskGateway},
        {u"/search", u"JID [FIELD=VALUE; ...]", u"shows a search form, or searches", Search},
        {u"/vcard", u"[JID]", u"shows a business card, your own without JID", ShowCard},
        {u"/publish", u"FIELD=VALUE; ...", u"publishes your card (FullName, NickName, Email, ...)",
         PublishCard},
        {u"/rooms", u"SERVER", u"lists the rooms of a conference server", ListRooms},
        {u"/look", u"ROOM", u"lists who is in a room", LookIntoRoom},
        {u"/join", u"ROOM NICK", u"enters a room, or changes the nickname by entering again", Join},
        {u"/leave", u"ROOM", u"leaves a room", Leave},
        {u"/say", u"ROOM TEXT", u"says something to a room", Say},
        {u"/nick", u"ROOM NICK", u"asks a room of the old kind for another nickname", SetNick},
        {u"/invite", u"JID ROOM", u"invites somebody to a room", Invite},
        {u"/version", u"JID", u"asks for the software and its version", AskVersion},
        {u"/time", u"JID", u"asks for the local time", AskTime},
        {u"/last", u"JID", u"asks how long somebody has been idle or away", AskLast},
        {u"/private", u"NAMESPACE [TEXT]", u"shows what is stored on the server, or stores TEXT", Private},
        {u"/offer", u"JID URL [TEXT]", u"offers a file by its address", Offer},
        {u"/fetched", u"JID", u"tells that an offered file has been fetched", Fetched},
    };
    return commands;
}

}  // namespace quorix::console
