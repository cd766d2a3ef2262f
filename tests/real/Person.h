// Somebody who chats: logged in, with the roster, available, and with a record of what is told about chat.
#pragma once

#include "tests/real/Client.h"

namespace quorix::real {

// The first of `lines` that begins so.
inline Lines::const_iterator Find(const Lines& lines, const std::string& start) {
    return std::find_if(lines.begin(), lines.end(),
                        [&](const std::string& line) { return line.rfind(start, 0) == 0; });
}

class Person : public Client {
public:
    Person(const RealServer& server, StringView name, StringView resource)
        : Client(server, name, resource), jid(Concat({name, u"@localhost"})) {
        (*this)->Reconnect(false);
        (*this)->Advise(log);
    }

    bool Join() { return Connect(true) && Appear(); }
    bool Return() { return Connect(false) && Appear(); }

    // An event that begins so; Sees waits for it and forgets everything up to it.
    bool HasSeen(const std::string& start) const { return Find(log->lines, start) != log->lines.end(); }
    bool Sees(const std::string& start) {
        if (!Await([&] { return HasSeen(start); })) return false;
        log->lines.erase(log->lines.begin(), Find(log->lines, start) + 1);
        return true;
    }

    // Everything that was sent before has been answered when this returns.
    bool Settle() {
        std::size_t before = Events().Count("OnIQ");
        (*this)->SendVersionRequest(u"localhost");
        return AwaitEvent("OnIQ", before + 1);
    }

    std::shared_ptr<cRosterItem> Contact(const Person& other) const {
        std::int16_t index = (*this)->FindRosterItem(other.jid);
        return index > 0 ? (*this)->Roster().Item(index) : nullptr;
    }

    const String jid;
    // What has not been seen yet; Events() keeps everything.
    const std::shared_ptr<EventRecorder> log = std::make_shared<EventRecorder>();

private:
    // jabberd2 names a session after the number of its socket, and ends a new one now and then when it means
    // the one that had the number before: so another attempt.
    bool Connect(bool isNew) {
        for (int attempt = 0; attempt < 3; ++attempt) {
            Events().Take();
            (*this)->Connect(isNew);
            auto loggedIn = [&] { return Events().Count("OnAuthorized") > 0; };
            std::size_t endings = isNew ? 2 : 1;  // the first ends the registration
            Await([&] { return loggedIn() || Events().Count("OnDisConnected") == endings; });
            if (loggedIn()) return true;
        }
        return false;
    }
    bool Appear() {
        (*this)->FetchRoster();
        (*this)->SendMyPresence();
        return Sees("OnRosterEnd") && Settle();
    }
};

}  // namespace quorix::real
