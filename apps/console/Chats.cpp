#include "apps/console/Chats.h"

#include <algorithm>
#include <numeric>

#include "quorix/base/Jid.h"

namespace quorix::console {

namespace {

// Strangers could open chats without end.
constexpr std::size_t kMaxChats = 1000;

String Key(StringView jid) { return ToLower(RemoveResource(jid)); }

}  // namespace

Chat* Chats::Find(StringView jid) {
    const String key = Key(jid);
    auto found =
        std::find_if(chats_.begin(), chats_.end(), [&](const Chat& chat) { return chat.jid == key; });
    return found == chats_.end() ? nullptr : &*found;
}

Chat& Chats::With(StringView jid) {
    if (Chat* chat = Find(jid)) return *chat;
    if (chats_.size() >= kMaxChats) chats_.erase(chats_.begin());
    return chats_.emplace_back(Chat{Key(jid)});
}

void Chats::Enter(StringView jid) {
    With(jid).unread = 0;
    current_ = Key(jid);
}

void Chats::Close(StringView jid) {
    const String key = Key(jid);
    std::erase_if(chats_, [&](const Chat& chat) { return chat.jid == key; });
    if (current_ == key) current_.clear();
}

Chat& Chats::Received(StringView jid) {
    Chat& chat = With(jid);
    chat.typing = false;
    if (chat.jid != current_) ++chat.unread;
    return chat;
}

void Chats::NobodyTypes() {
    for (Chat& chat : chats_) chat.typing = false;
}

int Chats::Unread() const {
    return std::accumulate(chats_.begin(), chats_.end(), 0,
                           [](int sum, const Chat& chat) { return sum + chat.unread; });
}

}  // namespace quorix::console
