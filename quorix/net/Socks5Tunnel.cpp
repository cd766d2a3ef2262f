#include "quorix/net/Socks5Tunnel.h"

#include <algorithm>
#include <array>
#include <utility>

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

constexpr std::size_t kLongestText = 255;
constexpr char kVersion = 5;
constexpr char kLoginVersion = 1;
constexpr char kName = 3;
constexpr char kIp4 = 1;
constexpr char kIp6 = 4;
constexpr StringView kNonsense = u"The proxy speaks no SOCKS5";

// In the order of the reply codes.
constexpr std::array<StringView, 9> kRefusals = {
    u"",
    u"Proxy: general failure",
    u"Proxy: connection not allowed",
    u"Proxy: network unreachable",
    u"Proxy: host unreachable",
    u"Proxy: connection refused",
    u"Proxy: time to live expired",
    u"Proxy: command not supported",
    u"Proxy: address type not supported",
};

char Byte(std::size_t value) { return static_cast<char>(value & 0xFFU); }

std::string Counted(const std::string& text) { return Byte(text.size()) + text; }

std::string AddressBytes(const Address& address) {
    if (address.ip6) return kIp6 + std::string(address.ip6->begin(), address.ip6->end());
    return {kIp4, Byte(address.ip >> 24U), Byte(address.ip >> 16U), Byte(address.ip >> 8U), Byte(address.ip)};
}

bool Fits(StringView text) { return Utf8FromText(text).size() <= kLongestText; }

}  // namespace

std::string Socks5Tunnel::Begin(Socks5Request request) {
    request_ = std::move(request);
    bool fits = Fits(request_.userName) && Fits(request_.password) && (destination_ || Fits(request_.host));
    if (!fits) return Fail(u"Too long for the proxy");
    stage_ = Stage::Method;
    if (request_.authentication == KV_SocksNoAuth) return {kVersion, 1, KV_SocksNoAuth};
    return {kVersion, 2, Byte(static_cast<std::size_t>(request_.authentication)), KV_SocksNoAuth};
}

Socks5Step Socks5Tunnel::Take(std::string_view bytes) {
    Socks5Step step;
    while (!bytes.empty() && !IsOpen() && !HasFailed()) {
        pending_ += bytes.front();
        bytes.remove_prefix(1);
        if (pending_.size() == ReplySize()) step.answer += TakeReply(std::exchange(pending_, {}));
    }
    if (IsOpen()) step.rest = bytes;
    return step;
}

// The last reply holds an address: four bytes before it, and a port behind it.
std::size_t Socks5Tunnel::ReplySize() const {
    if (stage_ != Stage::Connection) return 2;
    bool isRefusal = pending_.size() >= 2 && pending_[1] != 0;  // some proxies end theirs here
    if (pending_.front() != kVersion || isRefusal) return pending_.size();
    if (pending_.size() < 5) return 0;
    switch (pending_[3]) {
        case kIp4: return 10;
        case kIp6: return 22;
        case kName: return 7 + static_cast<unsigned char>(pending_[4]);
        default: return pending_.size();
    }
}

std::string Socks5Tunnel::TakeReply(std::string_view reply) {
    char version = stage_ == Stage::Login ? kLoginVersion : kVersion;
    if (reply.front() != version) return Fail(kNonsense);
    auto code = static_cast<unsigned char>(reply[1]);
    switch (stage_) {
        case Stage::Method: return TakeMethod(reply[1]);
        case Stage::Login: return code == 0 ? Connection() : Fail(u"Proxy: login refused");
        default: break;
    }
    isRefused_ = code != 0;
    if (isRefused_) return Fail(code < kRefusals.size() ? kRefusals[code] : kRefusals[1]);
    if (reply.size() < 10 && reply[3] != kName) return Fail(kNonsense);
    stage_ = Stage::Open;
    return {};
}

std::string Socks5Tunnel::TakeMethod(char method) {
    if (method == KV_SocksNoAuth) return Connection();
    bool isOffered = request_.authentication == KV_SocksUserPass && method == KV_SocksUserPass;
    return isOffered ? Login() : Fail(u"Proxy: no way to log in that both know");
}

std::string Socks5Tunnel::Login() {
    stage_ = Stage::Login;
    return kLoginVersion + Counted(Utf8FromText(request_.userName)) +
           Counted(Utf8FromText(request_.password));
}

std::string Socks5Tunnel::Connection() {
    stage_ = Stage::Connection;
    std::string to =
        destination_ ? AddressBytes(*destination_) : kName + Counted(Utf8FromText(request_.host));
    return std::string{kVersion, 1, 0} + to + Byte(request_.port >> 8U) + Byte(request_.port);
}

std::string Socks5Tunnel::Fail(StringView reason) {
    stage_ = Stage::Failed;
    reason_ = reason;
    return {};
}

}  // namespace quorix
