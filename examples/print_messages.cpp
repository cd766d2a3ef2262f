#include <iostream>
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/session/cSession.h"
using namespace quorix;

struct Printer : SessionEvents {
    explicit Printer(cSession& its) : session(its) {}
    void OnAuthorized() override { session.SendMyPresence(); }
    void OnMessage(const std::shared_ptr<cMessage>& m) override {
        std::cout << Utf8FromText(m->FromJid()) << ": " << Utf8FromText(m->Body()) << std::endl;
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Complain(why); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Complain(why); }
    void Complain(StringView why) { std::cerr << Utf8FromText(why) << std::endl; }
    cSession& session;
};

int main(int count, char** values) {  // HOST PORT USER PASSWORD
    if (count != 5) return 2;
    auto session = cSession::Create();
    session->Mode(KV_Modern);
    session->Advise(std::make_shared<Printer>(*session));
    session->ServerAddress(TextFromUtf8(values[1]));
    session->Port(static_cast<std::int16_t>(std::stoi(values[2])));
    session->username(TextFromUtf8(values[3]));
    session->Password(TextFromUtf8(values[4]));
    session->Resource(u"printer");
    session->Connect();
    MessageLoop::Run();
}
