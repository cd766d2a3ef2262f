#include <fmt/format.h>

#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

void Msg(Console& console, const Words& values) { console.Chat().Send(values[0], values[1]); }

void Enter(Console& console, const Words& values) {
    Chats& chats = console.Chat().All();
    if (values[0].empty()) return chats.Leave();
    chats.Enter(values[0]);
    console.Notice("What you type goes to " + Utf8FromText(values[0]) + " now; /chat alone ends that.");
}

void ListChats(Console& console, const Words& values) {
    Chats& chats = console.Chat().All();
    const std::vector<Chat>& all = chats.All();
    if (!values[0].empty()) {
        const auto number = static_cast<std::size_t>(std::stoi(Utf8FromText(values[0])));
        if (number == 0 || number > all.size())
            return console.Usage("There is no chat of that number; /w lists them.");
        return Enter(console, {all[number - 1].jid});
    }
    if (all.empty()) return console.Notice("No chat is open; /chat JID opens one.");
    for (std::size_t index = 0; index < all.size(); ++index) {
        const Chat& chat = all[index];
        console.Show("chat", {{"number", index + 1},
                              {"jid", chat.jid},
                              {"_unread", chat.unread > 0 ? fmt::format(" ({} unread)", chat.unread) : ""},
                              {"_current", &chat == chats.Current() ? u" <- here" : u""},
                              {"unread", chat.unread}});
    }
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

void Markup(Console& console, const Words& values) {
    auto message = console.Chat().NewMessage(values[0]);
    message->Body(WithoutTags(values[1]));
    message->XHTML(values[1]);
    if (message->xml().find(u"<html") == String::npos) {
        return console.Fail(u"Not sent", u"the markup is not well-formed");
    }
    message->SendMessage();
}

void Copies(Console& console, const Words& values) {
    auto message = console.Chat().NewMessage(values[0]);
    for (const String& jid : Parts(values[1], u',')) message->AddCC(Encoded(console.Session(), jid));
    message->Body(values[2]);
    message->SendMessage();
}

void Typing(Console& console, const Words& values) { console.Chat().Typing(values[0], false); }
void Stopped(Console& console, const Words& values) { console.Chat().Typing(values[0], true); }

}  // namespace

std::span<const Command> ChatCommands() {
    static constexpr Command kCommands[] = {
        {"/msg", "JID TEXT", "sends a message", Msg},
        {"/chat", "[JID]", "sends what you type to somebody or a room; alone, to nobody", Enter,
         Command::kOffline},
        {"/w", "[NUMBER]", "lists the open chats and what is unread, or goes to one", ListChats,
         Command::kOffline},
        {"/xhtml", "JID MARKUP", "sends a message with formatted text", Markup},
        {"/cc", "JID JIDS TEXT", "sends a message, and copies of it to others", Copies},
        {"/typing", "JID", "tells who wrote to you that you are typing an answer", Typing},
        {"/stopped", "JID", "takes that back", Stopped},
    };
    return kCommands;
}

}  // namespace quorix::console
