// What a server or a proxy may send, in any pieces, to a session whose application does things inside its
// events. Whatever happens, nothing may be left open behind it.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <functional>

#include "quorix/session/cSession.h"
#include "testkit/DeterministicEnvironment.h"

namespace quorix {
namespace {

using namespace std::string_view_literals;

// One of each kind, so that the events of all of them are met by what an application may do in them.
constexpr std::string_view kStanzas[] = {
    "<stream:stream id='1'>",
    "<stream:error>gone</stream:error>",
    "<iq type='result' id='kv_login'/>",
    "<iq type='result' id='kv_newuser'/>",
    "<iq type='result' id='kv_changepass'/>",
    "<iq type='error' id='kv_login'><error code='401'>No</error></iq>",
    "<iq type='result'><query xmlns='jabber:iq:auth'><digest/></query></iq>",
    "<iq type='result' from='a'><query xmlns='jabber:iq:register'><key>k</key></query></iq>",
    "<iq type='set'><query xmlns='jabber:iq:roster'><item jid='a@s'/><item jid='b@s'/></query></iq>",
    "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='a'/></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:search'><instructions>i</instructions><b/></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:search'><item jid='a'><b>c</b></item></query></iq>",
    "<iq type='result'><vCard xmlns='vcard-temp'><TEL><WORK/><NUMBER>1</NUMBER></TEL></vCard></iq>",
    "<iq type='get' id='1'><query xmlns='jabber:iq:version'/></iq>",
    "<iq type='result' id='gcsrv_'><conference xmlns='jabber:iq:browse'><item jid='a'/></conference></iq>",
    "<iq type='result' id='gcroom_'><conference xmlns='jabber:iq:browse'><user jid='a'/></conference></iq>",
    "<iq type='result'><query xmlns='jabber:iq:admin'><presence from='a@s'/></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:conference'><secret/></query></iq>",
    "<iq type='set'><query xmlns='jabber:iq:oob'><url>u</url></query></iq>",
    "<presence from='a@s/r'><priority>1</priority></presence>",
    "<presence from='a@s/r' type='unavailable'/>",
    "<presence from='a@s' type='subscribe'><status>x</status></presence>",
    "<message from='a@s'><body>x</body><x xmlns='jabber:x:event'><composing/><delivered/></x></message>",
    "<message from='a@s'><x xmlns='jabber:x:roster'><item jid='b@s'/><item jid='c@s'/></x></message>",
    "<message from='a@s'><x xmlns='jabber:x:conference' jid='r@c'/></message>",
    // What proxies say: a method chosen, a login granted, a tunnel opened; and a response.
    "\5\0"sv,
    "\5\2"sv,
    "\1\0"sv,
    "\5\0\0\1\0\0\0\0\0\0"sv,
    "HTTP/1.1 200 OK\r\n\r\n",
};

// Does the same thing in every event.
class Application : public SessionEvents {
public:
    explicit Application(std::function<void()> act) : act_(std::move(act)) {}

    void OnAuthorized() override { act_(); }
    void OnNewUserCreated() override { act_(); }
    void OnAgentBegin() override { act_(); }
    void OnAgentItem(const std::shared_ptr<cAgentItem>&, const NodePtr&) override { act_(); }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView) override { act_(); }
    void OnSocketError(const NodePtr&, StringView, std::int16_t) override { act_(); }
    void OnDisConnected() override { act_(); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override { message->Body(), act_(); }
    void OnMessageEvent(bool, std::int32_t, StringView) override { act_(); }
    void OnRosterBegin() override { act_(); }
    void OnRosterItem(const std::shared_ptr<cRosterItem>&, const std::shared_ptr<cPresenceItem>&,
                      const NodePtr&) override {
        act_();
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>&, bool, StringView, std::int32_t,
                    const NodePtr&) override {
        act_();
    }
    void OnSubscriptionRequest(StringView, std::int32_t, StringView) override { act_(); }
    void OnIncomingXML(StringView) override { act_(); }
    void OnOutgoingXML(StringView) override { act_(); }
    void OnIQ(const NodePtr&) override { act_(); }
    void OnIQError(const NodePtr&, StringView, std::int16_t, StringView) override { act_(); }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>&, StringView, const NodePtr&) override { act_(); }
    void OnSearchFields(const std::shared_ptr<cSearchFields>&) override { act_(); }
    void OnSearchResults(const std::shared_ptr<cSearchResults>&) override { act_(); }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>&, const NodePtr&) override { act_(); }
    void OnWhoisOnlineUser(const std::shared_ptr<cPresenceItem>&) override { act_(); }
    void OnReceiveRosterItem(const std::shared_ptr<cRosterItem>&, StringView) override { act_(); }

private:
    std::function<void()> act_;
};

class Conversation {
public:
    Conversation(const std::uint8_t* data, std::size_t size) : input_(data, size) {
        session_->Advise(std::make_shared<Application>([this] { Handle(); }));
        session_->ServerAddress(u"s");
        session_->username(u"u");
        session_->Password(u"p");
        session_->AuthType(static_cast<eAuthType>(input_.ConsumeIntegralInRange(0, 3)));
        session_->ProxyType(static_cast<eProxyType>(input_.ConsumeIntegralInRange(0, 3)));
        session_->ProxyHostname(u"s");
        session_->ProxyUseRemoteDNS(input_.ConsumeBool());
        if (input_.ConsumeBool()) session_->ProxyAuthentication(KV_SocksUserPass);
        session_->Connect(input_.ConsumeBool());
        env_.DoEvents();
    }

    void Run() {
        while (session_ && env_.PeerCount() > 0 && input_.remaining_bytes() > 0) Step();
        session_.reset();
        env_.DoEvents();
        if (env_.OpenSockets() + env_.RunningTimers() + env_.OpenWindows() > 0) std::abort();
    }

private:
    static constexpr int kDeepest = 4;

    void Step() {
        switch (input_.ConsumeIntegralInRange(0, 7)) {
            case 1: return env_.Peer().Close();
            case 2: return env_.Advance(100000);
            case 3: return env_.BlockWrites(input_.ConsumeBool());
            case 4: return Say(input_.ConsumeRandomLengthString());
            case 5: return Say(input_.PickValueInArray(kStanzas));
            default: return env_.DoEvents();
        }
    }

    void Say(std::string_view bytes) { env_.Peer().Say(bytes); }

    void Handle() {
        if (!session_ || depth_ == kDeepest) return;
        ++depth_;
        Act(*std::shared_ptr<cSession>(session_));
        --depth_;
    }

    void Act(cSession& session) {
        switch (input_.ConsumeIntegralInRange(0, 31)) {
            case 1: return session.Disconnect();
            case 2: return session.Connect();
            case 3: return session.Connect(true);
            case 4: return session.SendPresence(u"a@s", KV_Available, u"x");
            case 5: return session.CreateMessage(u"a@s", MSG_Chat, u"x", u"y")->SendMessage();
            case 6: return env_.DoEvents();
            case 7: return session_.reset();
            case 8: return session.Roster().Clear();
            case 9: return session.Presence().Clear();
            case 10: return session.Agents().Clear();
            case 11: return session.SearchFields()->Clear();
            default: return;
        }
    }

    FuzzedDataProvider input_;
    testkit::DeterministicEnvironment env_;
    std::shared_ptr<cSession> session_ = cSession::Create();
    int depth_ = 0;
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quorix::Conversation(data, size).Run();
    return 0;
}
