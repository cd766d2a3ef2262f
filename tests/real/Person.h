// Somebody who chats: logged in, with the roster, available, and with a record of what is told about chat.
#pragma once

#include <algorithm>

#include "tests/real/Client.h"
#include "tests/unit/im/EventLog.h"

namespace quorix::real {

class Person {
public:
    Person(const RealServer& server, StringView name, StringView resource)
        : jid(Concat({name, u"@localhost"})), client_(server, name, resource) {
        client_->Reconnect(false);
        client_->Advise(log);
    }

    bool Join() { return Connect(true) && Appear(); }
    bool Return() { return Connect(false) && Appear(); }

    // An event that begins so; Sees waits for it and forgets everything up to it.
    bool HasSeen(const std::string& start) const { return Find(start) != log->lines.end(); }
    bool Sees(const std::string& start) {
        if (!Await([&] { return HasSeen(start); })) return false;
        log->lines.erase(log->lines.begin(), Find(start) + 1);
        return true;
    }
    bool Await(const std::function<bool()>& condition) const { return client_.Await(condition); }

    // Everything that was sent before has been answered when this returns.
    bool Settle() {
        String id = client_->GetNextID();
        std::size_t before = client_.Events().Count("OnIQ");
        client_->SendXML(Concat(
            {u"<iq type='get' to='localhost' id='", id, u"'><query xmlns='jabber:iq:version'/></iq>"}));
        return client_.AwaitEvent("OnIQ", before + 1);
    }

    std::shared_ptr<cRosterItem> Contact(const Person& other) const {
        std::int16_t index = client_->FindRosterItem(other.jid);
        return index > 0 ? client_->Roster().Item(index) : nullptr;
    }

    cSession* operator->() const { return client_.operator->(); }
    const Client& Connection() const { return client_; }

    const String jid;
    const std::shared_ptr<test::EventLog> log = std::make_shared<test::EventLog>();

private:
    test::Lines::const_iterator Find(const std::string& start) const {
        return std::find_if(log->lines.begin(), log->lines.end(),
                            [&](const std::string& line) { return line.rfind(start, 0) == 0; });
    }
    // jabberd2 names a session after the number of its socket, and ends a new one now and then when it means
    // the one that had the number before: so another attempt.
    bool Connect(bool isNew) {
        for (int attempt = 0; attempt < 3; ++attempt) {
            client_.Events().Take();
            client_->Connect(isNew);
            auto loggedIn = [&] { return client_.Events().Count("OnAuthorized") > 0; };
            std::size_t endings = isNew ? 2 : 1;  // the first ends the registration
            Await([&] { return loggedIn() || client_.Events().Count("OnDisConnected") == endings; });
            if (loggedIn()) return true;
        }
        return false;
    }
    bool Appear() {
        client_->FetchRoster();
        client_->SendMyPresence();
        return Sees("OnRosterEnd") && Settle();
    }

    Client client_;
};

}  // namespace quorix::real
