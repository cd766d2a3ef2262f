#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"

namespace quorix::console {

namespace {

// The contact of that JID, or an error on the console and null.
std::shared_ptr<cRosterItem> Contact(Console& console, StringView jid) {
    const std::int16_t index = console.Session().FindRosterItem(Encoded(console.Session(), jid));
    if (index > 0) return console.Session().Roster().Item(index);
    console.Fail(String(jid), u"no such contact; /roster fetches the list");
    return nullptr;
}

void ShowRoster(Console& console, const Words& /*values*/) { console.Contacts().Fetch(true); }

void Where(Console& console, const Words& values) {
    cSession& session = console.Session();
    bool isOnline = false;
    session.FindPresence(values[0], {}, true);  // sets the cursor to the first entry
    while (const std::int32_t index = session.FindPresence(values[0], {}, false)) {
        const auto item = session.Presence().Item(index);
        isOnline = true;
        console.Show("where", {{"resource", item->Resource()},
                               {"show", Mood(*item)},
                               {"priority", item->Priority()},
                               {"status", item->Status()}});
    }
    if (!isOnline) console.Notice("Not online, or not seen by you.");
}

void Add(Console& console, const Words& values) {
    auto contact = console.Session().CreateRosterItem();
    contact->JID(Encoded(console.Session(), values[0]));
    contact->NickName(values[1]);
    contact->Add();
    console.Session().SendPresence(contact->JID(), KV_Subscribe, {});
}

void Rename(Console& console, const Words& values) {
    auto contact = Contact(console, values[0]);
    if (!contact) return;
    contact->NickName(values[1]);
    contact->Add();
}

void Regroup(Console& console, const Words& values) {
    auto contact = Contact(console, values[0]);
    if (!contact) return;
    contact->RemoveAllGroups();
    for (const String& group : Parts(values[1], u';')) {
        if (!contact->inGroup(group)) contact->AddGroup(group);
    }
    contact->Add();
}

void Remove(Console& console, const Words& values) {
    auto contact = Contact(console, values[0]);
    if (!contact) return;
    contact->Subscription(KV_Remove);
    contact->Update();
}

void Give(Console& console, const Words& values) {
    auto message = console.Session().CreateMessage(Encoded(console.Session(), values[0]), MSG_Normal, {}, {});
    for (const String& jid : Parts(values[1], u' ')) {
        auto contact = Contact(console, jid);
        if (!contact) return;
        message->AddRoster(contact);
    }
    message->SendMessage();
}

}  // namespace

std::span<const Command> ContactCommands() {
    static constexpr Command kCommands[] = {
        {"/roster", "", "fetches and lists the contacts", ShowRoster, Command::kAsks},
        {"/where", "JID", "lists where somebody is online", Where},
        {"/add", "JID [NAME]", "adds a contact and asks to see it", Add},
        {"/rename", "JID NAME", "renames a contact", Rename},
        {"/groups", "JID [GROUPS]", "puts a contact in these groups only", Regroup},
        {"/remove", "JID", "deletes a contact", Remove, 0,
         "This ends what both of you see of each other. Delete the contact?"},
        {"/give", "JID CONTACTS", "sends contacts to somebody", Give},
    };
    return kCommands;
}

}  // namespace quorix::console
