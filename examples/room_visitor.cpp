// Enters a room, greets, prints what is said there, and leaves when somebody says good-bye to it.
#include "examples/Example.h"

using namespace example;

class Visitor : public SessionEvents {
public:
    Visitor(cSession& session, StringView room, StringView nickname) : session_(session) {
        room_->JID(ToLower(room));  // as presences from the room name it
        room_->NickName(nickname);
    }

    // A room is forgotten with its connection, so it is entered after each login.
    void OnAuthorized() override { session_.SendGroupChatRequest(room_, true); }

    // The room tells newcomers who is there, themselves at the end.
    void OnPresence(const std::shared_ptr<cPresenceItem>& person, bool isAvailable, StringView, std::int32_t kind,
                    const NodePtr&) override {
        if (kind != KV_GroupChatItem || person->JID() != room_->JID()) return;
        Say({person->Resource(), isAvailable ? u" is in the room" : u" has left"});
        if (isAvailable && person->Resource() == room_->NickName()) Talk(u"Hello, everybody!");
    }

    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        if (message->MSG_Type() != MSG_GroupChat || !message->HasBody()) return;
        Say({session_.GetResource(message->FromJid()), u": ", message->Body()});
        if (message->Body() == Concat({u"Bye, ", room_->NickName()})) {
            session_.SendGroupChatRequest(room_, false);
            session_.Disconnect();
            Finish(0);
        }
    }

    // Also what the room refuses: a nickname that is taken, a visitor who is not wanted.
    void OnError(const NodePtr&, StringView from, std::int16_t, StringView why) override { Say({from, u": ", why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    void Talk(StringView text) { session_.CreateMessage(room_->JID(), MSG_GroupChat, text, u"")->SendMessage(); }

    cSession& session_;
    const std::shared_ptr<cGroupChat> room_ = std::make_shared<cGroupChat>();
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD ROOM NICKNAME");
    const auto session = SessionOf(arguments, u"visitor");
    session->Advise(std::make_shared<Visitor>(*session, arguments[4], arguments[5]));
    session->Connect();
    return Run();
}
