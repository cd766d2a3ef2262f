// Messages: shows those that arrive, sends those that are typed, and reports what was displayed.
#pragma once

#include <memory>

#include "apps/console/Chats.h"
#include "apps/console/Desk.h"

namespace quorix::console {

class ChatDesk : public Desk {
public:
    using Desk::Desk;

    Chats& All() { return chats_; }

    // A message that asks for reports; text and addresses as typed.
    std::shared_ptr<cMessage> NewMessage(StringView jid);
    // To a person, or to a room that a chat is open with.
    void Send(StringView jid, StringView text);
    // Tells who wrote last from `jid` that an answer is being typed, or no longer.
    void Typing(StringView jid, bool stopped);

    void OnMessage(const std::shared_ptr<cMessage>& Message) override;
    void OnMessageEvent(bool NoBody, std::int32_t EventKind, StringView FromJid) override;
    void OnError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                 StringView ErrorDescription) override;
    void OnDisConnected() override;

private:
    void ShowReport(std::int32_t eventKind, StringView fromJid);
    void ShowMessage(cMessage& message, const String& from);

    Chats chats_;
};

}  // namespace quorix::console
