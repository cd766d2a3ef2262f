// A session on a real server, with a record of its events, and a loop that waits for them.
#pragma once

#include <functional>
#include <string>

#include "quorix/session/cSession.h"
#include "testkit/EventRecorder.h"
#include "tests/real/Servers.h"

namespace quorix::real {

using testkit::EventRecorder;
using testkit::Lines;

class Client {
public:
    // The account need not exist; see CreateAccount. The login is the strongest that the server offers.
    Client(const RealServer& server, StringView username, StringView resource);
    ~Client();

    cSession& operator*() const { return *session_; }
    cSession* operator->() const { return session_.get(); }
    EventRecorder& Events() const { return *events_; }

    // Each runs the message loop, and tells whether it came to pass within ten seconds.
    bool CreateAccount();
    bool LogIn();
    bool Await(const std::function<bool()>& condition) const;
    bool AwaitEvent(const std::string& event, std::size_t count = 1) const;
    bool AwaitLine(const std::string& line) const;

    // Whether a request with `text` in it went out.
    bool Sent(const std::string& text) const;

private:
    std::shared_ptr<cSession> session_ = cSession::Create();
    std::shared_ptr<EventRecorder> events_ = std::make_shared<EventRecorder>();
};

}  // namespace quorix::real
