// A gateway in outline: an account that carries messages to another network and back. Who writes "NAME: TEXT" to it
// has TEXT delivered to NAME over there; what NAME answers comes back the same way.
#include <map>

#include "examples/Example.h"

using namespace example;

// Stands for the other network. A real one has a connection of its own, in the same loop or in a thread of its own.
class OtherNetwork {
public:
    using Deliver = std::function<void(StringView user, StringView name, StringView text)>;

    explicit OtherNetwork(Deliver deliver) : deliver_(std::move(deliver)) {}

    void Send(StringView user, StringView name, StringView text) {
        waiting_.push_back({String(user), String(name), Concat({u"I have read: ", text})});
        answer_.Start(100, [this] { Answer(); });
    }

private:
    struct Letter {
        String user, name, text;
    };

    void Answer() {
        answer_.Stop();
        for (const Letter& letter : std::exchange(waiting_, {})) deliver_(letter.user, letter.name, letter.text);
    }

    Deliver deliver_;
    std::vector<Letter> waiting_;
    Timer answer_;
};

class Gateway : public SessionEvents {
public:
    explicit Gateway(cSession& session) : session_(session) {}

    void OnAuthorized() override {
        session_.FetchRoster();
        session_.SendMyPresence();
    }
    void OnSubscriptionRequest(StringView from, std::int32_t, StringView) override {
        session_.SendPresence(from, KV_Subscribe_Accept, u"");
    }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        const String body = message->Body();
        const std::size_t colon = body.find(u": ");
        if (colon == String::npos) return Tell(message->FromJid(), u"Write NAME: TEXT");
        network_.Send(message->FromJid(), body.substr(0, colon), body.substr(colon + 2));
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    // Between two connections nothing can be sent: a real gateway keeps what comes until the next OnAuthorized.
    void Tell(StringView user, StringView text) {
        if (session_.Active()) session_.CreateMessage(user, MSG_Chat, text, u"")->SendMessage();
    }

    cSession& session_;
    OtherNetwork network_{
        [this](StringView user, StringView name, StringView text) { Tell(user, Concat({name, u": ", text})); }};
};

int main(int count, char** values) {
    const auto session = SessionOf(Arguments(count, values, "HOST PORT USER PASSWORD"), u"gateway");
    session->Advise(std::make_shared<Gateway>(*session));
    session->Connect();
    return Run();
}
