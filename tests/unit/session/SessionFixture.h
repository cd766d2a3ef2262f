// A session on the deterministic environment, and a record of what it raises.
#pragma once

#include <gtest/gtest.h>

#include "testkit/DeterministicEnvironment.h"
#include "testkit/EventRecorder.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {

using testkit::EventRecorder;
using testkit::Lines;

// What the session sends first, to the server "s".
inline const std::string kHeader =
    "<stream:stream to='s' xmlns='jabber:client' xmlns:stream='http://etherx.jabber.org/streams'>";
inline const std::string kFieldsQuery =
    "<iq type='get' to='s' id='KV_1'><query xmlns='jabber:iq:auth'><username>u</username></query></iq>";

class SessionTest : public ::testing::Test {
protected:
    SessionTest();

    // To the point where the stream is open, with the id "s1", and the fields query has been sent.
    void OpenStream(bool newUser = false);
    // To the point where the login was accepted; the record is then empty, and the next id is KV_2.
    void LogIn();
    void Say(std::string_view bytes);
    // The events of what has been said, when nothing else was recorded.
    Lines Raised(std::string_view bytes);
    std::string Heard() { return env.Peer().TakeHeard(); }
    std::shared_ptr<cGroupChat> Join(StringView jid, StringView nickname);

    testkit::DeterministicEnvironment env;
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<EventRecorder> events = std::make_shared<EventRecorder>();
};

// Logged in from the start.
class LoggedIn : public SessionTest {
protected:
    LoggedIn() { LogIn(); }
};

}  // namespace quorix
