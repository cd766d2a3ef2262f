#include "quorix/net/Connector.h"

#include <openssl/x509v3.h>

#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/net/mSocketSSL.h"

namespace quorix {

bool IsLiteralAddress(StringView host) {
    ASN1_OCTET_STRING* address = a2i_IPADDRESS(Utf8FromText(host).c_str());
    ASN1_OCTET_STRING_free(address);
    return address != nullptr;
}

void Connector::Start(const ConnectTarget& target, const HiddenWindow& window, std::int32_t timeOut,
                      std::uint16_t localPort) {
    Stop();
    window_ = window;
    timeOut_ = timeOut;
    localPort_ = localPort;
    ServiceTarget itself{Utf8FromText(target.host), target.port};
    if (target.service.empty()) {
        hosts_ = {itself};
        return LookUpHost();
    }
    lookUp_ = environment_.LookUpService(target.service, itself.host,
                                         [this, itself](const std::vector<ServiceTarget>& targets) {
                                             hosts_.assign(targets.begin(), targets.end());
                                             if (hosts_.empty()) hosts_ = {itself};
                                             LookUpHost();
                                         });
}

void Connector::Stop() {
    environment_.CancelLookUp(std::exchange(lookUp_, 0));
    hosts_.clear();
    addresses_.clear();
    GiveUpSocket();
}

void Connector::GiveUpSocket() {
    if (socket_ != 0) environment_.Close(std::exchange(socket_, 0));
}

void Connector::LookUpHost() {
    ServiceTarget host = std::move(hosts_.front());
    hosts_.pop_front();
    lookUp_ = environment_.LookUpAddresses(host.host, [this, port = host.port](std::vector<Address> found) {
        for (Address& address : found) address.port = port;
        addresses_.assign(found.begin(), found.end());
        if (addresses_.empty()) Passed(kNoSuchHost, kNoSuchHostText);
        TryNext();
    });
}

void Connector::TryNext() {
    while (!addresses_.empty()) {
        Address address = addresses_.front();
        addresses_.pop_front();
        std::int32_t error = Try(address);
        if (error == SOCKERR_None) return;
        Passed(error, SocketErrorText(error));
    }
    if (!hosts_.empty()) return LookUpHost();
    events_.NotConnected(failure_, String(failureText_));
}

// Begins to connect to `address`.
std::int32_t Connector::Try(Address address) {
    NewSocket made = environment_.CreateSocket(address.ip6.has_value());
    if (made.id == 0) return made.error;
    socket_ = made.id;
    Address local{0, localPort_, address.ip6 ? std::optional(Ip6()) : std::nullopt};
    std::int32_t error = localPort_ == 0 ? SOCKERR_None : environment_.Bind(socket_, local, false);
    if (error == SOCKERR_None) error = environment_.AsyncSelect(socket_, window_, *this, SOCK_Connect);
    if (error == SOCKERR_None) error = environment_.Connect(socket_, address);
    if (error != SOCKERR_None && error != SOCKERR_WouldBlock) return error;
    environment_.SetSocketTimer(socket_, window_, *this, timeOut_);
    return SOCKERR_None;
}

void Connector::Passed(std::int32_t number, StringView description) {
    failure_ = number;
    failureText_ = description;
    GiveUpSocket();
}

void Connector::OnSocketEvent(SocketId socket, std::int32_t event, std::int32_t error) {
    if (socket != socket_ || event != SOCK_Connect) return;
    environment_.KillSocketTimer(socket, window_);
    if (error != SOCKERR_None) {
        Passed(error, SocketErrorText(error));
        return TryNext();
    }
    environment_.AsyncSelect(socket, window_, *this, 0);
    socket_ = 0;
    hosts_.clear();
    addresses_.clear();
    events_.Connected(socket);
}

void Connector::OnSocketTimer(SocketId socket) {
    if (socket != socket_) return;
    Passed(kTimedOut, kTimedOutText);
    TryNext();
}

}  // namespace quorix
