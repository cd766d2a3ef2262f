#include "tests/unit/session/SessionFixture.h"

namespace quorix {

SessionTest::SessionTest() {
    session->Advise(events);
    session->ServerAddress(u"s");
    session->Port(5222);
    session->username(u"u");
    session->Password(u"p");
    session->Resource(u"r");
}

void SessionTest::Say(std::string_view bytes) {
    env.Peer().Say(bytes);
    env.DoEvents();
}

void SessionTest::OpenStream() {
    session->Connect();
    env.DoEvents();
    Say("<stream:stream id='s1' from='s' xmlns='jabber:client'>");
}

void SessionTest::LogIn() {
    OpenStream();
    Say("<iq type='result' id='kv_login'/>");
    Heard();
    *events = EventRecorder();
}

}  // namespace quorix
