// For a monitoring system: logs in, asks the server for its version, and says in one line how that went.
//
// Exit codes: 0 it works, 1 it works but took longer than SECONDS / 2, 2 it does not work, or not within SECONDS.
#include <chrono>

#include "examples/Example.h"

using namespace example;
using Clock = std::chrono::steady_clock;

class Probe : public SessionEvents {
public:
    Probe(cSession& session, std::chrono::milliseconds slow) : session_(session), slow_(slow) {}

    void OnAuthorized() override { session_.SendVersionRequest(session_.ServerAddress()); }
    void OnVersionResult(StringView, StringView name, StringView version, StringView) override {
        Works(Concat({name, u" ", version}));
    }
    // An answer is an answer, also "not implemented".
    void OnIQError(const NodePtr&, StringView, std::int16_t, StringView why) override { Works(why); }

    void OnError(const NodePtr&, StringView, std::int16_t code, StringView why) override {
        Fails({u"error ", ToString(code), u": ", why});
    }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Fails({why}); }
    void OnDisConnected() override { Fails({u"the server has closed the connection"}); }

    void Fails(std::initializer_list<StringView> why) {
        if (!ending.isReached) Say({u"CRITICAL: ", Concat(why)});
        if (!ending.isReached) Finish(2);
    }

private:
    void Works(StringView what) {
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
        const bool isSlow = took > slow_;
        Say({isSlow ? u"WARNING: " : u"OK: ", what, u" | login=", ToString(took.count()), u"ms"});
        Finish(isSlow ? 1 : 0);
        session_.Disconnect();
    }

    cSession& session_;
    const std::chrono::milliseconds slow_;
    const Clock::time_point start_ = Clock::now();
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD SECONDS");
    const int seconds = std::stoi(Utf8FromText(arguments[4]));
    const auto session = SessionOf(arguments, u"probe");
    session->Reconnect(false);
    session->LoginTimeout(seconds);
    const auto probe = std::make_shared<Probe>(*session, std::chrono::milliseconds(seconds * 500));
    session->Advise(probe);
    session->Connect();
    Timer deadline;
    deadline.Start(seconds * 1000 + 500, [&] { probe->Fails({u"no answer in time"}); });
    return Run();
}
