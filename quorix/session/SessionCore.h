// What stands behind a cSession: its connection, its stream, its tables and its settings. The features see it
// as their SessionLink.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "quorix/im/PresenceTable.h"
#include "quorix/im/RosterTable.h"
#include "quorix/link/SessionLink.h"
#include "quorix/link/StanzaError.h"
#include "quorix/net/Socks5Exchange.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mTimer.h"
#include "quorix/services/Agents.h"
#include "quorix/services/GroupChats.h"
#include "quorix/services/Search.h"
#include "quorix/session/EventSinks.h"
#include "quorix/session/Rules.h"
#include "quorix/session/cSession.h"

namespace quorix {

class Dispatcher;

class SessionCore final : public SessionLink,
                          public TimerTarget,
                          public std::enable_shared_from_this<SessionCore> {
public:
    static std::shared_ptr<SessionCore> Create();
    ~SessionCore() override;

    // -- SessionLink --

    const TextRules& Text() const override { return rules_->Text(); }
    StanzaError ErrorOf(const Stanza& stanza) const override { return rules_->ErrorOf(stanza); }
    void SendXML(StringView xml) override;
    void LetOthersRun() override { rules_->LetOthersRun(); }
    bool IsConnected() const override { return socket_->State() == sockConnected && line_->IsFree(); }
    String GetNextID() override;
    String ServerAddress() const override { return serverAddress_; }
    String username() const override { return username_; }
    String Password() const override { return password_; }
    String Resource() const override { return resource_; }
    String MyJid() const override { return Concat({username_, u"@", serverAddress_}); }
    LoginFacts Login() const override { return login_; }
    eItemType FindItemType(StringView jid) override;
    bool LeaveRoom(StringView jid, StringView nickname) override;
    void ForEachSink(const std::function<void(SessionEvents&)>& raise) override;

private:
    friend class cSession;
    friend class Dispatcher;
    friend class Line;
    friend class ClassicLine;
    friend class ModernLine;

    class Held;
    class Entry;
    class SocketPort;

    SessionCore() = default;
    void Initialise();
    void Mode(eMode value);
    void Connect(bool newUser);
    void Disconnect();
    void ChangePassword(StringView newPassword);
    String GetCurrentID() const;

    // Only entries in progress still hold the session: nobody is left to hear it.
    bool IsAbandoned() const;

    void KeepAliveTick() override;
    void ReconnectTick() override;

    // Socket notifications are taken one at a time; those that arrive meanwhile wait in their order.
    void Deliver(std::function<void()> step);
    template <class Step>
    void TakeNow(Step step);
    bool MustWait() const { return delivering_ || closing_ || !deliveries_.empty(); }
    void DrainDeliveries();

    void socket1_Connect();
    void socket1_Closed();
    void socket1_Error(std::int32_t code, StringView description);
    void socket1_DataArrival(std::string_view bytes);

    void CloseSocket();
    void CloseSession(StringView code, StringView description);
    void SayGoodbye();
    void RaiseError(StringView code, StringView description);
    void RaiseSocketError(std::int32_t code, StringView description);
    Socks5Request ProxyRequest() const;
    std::int32_t KeepAliveMilliseconds() const { return keepAliveInterval_ * kKeepAliveUnit; }
    void EmptyTables();

    // Runs what a timer or a look-up calls.
    void Enter(const std::function<void()>& step);

    void SendStreamHeader();
    void Send(StringView xml);
    void ProcessIncoming(std::string_view bytes);
    bool TakeStep(Dispatcher& dispatcher);
    void TakeStreamHeader(const StreamStep& header);
    void EndWithStreamError(const StreamStep& error);
    void RaiseWireText(void (SessionEvents::*event)(StringView), StringView text);
    void StartLogin();
    void RequestLoginFields();
    bool MayTellPassword() const;
    void RefuseToTellPassword();
    void EndForGood(StringView code, StringView description);
    void BecomeActive();
    void CompleteLogin();

    struct Delivery {
        std::uint32_t socketEpoch;
        std::function<void()> step;
    };

    static constexpr std::int32_t kKeepAliveUnit = 64000;  // milliseconds

    const SessionRules* rules_ = &RulesOf(KV_Classic);
    String serverAddress_;
    String username_;
    String password_;
    String resource_;
    String status_;
    String connectHost_;
    std::int32_t loginTimeout_ = 30;
    String proxyHostname_;
    String proxyUsername_;
    String proxyPassword_;
    std::int32_t proxyPort_ = 0;
    std::int32_t reconnectAttempts_ = 10;
    std::int32_t reconnectInterval_ = 60;
    eProxyType proxyType_ = KV_NoProxy;
    eProxy_Authentication proxyAuthentication_ = KV_SocksNoAuth;
    std::optional<bool> proxyUseRemoteDNS_;
    std::int16_t port_ = 0;
    std::int16_t priority_ = 5;
    std::int16_t showType_ = 0;
    std::int16_t keepAliveInterval_ = 1;
    bool useSSL_ = false;
    bool available_ = false;
    bool keepAlive_ = true;
    bool reconnect_ = true;

    LoginFacts login_;
    String loginQueryId_;  // of the question for the login's fields, or for the form of a new account
    bool active_ = false;
    bool streamOpen_ = false;
    bool authorized_ = false;
    bool newUser_ = false;
    bool accountCreated_ = false;  // by this connection
    bool connectionWanted_ = false;
    bool delivering_ = false;
    bool closing_ = false;
    std::uint32_t idCounter_ = 0;
    std::uint32_t generation_ = 0;     // counts calls of Connect
    std::uint32_t socketEpoch_ = 0;    // counts the ends of connections
    std::weak_ptr<SessionCore> self_;  // asked for its holders at each event
    long held_ = 0;                    // references held by entries in progress

    std::shared_ptr<Line> line_;
    std::shared_ptr<cSocketSSL> socket_;
    std::unique_ptr<SocketPort> socketPort_;
    std::deque<Delivery> deliveries_;
    EventSinks sinks_;
    std::unique_ptr<StreamReader> reader_;
    std::int32_t maxStanzaSize_ = 10 << 20;  // bytes
    PresenceTable presence_;
    RosterTable roster_;
    Search search_;
    Agents agents_{search_.SearchFields()};
    GroupChats rooms_;
    cSession interface_{*this};
};

}  // namespace quorix
