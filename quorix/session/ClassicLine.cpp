#include "quorix/session/ClassicLine.h"

#include "quorix/net/HttpTunnel.h"
#include "quorix/net/mSocketSSL.h"
#include "quorix/session/SessionCore.h"

namespace quorix {

std::shared_ptr<Line> NewClassicLine(SessionCore& session) { return std::make_shared<ClassicLine>(session); }

void Line::TransmitByRequest(std::string_view bytes) {
    session_.socket_->SendBytes(
        PutRequest(session_.Text().ToBytes(session_.serverAddress_), session_.port_, bytes));
}

std::string_view Line::WithoutResponses(std::string_view bytes) const {
    return session_.proxyType_ == KV_HTTPProxy && IsHttpResponse(bytes) ? std::string_view() : bytes;
}

ClassicLine::ClassicLine(SessionCore& session) : Line(session), relay_(session.weak_from_this()) {
    mTimer::SetRelay(relay_);
}

ClassicLine::~ClassicLine() { mTimer::Release(relay_); }

void ClassicLine::AttemptBegins() {
    if (attempts_ == session_.reconnectAttempts_) mTimer::StopReconnect();
    ++attempts_;
    socks_ = {};
}

void ClassicLine::OpenSocket() {
    if (session_.proxyType_ != KV_NoProxy) return Open(session_.proxyHostname_, session_.proxyPort_);
    Open(session_.serverAddress_, static_cast<std::uint16_t>(session_.port_));
}

void ClassicLine::Open(StringView host, std::int32_t port) {
    session_.socket_->RemoteHost(host);
    session_.socket_->RemotePort(port);
    session_.socket_->Connect();
}

void ClassicLine::SocketUp() {
    mTimer::StopReconnect();
    attempts_ = 0;
    session_.SendStreamHeader();
}

bool ClassicLine::IsNegotiating() const {
    return session_.proxyType_ == KV_SOCKS5Proxy && !socks_.IsNegotiated();
}

// Until a SOCKS5 proxy has opened the tunnel, its greeting goes out in place of any text.
void ClassicLine::Transmit(std::string_view bytes) {
    if (session_.proxyType_ == KV_HTTPProxy) return TransmitByRequest(bytes);
    session_.socket_->SendBytes(IsNegotiating() ? socks_.Greeting(session_.proxyAuthentication_)
                                                : std::string(bytes));
}

std::string_view ClassicLine::Receive(std::string_view bytes) {
    if (!IsNegotiating()) return WithoutResponses(bytes);
    AnswerProxy(bytes);
    return {};
}

void ClassicLine::AnswerProxy(std::string_view reply) {
    Socks5Answer answer = socks_.Take(reply, session_.ProxyRequest(), [](StringView host) {
        return ResolveHost(Environment::Current(), host);
    });
    if (!answer.bytes.empty()) session_.socket_->SendBytes(answer.bytes);
    if (answer.unknownHost) session_.RaiseSocketError(kNoSuchHost, kNoSuchHostText);
    if (answer.negotiated) session_.SendStreamHeader();
}

void ClassicLine::LoggedIn() {
    mTimer::StopReconnect();
    if (session_.keepAlive_) mTimer::StartKeepAlive(relay_, session_.KeepAliveMilliseconds());
}

void ClassicLine::Closing() {
    if (session_.keepAlive_) mTimer::StopKeepAlive();
}

bool ClassicLine::RetriesLeft() const {
    return session_.reconnect_ && session_.connectionWanted_ && attempts_ < session_.reconnectAttempts_;
}

void ClassicLine::Closed() {
    if (RetriesLeft()) {
        mTimer::StartReconnect(relay_, session_.reconnectInterval_ * kMillisecondsASecond);
        ++attempts_;
    } else {
        mTimer::StopReconnect();
    }
    if (session_.newUser_ && session_.connectionWanted_) session_.Connect(false);
}

}  // namespace quorix
