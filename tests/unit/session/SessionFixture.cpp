#include "tests/unit/session/SessionFixture.h"

#include <algorithm>

namespace quorix {

std::size_t EventRecorder::Count(const std::string& event) const {
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.substr(0, line.find(' ')) == event;
    }));
}

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
