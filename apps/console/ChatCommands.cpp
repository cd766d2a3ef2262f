#include "apps/console/Console.h"
#include "quorix/base/Number.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

String WireWord(Console& console, Arguments& arguments) {
    return console.Session().Convert2UTF8(arguments.Word());
}

// The parts of `text` between separators, without the blanks around them; empty parts are left out.
std::vector<String> Parts(StringView text, char16_t separator) {
    std::vector<String> parts;
    while (!text.empty()) {
        std::size_t end = std::min(text.find(separator), text.size());
        StringView part = Trim(text.substr(0, end));
        if (!part.empty()) parts.emplace_back(part);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

// -- Messages --

std::shared_ptr<cMessage> NewMessage(Console& console, Arguments& arguments) {
    auto message = console.Session().CreateMessage(WireWord(console, arguments), MSG_Chat, {}, {});
    message->AddEvent(KV_Displayed);
    message->AddEvent(KV_Composing);
    return message;
}

void Msg(Console& console, Arguments arguments) {
    auto message = NewMessage(console, arguments);
    message->Body(arguments.Rest());
    message->SendMessage();
}

// Clients without markup show the body; it is the markup without its tags.
String WithoutTags(StringView markup) {
    String text;
    bool inTag = false;
    for (char16_t c : markup) {
        if (c == u'<') inTag = true;
        if (!inTag) text += c;
        if (c == u'>') inTag = false;
    }
    return text;
}

void Markup(Console& console, Arguments arguments) {
    auto message = NewMessage(console, arguments);
    message->Body(WithoutTags(arguments.Rest()));
    message->XHTML(arguments.Rest());
    if (message->xml().find(u"<html") == String::npos)
        return console.Print(u"! The markup is not well-formed.");
    message->SendMessage();
}

void Copies(Console& console, Arguments arguments) {
    auto message = NewMessage(console, arguments);
    for (const String& jid : Parts(arguments.Word(), u','))
        message->AddCC(console.Session().Convert2UTF8(jid));
    message->Body(arguments.Rest());
    message->SendMessage();
}

void Typing(Console& console, Arguments arguments) {
    console.Chat().Typing(WireWord(console, arguments), false);
}
void Stopped(Console& console, Arguments arguments) {
    console.Chat().Typing(WireWord(console, arguments), true);
}

// -- Contacts --

// The contact of that JID, or an error on the console and null.
std::shared_ptr<cRosterItem> Contact(Console& console, Arguments& arguments) {
    std::int16_t index = console.Session().FindRosterItem(WireWord(console, arguments));
    if (index > 0) return console.Session().Roster().Item(index);
    console.Print(u"! No such contact; /roster fetches the list.");
    return nullptr;
}

void ShowRoster(Console& console, Arguments /*arguments*/) { console.Session().FetchRoster(); }

void Where(Console& console, Arguments arguments) {
    cSession& session = console.Session();
    const String jid = arguments.Word();
    session.FindPresence(jid, {}, true);  // sets the cursor to the first entry
    while (std::int32_t index = session.FindPresence(jid, {}, false)) {
        const auto item = session.Presence().Item(index);
        console.Print(Concat({u"  ", item->Resource(), u": ", Mood(*item), u", priority ",
                              ToString(item->Priority()), u" ", item->Status()}));
    }
}

void Add(Console& console, Arguments arguments) {
    auto contact = console.Session().CreateRosterItem();
    contact->JID(WireWord(console, arguments));
    contact->NickName(arguments.Rest());
    contact->Add();
    console.Session().SendPresence(contact->JID(), KV_Subscribe, {});
}

void Rename(Console& console, Arguments arguments) {
    auto contact = Contact(console, arguments);
    if (!contact) return;
    contact->NickName(arguments.Rest());
    contact->Add();
}

void Regroup(Console& console, Arguments arguments) {
    auto contact = Contact(console, arguments);
    if (!contact) return;
    contact->RemoveAllGroups();
    for (const String& group : Parts(arguments.Rest(), u';')) {
        if (!contact->inGroup(group)) contact->AddGroup(group);
    }
    contact->Add();
}

void Remove(Console& console, Arguments arguments) {
    auto contact = Contact(console, arguments);
    if (!contact) return;
    contact->Subscription(KV_Remove);
    contact->Update();
}

void Give(Console& console, Arguments arguments) {
    auto message = console.Session().CreateMessage(WireWord(console, arguments), MSG_Normal, {}, {});
    while (!arguments.Empty()) {
        auto contact = Contact(console, arguments);
        if (!contact) return;
        message->AddRoster(contact);
    }
    message->SendMessage();
}

// -- Presence --

template <eSubType kind>
void Direct(Console& console, Arguments arguments) {
    String jid = WireWord(console, arguments);
    console.Session().SendPresence(jid, kind, arguments.Rest());
}

template <eShowType show>
void Appear(Console& console, Arguments arguments) {
    console.Session().ShowType(show);
    console.Session().Status(arguments.Rest());
    console.Session().SendMyPresence();
}

void Priority(Console& console, Arguments arguments) {
    console.Session().Priority(WireInt16(arguments.Word()));
    console.Session().SendMyPresence();
}

void Invisible(Console& console, Arguments /*arguments*/) {
    console.Session().SendPresence({}, KV_Invisible, {});
}

}  // namespace

const std::vector<Command>& ChatCommands() {
    static const std::vector<Command> commands{
        {u"/msg", u"JID TEXT", u"sends a message", Msg},
        {u"/xhtml", u"JID MARKUP", u"sends a message with formatted text", Markup},
        {u"/cc", u"JID JID,JID TEXT", u"sends a message, and copies of it to others", Copies},
        {u"/typing", u"JID", u"tells who wrote to you that you are typing an answer", Typing},
        {u"/stopped", u"JID", u"takes that back", Stopped},
        {u"/roster", u"", u"fetches and lists the contacts", ShowRoster},
        {u"/where", u"JID", u"lists where somebody is online", Where},
        {u"/add", u"JID [NAME]", u"adds a contact and asks to see it", Add},
        {u"/rename", u"JID NAME", u"renames a contact", Rename},
        {u"/groups", u"JID [GROUP; GROUP]", u"puts a contact in these groups only", Regroup},
        {u"/remove", u"JID", u"deletes a contact", Remove},
        {u"/give", u"JID CONTACT ...", u"sends contacts to somebody", Give},
        {u"/subscribe", u"JID [TEXT]", u"asks to see when somebody is there", Direct<KV_Subscribe>},
        {u"/unsubscribe", u"JID", u"no longer wants to see that", Direct<KV_UnSubscribe>},
        {u"/accept", u"JID", u"lets somebody see when you are there", Direct<KV_Subscribe_Accept>},
        {u"/deny", u"JID [TEXT]", u"does not let somebody see that, or no longer", Direct<KV_Subscribe_Deny>},
        {u"/presence", u"[TEXT]", u"tells the contacts that you are there, with a status text",
         Appear<KV_None>},
        {u"/free", u"[TEXT]", u"... and want to talk", Appear<KV_chat>},
        {u"/away", u"[TEXT]", u"... but away", Appear<KV_Away>},
        {u"/xa", u"[TEXT]", u"... but away for long", Appear<KV_ExtendedAway>},
        {u"/dnd", u"[TEXT]", u"... but busy", Appear<KV_DND>},
        {u"/invisible", u"", u"hides you from the contacts, where the server knows how", Invisible},
        {u"/priority", u"NUMBER", u"the highest of your resources gets what is sent to you", Priority},
    };
    return commands;
}

}  // namespace quorix::console
