// Asks for a server that nobody runs: 0 when the session says so by an event.
#include <memory>

#include "quorix/platform/MessageLoop.h"
#include "quorix/session/cSession.h"

struct Listener : quorix::SessionEvents {
    void OnSocketError(const quorix::NodePtr& /*XMLElement*/, quorix::StringView /*Description*/,
                       std::int16_t /*Code*/) override {
        heard = true;
    }
    bool heard = false;
};

int main() {
    auto session = quorix::cSession::Create();
    auto listener = std::make_shared<Listener>();
    session->Advise(listener);
    session->Reconnect(false);
    session->ServerAddress(u"localhost");
    session->Port(1);
    session->Connect();
    if (session->Roster().Count() + session->Agents().Count() + session->Rooms().Count() != 0) return 1;
    for (int round = 0; round < 1000 && !listener->heard; ++round) quorix::MessageLoop::DoEvents();
    return listener->heard ? 0 : 1;
}
