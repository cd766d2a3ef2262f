// Somebody with a session on a server, a record of its events, and a loop that waits for them.
#pragma once

#include <algorithm>

#include "quorix/session/cSession.h"
#include "testkit/EventRecorder.h"
#include "tests/real/Servers.h"

namespace quorix::real {

using testkit::EventRecorder;
using testkit::Lines;

// The first of `lines` that begins so.
inline Lines::const_iterator Find(const Lines& lines, const std::string& start) {
    return std::find_if(lines.begin(), lines.end(),
                        [&](const std::string& line) { return line.rfind(start, 0) == 0; });
}

// Whether a text is anywhere in `lines`.
inline bool Holds(const Lines& lines, const std::string& text) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

class Person {
public:
    // The account need not exist; see Join. The login is the strongest that the server offers.
    Person(int port, StringView name, StringView resource);
    ~Person();

    cSession* operator->() const { return session_.get(); }
    EventRecorder& Events() const { return *events_; }

    // Each of these runs the message loop, and tells whether it came to pass within ten seconds.

    // Logged in, with the roster, and available; the first creates the account.
    bool Join() { return Connect(true) && Appear(); }
    bool Return() { return Connect(false) && Appear(); }
    bool Await(const std::function<bool()>& condition) const;
    bool AwaitEvent(const std::string& event, std::size_t count = 1) const;
    // Waits for an event of chat that begins so, and forgets everything up to it.
    bool Sees(const std::string& start);
    // Everything that was sent before has been answered when this returns.
    bool Settle();

    bool HasSeen(const std::string& start) const { return Find(log->lines, start) != log->lines.end(); }
    std::shared_ptr<cRosterItem> Contact(const Person& other) const;

    const String jid;
    // What has not been seen yet; Events() keeps everything.
    const std::shared_ptr<EventRecorder> log = std::make_shared<EventRecorder>();

private:
    bool Connect(bool isNew);
    bool Appear();

    std::shared_ptr<cSession> session_ = cSession::Create();
    std::shared_ptr<EventRecorder> events_ = std::make_shared<EventRecorder>();
};

}  // namespace quorix::real
