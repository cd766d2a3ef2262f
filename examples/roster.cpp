// Lists the contacts, asks one more to be a contact, lets everybody see the user, and tells who comes and goes.
#include "examples/Example.h"

using namespace example;

class Watcher : public SessionEvents {
public:
    Watcher(cSession& session, String contact) : session_(session), contact_(std::move(contact)) {}

    // The roster first: servers report changes of it, and answers to requests, to those who have asked for it.
    void OnAuthorized() override {
        session_.FetchRoster();
        session_.SendMyPresence();
        const auto contact = session_.CreateRosterItem();
        contact->JID(contact_);
        contact->AddGroup(u"Watched");
        contact->Add();
        session_.SendPresence(contact_, KV_Subscribe, u"May I see when you are there?");
    }

    void OnRosterItem(const std::shared_ptr<cRosterItem>& contact, const std::shared_ptr<cPresenceItem>& presence,
                      const NodePtr&) override {
        Say({u"contact ", contact->JID(), presence ? u", online" : u""});
        for (const String& group : contact->Groups()) Say({u"  in ", group});
    }
    void OnRosterEnd() override { Say({u"contacts: ", ToString(session_.Roster().Count())}); }

    void OnPresence(const std::shared_ptr<cPresenceItem>& presence, bool isAvailable, StringView, std::int32_t,
                    const NodePtr&) override {
        Say({presence->JID(), isAvailable ? u" is there: " : u" has gone: ", presence->Status()});
    }

    void OnSubscriptionRequest(StringView from, std::int32_t kind, StringView) override {
        if (kind == KV_Subscribe) session_.SendPresence(from, KV_Subscribe_Accept, u"");
    }
    void OnSubscriptionAccept(StringView from, StringView) override { Say({from, u" lets you see"}); }
    void OnSubscriptionDenied(StringView from, StringView) override { Say({from, u" does not let you see"}); }

    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    cSession& session_;
    const String contact_;
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD CONTACT");
    const auto session = SessionOf(arguments, u"watcher");
    session->Advise(std::make_shared<Watcher>(*session, arguments[4]));
    session->Connect();
    return Run();
}
