#include "tests/real/Person.h"

#include <iostream>

#include "tests/real/RunUntil.h"

namespace quorix::real {

Person::Person(int port, StringView name, StringView resource) : jid(Concat({name, u"@localhost"})) {
    session_->Advise(events_);
    session_->Advise(log);
    session_->ServerAddress(u"localhost");
    session_->Port(static_cast<std::int16_t>(port));
    session_->username(name);
    session_->Password(u"secret");
    session_->Resource(resource);
    session_->Reconnect(false);
}

Person::~Person() {
    session_->Disconnect();
    MessageLoop::DoEvents();
}

bool Person::Await(const std::function<bool()>& condition) const {
    if (RunUntil(condition)) return true;
    std::cerr << "Waited in vain. Events so far:\n";
    for (const std::string& line : events_->lines) std::cerr << "  " << line << "\n";
    return false;
}

bool Person::AwaitEvent(const std::string& event, std::size_t count) const {
    return Await([&] { return events_->Count(event) >= count; });
}

bool Person::Sees(const std::string& start) {
    if (!Await([&] { return HasSeen(start); })) return false;
    log->lines.erase(log->lines.begin(), Find(log->lines, start) + 1);
    return true;
}

bool Person::Settle() {
    std::size_t before = events_->Count("OnIQ");
    session_->SendVersionRequest(u"localhost");
    return AwaitEvent("OnIQ", before + 1);
}

std::shared_ptr<cRosterItem> Person::Contact(const Person& other) const {
    std::int16_t index = session_->FindRosterItem(other.jid);
    return index > 0 ? session_->Roster().Item(index) : nullptr;
}

// jabberd2 names a session after the number of its socket, and ends a new one now and then when it means the
// one that had the number before: so another attempt.
bool Person::Connect(bool isNew) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        events_->Take();
        session_->Connect(isNew);
        auto loggedIn = [&] { return events_->Count("OnAuthorized") > 0; };
        std::size_t endings = isNew ? 2 : 1;  // the first ends the registration
        Await([&] { return loggedIn() || events_->Count("OnDisConnected") == endings; });
        if (loggedIn()) return true;
    }
    return false;
}

bool Person::Appear() {
    session_->FetchRoster();
    session_->SendMyPresence();
    return Sees("OnRosterEnd") && Settle();
}

}  // namespace quorix::real
