// Offers somebody a file by its address. Ends with 0 when it was fetched, with 1 when it was refused or nobody cared
// for 60 seconds. The library moves no file: the address must be one that the other side can read.
#include "examples/Example.h"

using namespace example;

class Offer : public SessionEvents {
public:
    Offer(cSession& session, std::vector<String> words) : session_(session), words_(std::move(words)) {}

    // To a full address, with its resource: to a bare one the server itself answers.
    void OnAuthorized() override { session_.SendOOBRequest(words_[0], words_[2], words_[1]); }

    void OnOOBResult(StringView from, bool isFetched) override {
        Say({from, isFetched ? u" has fetched it" : u" does not want it"});
        session_.Disconnect();
        Finish(isFetched ? 0 : 1);
    }

    // What others offer: fetch the address yourself, then tell them.
    void OnOOBRequest(StringView from, StringView what, StringView address) override {
        Say({from, u" offers ", address, u": ", what});
        session_.SendOOBComplete(from);
    }

    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    cSession& session_;
    const std::vector<String> words_;
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD FULL-JID ADDRESS DESCRIPTION");
    const auto session = SessionOf(arguments, u"offer");
    const std::vector<String> words(arguments.begin() + 4, arguments.end());
    session->Advise(std::make_shared<Offer>(*session, words));
    session->Connect();
    return Run(60);
}
