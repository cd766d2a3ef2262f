#include "testkit/PutProxy.h"

#include <charconv>
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/net/mSocketSSL.h"

namespace quorix::testkit {

namespace {

constexpr std::string_view kStatusHead = "HTTP/1.1 200 OK\r\n\r\n";
constexpr std::string_view kEndOfHead = "\r\n\r\n";
constexpr std::string_view kLength = "Content-length:";
constexpr std::size_t kEndOfBody = 2;  // a CR LF that the length does not count

// The text between `before` and `behind`.
std::string Between(const std::string& text, std::string_view before, std::string_view behind) {
    std::size_t start = text.find(before);
    if (start == std::string::npos) return {};
    start += before.size();
    return text.substr(start, text.find(behind, start) - start);
}

int Number(const std::string& digits) {
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

}  // namespace

class PutProxy::Listener : public SocketEvents {
public:
    explicit Listener(PutProxy& proxy) : proxy_(proxy) {}
    void OnConnectionRequest() override { proxy_.TakeClient(); }

private:
    PutProxy& proxy_;
};

class PutProxy::Client : public SocketEvents {
public:
    explicit Client(PutProxy& proxy) : proxy_(proxy) {}
    void OnDataArrival(std::string_view bytes, StringView) override { proxy_.TakeRequests(bytes); }
    void OnClosed() override { proxy_.End(); }

private:
    PutProxy& proxy_;
};

class PutProxy::Server : public SocketEvents {
public:
    explicit Server(PutProxy& proxy) : proxy_(proxy) {}
    void OnConnect() override {
        proxy_.connected_ = true;
        proxy_.Relay();
    }
    void OnDataArrival(std::string_view bytes, StringView) override {
        proxy_.toClient_ += bytes;
        proxy_.Relay();
    }
    void OnClosed() override { proxy_.End(); }
    void OnError(std::int32_t, StringView) override { proxy_.End(); }

private:
    PutProxy& proxy_;
};

std::uint16_t PutProxy::Start() {
    sinks_[0] = std::make_shared<Listener>(*this);
    sinks_[1] = std::make_shared<Client>(*this);
    sinks_[2] = std::make_shared<Server>(*this);
    listener_->Advise(sinks_[0]);
    client_->Advise(sinks_[1]);
    server_->Advise(sinks_[2]);
    listener_->Listen();
    return static_cast<std::uint16_t>(listener_->LocalPort());
}

void PutProxy::TakeClient() {
    End();
    requests_ = 0;
    client_->Accept(AcceptConnection(listener_->SocketHandle()));
}

void PutProxy::TakeRequests(std::string_view bytes) {
    inbound_ += bytes;
    while (TakeRequest()) {
    }
    Relay();
}

bool PutProxy::TakeRequest() {
    std::size_t end = inbound_.find(kEndOfHead);
    if (end == std::string::npos) return false;
    std::string head = inbound_.substr(0, end + kEndOfHead.size());
    auto length = static_cast<std::size_t>(Number(Between(head, kLength, "\r\n")));
    if (inbound_.size() < head.size() + length + kEndOfBody) return false;
    body_ = inbound_.substr(head.size(), length);
    inbound_.erase(0, head.size() + length + kEndOfBody);
    toServer_ += body_;
    if (++requests_ == 1) {
        ConnectTo(Between(head, "PUT http://", "/"));
        client_->SendBytes(kStatusHead);
    }
    return true;
}

void PutProxy::ConnectTo(const std::string& authority) {
    std::size_t colon = authority.rfind(':');
    server_->RemoteHost(WireFromBytes(authority.substr(0, colon)));
    server_->RemotePort(Number(authority.substr(colon + 1)));  // the socket takes a negative one as well
    server_->Connect();
}

void PutProxy::Relay() {
    if (connected_) server_->SendBytes(std::exchange(toServer_, {}));
    if (requests_ > 1) client_->SendBytes(std::exchange(toClient_, {}));
}

void PutProxy::End() {
    client_->Disconnect();
    server_->Disconnect();
    connected_ = false;
    inbound_.clear();
    toServer_.clear();
    toClient_.clear();
}

}  // namespace quorix::testkit
