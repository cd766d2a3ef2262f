// The ground floor: everything that differs between systems, or that a test must control.
//
// Sockets have the shape of Winsock 1.1: small integer handles, 0 for none, notifications through the
// thread's message pump, errors as the 10xxx numbers (0 for none).
//
// Threads: each thread has a current environment, the system's own unless another was installed. Handles,
// timers and notifications belong to the thread that made them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quorix/base/String.h"

namespace quorix {

using SocketId = std::int32_t;
using TimerId = std::int32_t;

using TimerTick = std::function<void()>;

enum eSocketEvent : std::int32_t {
    SOCK_Read = 1,
    SOCK_Write = 2,
    SOCK_Accept = 8,
    SOCK_Connect = 16,
    SOCK_Close = 32,
};

enum eSocketError : std::int32_t {
    SOCKERR_None = 0,
    SOCKERR_WouldBlock = 10035,
    SOCKERR_Aborted = 10053,
    SOCKERR_Reset = 10054,
    SOCKERR_TimedOut = 10060,
    SOCKERR_Refused = 10061,
};

// In the order of the network.
using Ip6 = std::array<std::uint8_t, 16>;

// `ip` is IPv4 in host byte order; it does not count where there is an IPv6 address.
struct Address {
    std::uint32_t ip = 0;
    std::uint16_t port = 0;
    std::optional<Ip6> ip6 = {};
};

// Where a service of a domain is to be found: an SRV record (RFC 2782).
struct ServiceTarget {
    std::string host;
    std::uint16_t port = 0;
};

using LookUpId = std::int32_t;
using AddressesFound = std::function<void(std::vector<Address>)>;
using ServiceFound = std::function<void(std::vector<ServiceTarget>)>;

// The shortest interval of a timer, in milliseconds; a shorter one counts as this.
constexpr std::int32_t kShortestInterval = 10;

// How many unread bytes are taken off a connection at most when it is closed. Closing it with unread bytes
// would reset it, and the peer would lose what was sent last.
constexpr std::size_t kMostDrained = 1'000'000;

// What a transfer did: the count of bytes, or -1 and an error. A receive of 0 bytes is the end of the stream.
struct Transfer {
    std::int32_t count = 0;
    std::int32_t error = SOCKERR_None;
};

// A new socket, or 0 and an error.
struct NewSocket {
    SocketId id = 0;
    std::int32_t error = SOCKERR_None;
};

// The hidden window through which Windows delivers notifications; all zero on other systems.
struct HiddenWindow {
    std::intptr_t handle = 0;
    std::intptr_t previousProcedure = 0;
};

// Takes what the pump delivers for a socket.
class SocketSink {
public:
    virtual ~SocketSink() = default;
    virtual void OnSocketEvent(SocketId socket, std::int32_t event, std::int32_t error) = 0;
    virtual void OnSocketTimer(SocketId socket) = 0;
};

class Environment {
public:
    virtual ~Environment() = default;

    // The calling thread's environment.
    static Environment& Current();

    // Makes `other` the calling thread's environment while in scope.
    class Use {
    public:
        explicit Use(Environment& other);
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        Environment* previous_;
    };

    // Notifications of a socket reach `sink` (which must outlive the window) through the window it is
    // selected on.
    virtual HiddenWindow OpenWindow(SocketSink& sink) = 0;
    virtual void CloseWindow(HiddenWindow& window) = 0;

    // Every connection sends what it is given at once (TCP_NODELAY).
    virtual NewSocket CreateSocket(bool ip6) = 0;
    virtual std::int32_t Bind(SocketId socket, const Address& local, bool reuseAddress) = 0;
    virtual std::int32_t Listen(SocketId socket, std::int32_t backlog) = 0;
    virtual NewSocket Accept(SocketId listener) = 0;

    // A blocking socket returns when connected. A selected one returns SOCKERR_WouldBlock and notifies
    // SOCK_Connect later; a non-blocking one that is not selected is writable when the attempt has ended.
    virtual std::int32_t Connect(SocketId socket, Address peer) = 0;

