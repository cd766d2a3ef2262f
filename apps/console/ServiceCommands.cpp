#include <fmt/format.h>

#include <algorithm>

#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

// -- Agents and searching --

void ListAgents(Console& console, const Words& /*values*/) { console.Session().FetchAgents(); }

void RegisterAgent(Console& console, const Words& values) {
    console.Services().Register(values[0], ParseValues(values[1]));
}

std::shared_ptr<cAgentItem> Agent(Console& console, StringView jid) {
    const std::int16_t position = console.Session().FindAgent(Encoded(console.Session(), jid));
    if (position > 0) return console.Session().Agents().Item(position);
    console.Fail(String(jid), u"unknown agent; /agents fetches the list");
    return nullptr;
}

void UnregisterAgent(Console& console, const Words& values) {
    if (auto agent = Agent(console, values[0])) agent->Delete();
}

void AskGateway(Console& console, const Words& values) {
    if (auto agent = Agent(console, values[0])) agent->QueryGateway();
}

void Search(Console& console, const Words& values) {
    console.Services().Search(values[0], ParseValues(values[1]));
}

// -- Business cards --

// Written the way that servers of today look for; the answer is the same.
void ShowCard(Console& console, const Words& values) {
    cSession& session = console.Session();
    const String address = values[0].empty() ? String() : Concat({u" to='", InXml(session, values[0]), u"'"});
    session.SendXML(Concat(
        {u"<iq type='get' id='", session.GetNextID(), u"'", address, u"><vCard xmlns='vcard-temp'/></iq>"}));
}

const CardLine* FindCardLine(StringView name) {
    const auto lines = CardLines();
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const CardLine& line) {
        return EqualsIgnoringCase(TextFromUtf8(line.name), name);
    });
    return found == lines.end() ? nullptr : &*found;
}

// One wrong name spoils it: what is published replaces the whole card.
void PublishCard(Console& console, const Words& values) {
    auto card = std::make_shared<cVcard>();
    for (const auto& [name, value] : ParseValues(values[0])) {
        const CardLine* line = FindCardLine(name);
        if (line == nullptr) {
            std::string names;
            for (const CardLine& known : CardLines()) names.append(" ").append(known.name);
            return console.Usage(fmt::format("A card has no {}, but{}.", Utf8FromText(name), names));
        }
        ((*card).*line->set)(value);
    }
    console.Session().UpdateVcard(card);
}

// -- Questions, storage, offers --

template <void (cSession::*ask)(StringView)>
void Question(Console& console, const Words& values) {
    (console.Session().*ask)(Inserted(console.Session(), values[0]));
}

void Private(Console& console, const Words& values) {
    cSession& session = console.Session();
    const String xmlns = InXml(session, values[0]);
    if (!values[1].empty())
        return session.StorePrivateData(Inserted(session, values[0]), InXml(session, values[1]));
    const StringView name = StringView(xmlns).substr(0, xmlns.find(u':'));
    session.SendXML(
        Concat({u"<iq type='get' id='", session.GetNextID(), u"'><query xmlns='jabber:iq:private'><", name,
                u" xmlns='", xmlns, u"'/></query></iq>"}));
}

void Offer(Console& console, const Words& values) {
    const cSession& session = console.Session();
    console.Session().SendOOBRequest(Inserted(session, values[0]), Inserted(session, values[2]),
                                     Inserted(session, values[1]));
}

}  // namespace

std::span<const Command> ServiceCommands() {
    static constexpr Command kCommands[] = {
        {"/agents", "", "lists the server's agents", ListAgents, Command::kAsks},
        {"/agent", "JID [VALUES]", "shows an agent's registration form, or registers", RegisterAgent,
         Command::kAsks | Command::kSecret},
        {"/unagent", "JID", "unregisters from an agent", UnregisterAgent, 0,
         "This removes your registration there. Go on?"},
        {"/gateway", "JID", "asks a gateway what it needs", AskGateway, Command::kAsks},
        {"/search", "JID [VALUES]", "shows a search form, or searches", Search, Command::kAsks},
        {"/vcard", "[JID]", "shows a business card, your own without JID", ShowCard, Command::kAsks},
        {"/publish", "VALUES", "publishes your card (FullName, NickName, Email, ...)", PublishCard, 0,
         "This replaces your whole card on the server. Go on?"},
        {"/version", "JID", "asks for the software and its version", Question<&cSession::SendVersionRequest>,
         Command::kAsks},
        {"/time", "JID", "asks for the local time", Question<&cSession::SendTimeRequest>, Command::kAsks},
        {"/last", "JID", "asks how long somebody has been idle or away",
         Question<&cSession::SendLastSeenRequest>, Command::kAsks},
        {"/private", "NAMESPACE [TEXT]", "shows what is stored on the server, or stores TEXT", Private,
         Command::kAsks | Command::kSecret},
        {"/offer", "JID URL [TEXT]", "offers a file by its address", Offer},
        {"/fetched", "JID", "tells that an offered file has been fetched",
         Question<&cSession::SendOOBComplete>},
    };
    return kCommands;
}

}  // namespace quorix::console
