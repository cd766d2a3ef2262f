#include "quorix/session/ModernLine.h"

#include <algorithm>
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/net/Connector.h"
#include "quorix/net/mSocketSSL.h"
#include "quorix/session/SessionCore.h"

namespace quorix {

namespace {

constexpr std::uint16_t kUsualPort = 5222;
constexpr std::int32_t kLongestWait = 16;  // intervals between two attempts
constexpr const char* kService = "xmpp-client";
constexpr StringView kNoAnswer = u"408";

// A quarter shorter to a quarter longer.
std::int64_t Spread(std::int64_t milliseconds, std::uint32_t random) {
    return milliseconds * 3 / 4 + (milliseconds / 2 * random >> 32U);
}

}  // namespace

std::shared_ptr<Line> NewModernLine(SessionCore& session) { return std::make_shared<ModernLine>(session); }

ModernLine::~ModernLine() { Environment::Current().CancelLookUp(lookUp_); }

// The timers end with the line, and the line with its session.
void ModernLine::Start(Timer& timer, std::int64_t milliseconds, void (ModernLine::*step)()) {
    timer.Start(static_cast<std::int32_t>(milliseconds), [this, step] {
        auto self = shared_from_this();
        session_.Enter([&] { (this->*step)(); });
    });
}

// -- The way to the server --

void ModernLine::AttemptBegins() {
    if (!retrying_) retries_ = 0;
    retry_.Stop();
    tunnel_ = {};
    destinations_.clear();
    Environment::Current().CancelLookUp(std::exchange(lookUp_, 0));
    login_.Stop();
    if (session_.loginTimeout_ > 0) {
        Start(login_, std::int64_t{session_.loginTimeout_} * kMillisecondsASecond, &ModernLine::OnLoginLate);
    }
}

String ModernLine::Host() const {
    return session_.connectHost_.empty() ? session_.serverAddress_ : session_.connectHost_;
}

std::uint16_t ModernLine::Port() const {
    return session_.port_ == 0 ? kUsualPort : static_cast<std::uint16_t>(session_.port_);
}

void ModernLine::OpenSocket() {
    if (session_.proxyType_ == KV_NoProxy) return OpenToServer();
    if (session_.proxyType_ == KV_SOCKS5Proxy && !session_.proxyUseRemoteDNS_.value_or(false)) {
        return LookUpForProxy();
    }
    OpenToProxy();
}

void ModernLine::OpenToServer() {
    ConnectTarget target{Host(), Port()};
    bool isFixed = session_.port_ != 0 || !session_.connectHost_.empty() || IsLiteralAddress(target.host);
    if (!isFixed) target.service = kService;
    session_.socket_->ConnectTo(target, session_.serverAddress_);
}

void ModernLine::OpenToProxy() {
    session_.socket_->ConnectTo({session_.proxyHostname_, static_cast<std::uint16_t>(session_.proxyPort_)},
                                session_.proxyHostname_);
}

// The session counts as connecting meanwhile, although it has no socket yet.
void ModernLine::LookUpForProxy() {
    session_.socket_->State(sockConnecting);
    auto found = [this](const std::vector<Address>& addresses) {
        auto self = shared_from_this();
        lookUp_ = 0;
        session_.Enter([&] {
            if (addresses.empty()) return FailAttempt(kNoSuchHost, kNoSuchHostText);
            destinations_.assign(addresses.begin(), addresses.end());
            OpenToNextDestination();
        });
    };
    lookUp_ = Environment::Current().LookUpAddresses(Utf8FromText(Host()), found);
}

void ModernLine::OpenToNextDestination() {
    tunnel_ = {};
    tunnel_.Destination(destinations_.front());
    destinations_.pop_front();
    OpenToProxy();
}

void ModernLine::TunnelFailed() {
    if (!tunnel_.IsRefused() || destinations_.empty()) return FailAttempt(kProxyRefused, tunnel_.Reason());
    session_.CloseSocket();
    OpenToNextDestination();
}

void ModernLine::SocketUp() {
    if (session_.proxyType_ != KV_SOCKS5Proxy) return session_.SendStreamHeader();
    Socks5Request request = session_.ProxyRequest();
    request.host = Host();
    request.port = Port();
    std::string greeting = tunnel_.Begin(std::move(request));
    if (greeting.empty()) return FailAttempt(kProxyRefused, tunnel_.Reason());
    session_.socket_->SendBytes(greeting);
}

bool ModernLine::IsFree() const { return session_.proxyType_ != KV_SOCKS5Proxy || tunnel_.IsOpen(); }

void ModernLine::Transmit(std::string_view bytes) {
    if (session_.proxyType_ == KV_HTTPProxy) return TransmitByRequest(bytes);
    session_.socket_->SendBytes(bytes);
}

std::string_view ModernLine::Receive(std::string_view bytes) {
    lastHeard_ = Environment::Current().Milliseconds();
    trial_ = Trial::None;
    if (IsFree()) return WithoutResponses(bytes);
    Socks5Step step = tunnel_.Take(bytes);
    if (!step.answer.empty()) session_.socket_->SendBytes(step.answer);
    if (tunnel_.HasFailed()) TunnelFailed();
    if (tunnel_.IsOpen()) session_.SendStreamHeader();
    return step.rest;
}

// The socket may be connected, to a proxy.
void ModernLine::FailAttempt(std::int32_t number, StringView description) {
    session_.CloseSocket();
    session_.socket1_Error(number, String(description));
}

// -- Coming back --

void ModernLine::SocketFailed(std::int32_t number) {
    if (!session_.connectionWanted_) return;  // a handler has said so
    login_.Stop();
    session_.CloseSocket();
    if (number != kUntrusted) return Retry();
    session_.connectionWanted_ = false;
    session_.Raise(&SessionEvents::OnDisConnected);
}

void ModernLine::OnLoginLate() {
    login_.Stop();
    if (!session_.authorized_) session_.CloseSession(kNoAnswer, u"No login in time");
}

void ModernLine::Retry() {
    bool isWanted = session_.reconnect_ && session_.connectionWanted_ && session_.reconnectInterval_ >= 0;
    if (!isWanted) return;
    if (retries_ >= session_.reconnectAttempts_) {
        session_.connectionWanted_ = false;
        return session_.RaiseError(kNoAnswer, u"Reconnecting has been given up");
    }
    std::int64_t interval = std::int64_t{session_.reconnectInterval_} * kMillisecondsASecond;
    std::int64_t wait = interval * std::min(1 << std::min(retries_, 4), kLongestWait);
    wait = Spread(wait, Environment::Current().Random());
    ++retries_;
    retryDue_ = Environment::Current().Milliseconds() + wait;
    Start(retry_, wait, &ModernLine::OnRetryDue);
}

std::int32_t ModernLine::RetryDelay() const {
    if (!retry_.IsRunning()) return 0;
    std::int64_t left = std::max<std::int64_t>(retryDue_ - Environment::Current().Milliseconds(), 1);
    return static_cast<std::int32_t>((left + kMillisecondsASecond - 1) / kMillisecondsASecond);
}

void ModernLine::OnRetryDue() {
    retry_.Stop();
    retrying_ = true;
    session_.Connect(session_.newUser_);
    retrying_ = false;
}

void ModernLine::Closing() {
    login_.Stop();
    silence_.Stop();
    retry_.Stop();
    questionId_.clear();
    Environment::Current().CancelLookUp(std::exchange(lookUp_, 0));
}

// A new account logs in at once.
void ModernLine::Closed() {
    bool isCreated = std::exchange(session_.accountCreated_, false);
    if (isCreated && session_.connectionWanted_) return session_.Connect(false);
    Retry();
}

// -- Keeping the line --

void ModernLine::StreamOpens() { session_.EmptyTables(); }

void ModernLine::LoggedIn() {
    login_.Stop();
    retries_ = 0;
    trial_ = Trial::None;
    lastHeard_ = Environment::Current().Milliseconds();
    if (session_.keepAlive_ && session_.keepAliveInterval_ > 0) ListenFor(session_.KeepAliveMilliseconds());
}

// The clock may have jumped, and what has come may wait unread behind an application that was busy: a peer is
// given up only after it was asked, and after one more turn of the loop.
void ModernLine::OnSilence() {
    std::int64_t interval = session_.KeepAliveMilliseconds();
    std::int64_t silent = Environment::Current().Milliseconds() - lastHeard_;
    switch (trial_) {
        case Trial::None:
            ListenFor(silent < interval ? interval - silent : interval);
            return silent < interval ? session_.Send(kKeepAliveText) : Ask();
        case Trial::Asked: trial_ = Trial::LastChance; return ListenFor(kShortestInterval);
        case Trial::LastChance: return session_.CloseSession(kNoAnswer, u"The server does not answer");
    }
}

// Every server answers, with a result or an error (XEP-0199).
void ModernLine::Ask() {
    trial_ = Trial::Asked;
    questionId_ = session_.GetNextID();
    session_.Send(Concat({u"<iq type='get' id='", questionId_, u"'><ping xmlns='urn:xmpp:ping'/></iq>"}));
}

bool ModernLine::IsOwnAnswer(const Stanza& stanza) {
    bool isAnswer = !questionId_.empty() && stanza.Id() == questionId_ && !stanza.IsGet() && !stanza.IsSet();
    if (isAnswer) questionId_.clear();
    return isAnswer;
}

}  // namespace quorix
