// Finds a server and opens a connection to it without ever blocking: the SRV records of a domain, the
// addresses of each host, and each address in turn until one accepts. What fails is passed over; the last
// failure counts.
//
// Threads: one, whose message loop runs everything.
#pragma once

#include <deque>

#include "quorix/net/ConnectTarget.h"
#include "quorix/platform/Environment.h"

namespace quorix {

// Whether `host` spells out an IPv4 or IPv6 address.
bool IsLiteralAddress(StringView host);

// Each answer ends the attempt; the answering Connector may be destroyed meanwhile.
class ConnectorEvents {
public:
    virtual ~ConnectorEvents() = default;

    // The socket belongs to the receiver from now on; nothing is selected on it.
    virtual void Connected(SocketId socket) = 0;
    virtual void NotConnected(std::int32_t number, StringView description) = 0;
};

class Connector final : public SocketSink {
public:
    Connector(Environment& environment, ConnectorEvents& events)
        : environment_(environment), events_(events) {}
    ~Connector() override { Stop(); }
    Connector(const Connector&) = delete;
    Connector& operator=(const Connector&) = delete;

    // Each address gets `timeOut` milliseconds. `localPort` 0 is any.
    void Start(const ConnectTarget& target, const HiddenWindow& window, std::int32_t timeOut,
               std::uint16_t localPort);

    // Ends the attempt without an answer.
    void Stop();

private:
    void OnSocketEvent(SocketId socket, std::int32_t event, std::int32_t error) override;
    void OnSocketTimer(SocketId socket) override;

    void LookUpHost();
    std::int32_t Try(Address address);
    void TryNext();
    void Passed(std::int32_t number, StringView description);
    void GiveUpSocket();

    Environment& environment_;
    ConnectorEvents& events_;
    HiddenWindow window_;
    std::int32_t timeOut_ = 0;
    std::uint16_t localPort_ = 0;
    LookUpId lookUp_ = 0;
    SocketId socket_ = 0;
    std::deque<ServiceTarget> hosts_;
    std::deque<Address> addresses_;  // of the host at hand
    std::int32_t failure_ = 0;       // the last one
    String failureText_;
};

}  // namespace quorix
