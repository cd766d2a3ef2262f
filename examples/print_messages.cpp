#include <iostream>
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/session/cSession.h"
using namespace quorix;

struct Printer : SessionEvents {
    void OnMessage(const std::shared_ptr<cMessage>& m) override {
        std::cout << Utf8FromText(m->FromJid()) << ": " << Utf8FromText(m->Body()) << std::endl;
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override {
        std::cerr << Utf8FromText(why) << std::endl;
    }
};

int main() {
    auto session = cSession::Create();
    session->Mode(KV_Modern);
    session->Advise(std::make_shared<Printer>());
    session->ServerAddress(u"localhost"), session->Port(5222);
    session->username(u"juliet"), session->Password(u"secret"), session->Resource(u"printer");
    session->Connect();
    MessageLoop::Run();
}
