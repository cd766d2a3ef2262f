#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

void ListRooms(Console& console, const Words& values) {
    console.Session().BrowseChatServer(values[0], console.Session().GetNextID());
}

void LookIntoRoom(Console& console, const Words& values) {
    console.Session().BrowseChatRoom(values[0], console.Session().GetNextID());
}

void Join(Console& console, const Words& values) { console.Rooms().Join(values[0], values[1]); }
void Leave(Console& console, const Words& values) { console.Rooms().Leave(values[0]); }

void Say(Console& console, const Words& values) {
    if (!console.Rooms().Room(values[0])) return;
    console.Session()
        .CreateMessage(Encoded(console.Session(), values[0]), MSG_GroupChat, values[1], {})
        ->SendMessage();
}

void SetNick(Console& console, const Words& values) {
    auto room = console.Rooms().Room(values[0]);
    if (room) console.Session().ChangeGCNickName(room, Inserted(console.Session(), values[1]));
}

void Invite(Console& console, const Words& values) {
    const cSession& session = console.Session();
    console.Session().SendGCInvite10(Inserted(session, values[0]), Inserted(session, values[1]));
}

}  // namespace

std::span<const Command> RoomCommands() {
    static constexpr Command kCommands[] = {
        {"/rooms", "JID", "lists the rooms of a conference server", ListRooms, Command::kAsks},
        {"/look", "ROOM", "lists who is in a room", LookIntoRoom, Command::kAsks},
        {"/join", "ROOM NICK", "enters a room, or changes the nickname by entering again", Join,
         Command::kAsks},
        {"/leave", "ROOM", "leaves a room", Leave},
        {"/say", "ROOM TEXT", "says something to a room", Say},
        {"/nick", "ROOM NICK", "asks a room of the old kind for another nickname", SetNick},
        {"/invite", "JID ROOM", "invites somebody to a room", Invite},
    };
    return kCommands;
}

}  // namespace quorix::console
