// What a server or a proxy may send, in any pieces, to a session of either mode whose application does things
// inside each of its events. Whatever happens, nothing may be left open behind it.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "testkit/Day.h"
#include "testkit/Senders.h"

namespace quorix {
namespace {

using namespace std::string_view_literals;

// What comes before a session is logged in, and how it ends.
constexpr std::string_view kBeginnings[] = {
    testkit::kStreamHeader,
    "<stream:error>gone</stream:error>",
    "<stream:error><conflict/></stream:error>",
    "</stream:stream>",
    "<iq type='result' id='kv_login'/>",
    "<iq type='result' id='kv_newuser'/>",
    "<iq type='error' id='kv_login'><error code='401'>No</error></iq>",
    "<iq type='result'><query "
    "xmlns='jabber:iq:auth'><digest/><sequence>9</sequence><token>t</token></query></iq>",
    // What proxies say: a method chosen, a login granted, a tunnel opened or refused; and a response.
    "\5\0"sv,
    "\5\2"sv,
    "\1\0"sv,
    "\5\0\0\1\0\0\0\0\0\0"sv,
    "\5\2\0\1\0\0\0\0\0\0"sv,
    "\5\0\0\3\2ab\0\0"sv,
    "HTTP/1.1 200 OK\r\n\r\n",
};

class Conversation {
public:
    Conversation(const std::uint8_t* data, std::size_t size) : input_(data, size) {
        session_->Mode(static_cast<eMode>(input_.ConsumeIntegralInRange(0, 1)));
        events_->hook = [this](const std::string&) { Handle(); };
        session_->Advise(events_);
        session_->ServerAddress(u"s");
        session_->username(u"u");
        session_->Password(u"p");
        session_->ReconnectInterval(1);
        session_->AuthType(static_cast<eAuthType>(input_.ConsumeIntegralInRange(0, 3)));
        SetProxy();
        if (byBytes_) env_.LimitReads(1);
        Act([this](cSession& session) { session.Connect(input_.ConsumeBool()); });
        env_.DoEvents();
        if (input_.ConsumeBool()) LogIn();
    }

    void Run() {
        while (session_ && env_.PeerCount() > 0 && input_.remaining_bytes() > 0) Step();
        session_.reset();
        env_.DoEvents();
        if (env_.OpenSockets() + env_.RunningTimers() + env_.OpenWindows() > 0) std::abort();
    }

private:
    static constexpr int kDeepest = 4;
    static constexpr std::size_t kLong = 70000;  // bytes that a parser sees in more than one way

    void LogIn() {
        for (std::string_view bytes :
             {testkit::kStreamHeader, std::string_view("<iq type='result' id='kv_login'/>")}) {
            if (env_.PeerCount() == 0) return;
            Say(bytes);
            env_.DoEvents();
        }
    }

    void SetProxy() {
        session_->ProxyType(static_cast<eProxyType>(input_.ConsumeIntegralInRange(0, 3)));
        session_->ProxyHostname(u"p");
        session_->ProxyPort(1080);
        session_->ProxyUseRemoteDNS(input_.ConsumeBool());
        session_->ProxyUsername(u"proxy user");
        session_->ProxyPassword(u"proxy password");
        if (input_.ConsumeBool()) session_->ProxyAuthentication(KV_SocksUserPass);
    }

    void SayEverything() {
        for (std::string_view stanza : testkit::kStanzas) {
            if (session_) Say(stanza), env_.DoEvents();
        }
    }

    template <class Items>
    const auto& Pick(const Items& items) {
        return items[input_.ConsumeIntegralInRange<std::size_t>(0, items.size() - 1)];
    }

    void Step() {
        switch (input_.ConsumeIntegralInRange(0, 10)) {
            case 1: return env_.Peer().Close();
            case 2: return env_.Advance(100000);
            case 3: return env_.BlockWrites(input_.ConsumeBool());
            case 4: return Say(input_.ConsumeRandomLengthString());
            case 5: return Say(input_.PickValueInArray(kBeginnings));
            case 6: return Say(Pick(testkit::kStanzas));
            case 7: return Act([this](cSession& session) { Ask(session); });
            case 8: return Say(std::string(byBytes_ ? 1 : kLong, input_.ConsumeIntegral<char>()));
            case 9: return SayEverything();
            default: return env_.DoEvents();
        }
    }

    void Say(std::string_view bytes) { env_.Peer().Say(bytes); }

    void Handle() {
        if (depth_ == kDeepest) return;
        ++depth_;
        Act([this](cSession& session) { Do(session); });
        --depth_;
    }

    // What is an application's own error is told as such.
    template <class Action>
    void Act(Action action) {
        try {
            if (session_) action(*std::shared_ptr<cSession>(session_));
        } catch (const AutomationError&) {  // NOLINT(bugprone-empty-catch): told
        }
    }

    void Do(cSession& session) {
        switch (input_.ConsumeIntegralInRange(0, 31)) {
            case 1: return session.Disconnect();
            case 2: return session.Connect();
            case 3: return session.Connect(true);
            case 4: return Ask(session);
            case 5: throw std::runtime_error("a handler's");
            case 6: return env_.DoEvents();
            case 7: return session_.reset();
            case 8: return session.Roster().Clear();
            case 9: return session.Presence().Clear();
            case 10: return session.Agents().Clear();
            case 11: return session.SearchFields()->Clear();
            case 12: return session.Unadvise(events_);
            case 13: return events_->nodes.clear();
            default: return;
        }
    }

    void Ask(cSession& session) {
        Pick(testkit::kSenders).send(session, [this] {
            return WireFromBytes(input_.ConsumeRandomLengthString(8));
        });
    }

    FuzzedDataProvider input_;
    const bool byBytes_ = input_.ConsumeBool();
    testkit::DeterministicEnvironment env_;
    std::shared_ptr<cSession> session_ = cSession::Create();
    std::shared_ptr<testkit::EventRecorder> events_ = std::make_shared<testkit::EventRecorder>();
    int depth_ = 0;
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quorix::Conversation(data, size).Run();
    return 0;
}
