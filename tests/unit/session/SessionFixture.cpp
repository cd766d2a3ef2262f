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

Lines SessionTest::Raised(std::string_view bytes) {
    Say(bytes);
    return events->Take();
}

void SessionTest::OpenStream(bool newUser) {
    session->Connect(newUser);
    env.DoEvents();
    Say("<stream:stream id='s1' from='s' xmlns='jabber:client'>");
}

void SessionTest::LogIn() {
    OpenStream();
    Say("<iq type='result' id='kv_login'/>");
    Heard();
    *events = EventRecorder();
}

std::shared_ptr<cGroupChat> SessionTest::Join(StringView jid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(jid);
    room->NickName(nickname);
    session->SendGroupChatRequest(room, true);
    return room;
}

}  // namespace quorix
