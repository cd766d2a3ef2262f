// The chats that are open: with whom, what waits unread, and which one typed text goes to.
#pragma once

#include <optional>
#include <vector>

#include "quorix/base/String.h"

namespace quorix::console {

struct Chat {
    String jid;  // bare, in lower case
    bool isRoom = false;
    int unread = 0;
    bool typing = false;
    // The last message from there: who sent it and its id, both as a session takes them back.
    String lastFrom{};
    String lastId{};
};

class Chats {
public:
    // The chat with `jid`, opened when there is none yet. Resources do not count.
    Chat& With(StringView jid);
    Chat* Find(StringView jid);

    // Typed text goes there from now on, or nowhere.
    void Enter(StringView jid);
    void Leave() { current_.clear(); }
    // Forgets the chat.
    void Close(StringView jid);

    Chat* Current() { return current_.empty() ? nullptr : Find(current_); }
    const std::vector<Chat>& All() const { return chats_; }

    // A message has come: unread unless its chat is the current one.
    Chat& Received(StringView jid);
    int Unread() const;
    void NobodyTypes();

private:
    std::vector<Chat> chats_;
    String current_;
};

}  // namespace quorix::console
