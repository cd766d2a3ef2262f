// Many sessions on one thread, each with a resource of its own: each writes to the next, and when all have heard
// from the one before, the program ends with 0. Ends with 1 when that takes more than 60 seconds.
#include "examples/Example.h"

using namespace example;

// What all of them share.
struct Ring {
    std::vector<std::shared_ptr<cSession>> sessions;
    std::size_t loggedIn = 0;
    std::size_t heard = 0;

    void AllAreIn() const {
        Say({ToString(static_cast<int>(loggedIn)), u" sessions are logged in"});
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            const cSession& next = *sessions[(i + 1) % sessions.size()];
            const String jid = Concat({next.MyJid(), u"/", next.Resource()});
            sessions[i]->CreateMessage(jid, MSG_Chat, u"Pass it on.", u"")->SendMessage();
        }
    }
    void AllHaveHeard() const {
        Say({u"each has heard from another"});
        for (const auto& session : sessions) session->Disconnect();
        Finish(0);
    }
};

class Member : public SessionEvents {
public:
    explicit Member(Ring& ring) : ring_(ring) {}

    void OnAuthorized() override {
        if (++ring_.loggedIn == ring_.sessions.size()) ring_.AllAreIn();
    }
    void OnMessage(const std::shared_ptr<cMessage>&) override {
        if (++ring_.heard == ring_.sessions.size()) ring_.AllHaveHeard();
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

    // Nobody here looks at the traffic itself; saying so spares the making of its text.
    bool WantsWireText() const override { return false; }

private:
    Ring& ring_;
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD COUNT");
    Ring ring;
    const auto member = std::make_shared<Member>(ring);
    for (int i = std::stoi(Utf8FromText(arguments[4])); i > 0; --i) {
        ring.sessions.push_back(SessionOf(arguments, Concat({u"member-", ToString(i)})));
        ring.sessions.back()->Advise(member);
    }
    for (const auto& session : ring.sessions) session->Connect();
    return Run(60);
}
