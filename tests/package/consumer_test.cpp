// A session's login against a server in the same process, without a socket or a wait: 0 when it succeeds.
#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/LoopbackServer.h"

using namespace quorix;

int main() {
    testkit::DeterministicEnvironment environment;
    Environment::Use use(environment);
    auto server = testkit::LoopbackServer::Create();
    server->AddAccount(u"romeo", {.password = u"balcony"});

    auto session = cSession::Create();
    session->Mode(KV_Modern);
    session->ServerAddress(testkit::LoopbackServer::kDomain);
    session->Port(static_cast<std::int16_t>(server->Start()));
    session->username(u"romeo");
    session->Password(u"balcony");
    session->Resource(u"test");
    session->Connect();
    environment.DoEvents();
    return session->Active() ? 0 : 1;
}