    // Never raises a signal. A selected socket that takes nothing returns SOCKERR_WouldBlock and notifies
    // SOCK_Write once there is room again.
    virtual Transfer Send(SocketId socket, std::string_view bytes) = 0;
    virtual Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) = 0;

    // Notifies SOCK_Read again after other notifications and timers, whether or not the system holds bytes:
    // the reader itself holds some. SOCK_Close waits until then.
    virtual void ReadAgain(SocketId socket) = 0;

    // Stops every notification and timer of the socket, those already queued included, and closes it. What
    // was sent still reaches the peer, unread bytes or not; nothing is waited for.
    virtual void Close(SocketId socket) = 0;

    // Chooses the events (a sum of eSocketEvent) that are notified, and makes the socket non-blocking. With
    // an empty `events` nothing is notified any more. SOCK_Close comes after the last byte has been read.
    virtual std::int32_t AsyncSelect(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                                     std::int32_t events) = 0;
    virtual std::int32_t SetBlocking(SocketId socket, bool blocking) = 0;

    // Waits until the socket can be read (or written), without running the pump. SOCKERR_TimedOut after
    // `milliseconds`; an error of the socket itself counts as ready.
    virtual std::int32_t WaitReadable(SocketId socket, std::int32_t milliseconds) = 0;
    virtual std::int32_t WaitWritable(SocketId socket, std::int32_t milliseconds) = 0;

    // The pending error of the socket, which is cleared by asking.
    virtual std::int32_t PendingError(SocketId socket) = 0;

    virtual Address LocalAddress(SocketId socket) = 0;
    virtual Address PeerAddress(SocketId socket) = 0;

    // A dotted address, else the first IPv4 address of a name. Blocks while looking up.
    virtual std::optional<std::uint32_t> Resolve(const std::string& host) = 0;
    virtual std::string HostName() = 0;

    // Look up without blocking. The answer comes once, through the pump, unless the look-up is cancelled: the
    // addresses of a name (UTF-8) or a literal address, without a port, in the order in which to try them;
    // the targets of a service such as "xmpp-client" over TCP, likewise. Empty when there is none.
    virtual LookUpId LookUpAddresses(const std::string& host, AddressesFound found) = 0;
    virtual LookUpId LookUpService(const std::string& service, const std::string& domain,
                                   ServiceFound found) = 0;
    virtual void CancelLookUp(LookUpId lookUp) = 0;

    // The certificates (DER) that the system trusts, besides those that OpenSSL finds at its own paths.
    virtual std::vector<std::string> TrustedCertificates() = 0;

    // A number that nobody foresees.
    virtual std::uint32_t Random() = 0;

    // One periodic timer for each socket, delivered to the sink's OnSocketTimer.
    virtual void SetSocketTimer(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                                std::int32_t milliseconds) = 0;
    virtual void KillSocketTimer(SocketId socket, const HiddenWindow& window) = 0;

    // A periodic timer; 0 when none could be made. The tick may kill any timer, its own included.
    virtual TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) = 0;
    virtual void KillTimer(TimerId timer) = 0;

    // A clock that only goes forward.
    virtual std::int64_t Milliseconds() = 0;

    virtual void DoEvents() = 0;  // delivers what is pending and returns
    virtual void Run() = 0;       // delivers until Quit
    virtual void Quit() = 0;

    // See MessageLoop. -1 where a loop cannot wait for a descriptor.
    virtual int Descriptor() { return -1; }
    virtual void Dispatch() { DoEvents(); }

    virtual void CriticalMessage(StringView text, StringView title) = 0;
};

// The environment of the operating system, one for each thread.
Environment& SystemEnvironment();

// "a.b.c.d"
String DottedAddress(std::uint32_t ip);

// The address that `text` spells out as four decimal numbers, if it does.
std::optional<std::uint32_t> ParseDotted(std::string_view text);

// "a.b.c.d", or IPv6 in its shortest form (RFC 5952).
String AddressText(const Address& address);

}  // namespace quorix
