// The environment over user32 and Winsock 1.1.
#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/platform/windows/CodePages.h"
#include "quorix/platform/windows/HiddenWindows.h"
#include "quorix/platform/windows/Resolver.h"
#include "quorix/platform/windows/SystemAddress.h"
// Behind the sockets.
#include <wincrypt.h>

namespace quorix {
namespace {

using windows::kSocketMessage;

// Documents are loaded without asking any environment first.
[[maybe_unused]] const bool codePagesLent = (windows::LendCodePages(), true);

SOCKET Native(SocketId socket) { return static_cast<SOCKET>(socket); }
HWND Native(const HiddenWindow& window) { return reinterpret_cast<HWND>(window.handle); }

std::int32_t ErrorUnless(bool success) { return success ? SOCKERR_None : WSAGetLastError(); }

const sockaddr* Native(const windows::SystemAddress& address) {
    return reinterpret_cast<const sockaddr*>(address.storage.data());
}

using AddressReader = int(PASCAL*)(SOCKET, sockaddr*, int*);
Address ReadAddress(AddressReader reader, SocketId socket) {
    windows::SystemAddress found;
    auto* native = reinterpret_cast<sockaddr*>(found.storage.data());
    if (reader(Native(socket), native, &found.size) != 0) return {};
    return windows::FromSystem(native);
}

// What the system's store of trusted roots holds.
std::vector<std::string> SystemRoots() {
    std::vector<std::string> certificates;
    HCERTSTORE store = CertOpenSystemStoreA(0, "ROOT");
    if (store == nullptr) return certificates;
    const CERT_CONTEXT* next = nullptr;
    while ((next = CertEnumCertificatesInStore(store, next)) != nullptr) {
        certificates.emplace_back(reinterpret_cast<const char*>(next->pbCertEncoded), next->cbCertEncoded);
    }
    CertCloseStore(store, 0);
    return certificates;
}

NewSocket Made(SOCKET socket) {
    if (socket == INVALID_SOCKET) return {0, WSAGetLastError()};
    const BOOL atOnce = TRUE;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
    return {static_cast<SocketId>(socket), SOCKERR_None};
}

int ByteCount(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

Transfer Transferred(int count) {
    if (count == SOCKET_ERROR) return {-1, WSAGetLastError()};
    return {count, SOCKERR_None};
}

void EndSendingAndDrain(SOCKET socket) {
    constexpr int sending = 1;
    u_long nonBlocking = 1;
    if (shutdown(socket, sending) != 0 || ioctlsocket(socket, FIONBIO, &nonBlocking) != 0) return;
    char unread[16384];
    for (std::size_t taken = 0; taken < kMostDrained; taken += sizeof unread) {
        if (recv(socket, unread, sizeof unread, 0) <= 0) return;
    }
}

std::int32_t Wait(SocketId socket, std::int32_t milliseconds, bool forWriting) {
    fd_set wanted;
    FD_ZERO(&wanted);
    FD_SET(Native(socket), &wanted);
    fd_set failed = wanted;
    timeval limit = {milliseconds / 1000, milliseconds % 1000 * 1000};
    const int ready =
        select(0, forWriting ? nullptr : &wanted, forWriting ? &wanted : nullptr, &failed, &limit);
    if (ready == 0) return SOCKERR_TimedOut;
    return ErrorUnless(ready > 0);
}

// Name look-ups are allowed before the first window, too.
class StartedSockets {
public:
    StartedSockets() : started_(WSAStartup(0x0101, &data_) == 0) {}
    ~StartedSockets() {
        if (started_) WSACleanup();
    }
    StartedSockets(const StartedSockets&) = delete;
    StartedSockets& operator=(const StartedSockets&) = delete;

private:
    WSADATA data_;
    bool started_;
};

thread_local std::map<UINT_PTR, TimerTick> ticks;

void CALLBACK OnTick(HWND, UINT, UINT_PTR timer, DWORD) {
    auto found = ticks.find(timer);
    if (found == ticks.end()) return;
    try {
        TimerTick(found->second)();  // it may kill its timer
    } catch (...) {
        // The caller is the system, which knows no exceptions.
    }
}

void Handle(const MSG& message) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

void SocketsCannotStart() {
    Environment::Current().CriticalMessage(u"Winsock is not installed or Setup properly.", u"Winsock Error");
}

class WindowsEnvironment : public Environment {
public:
    HiddenWindow OpenWindow(SocketSink&) override { return windows::OpenHiddenWindow(&SocketsCannotStart); }
    void CloseWindow(HiddenWindow& window) override { windows::CloseHiddenWindow(window); }

    NewSocket CreateSocket(bool ip6) override {
        return Made(socket(windows::FamilyFor(ip6), SOCK_STREAM, IPPROTO_TCP));
    }

    // The address of a connection that lingers can be bound again anyway; the option of that name would let
    // two programs listen on one port.
    std::int32_t Bind(SocketId socket, const Address& local, bool /*reuseAddress*/) override {
        const windows::SystemAddress native = windows::ToSystem(local);
        return ErrorUnless(bind(Native(socket), Native(native), native.size) == 0);
    }

    std::int32_t Listen(SocketId socket, std::int32_t backlog) override {
        return ErrorUnless(listen(Native(socket), backlog) == 0);
    }

    NewSocket Accept(SocketId listener) override { return Made(accept(Native(listener), nullptr, nullptr)); }

    std::int32_t Connect(SocketId socket, Address peer) override {
        const windows::SystemAddress native = windows::ToSystem(peer);
        return ErrorUnless(connect(Native(socket), Native(native), native.size) == 0);
    }

    Transfer Send(SocketId socket, std::string_view bytes) override {
        return Transferred(send(Native(socket), bytes.data(), ByteCount(bytes.size()), 0));
    }

    Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) override {
        return Transferred(recv(Native(socket), buffer, ByteCount(capacity), 0));
    }

    void ReadAgain(SocketId socket) override { windows::NotifyReadAgain(socket); }

    void Close(SocketId socket) override {
        WSAAsyncSelect(Native(socket), nullptr, 0, 0);  // or draining is notified
        EndSendingAndDrain(Native(socket));
        closesocket(Native(socket));
        windows::DisownSocket(socket);
    }

    std::int32_t AsyncSelect(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                             std::int32_t events) override {
        if (events == 0) {
            const std::int32_t error = ErrorUnless(WSAAsyncSelect(Native(socket), Native(window), 0, 0) == 0);
            windows::DisownSocket(socket);
            return error;
        }
        windows::OwnSocket(socket, Native(window), sink);
        return ErrorUnless(WSAAsyncSelect(Native(socket), Native(window), kSocketMessage, events) == 0);
    }

    std::int32_t SetBlocking(SocketId socket, bool blocking) override {
        u_long nonBlocking = blocking ? 0 : 1;
        return ErrorUnless(ioctlsocket(Native(socket), FIONBIO, &nonBlocking) == 0);
    }

    std::int32_t WaitReadable(SocketId socket, std::int32_t milliseconds) override {
        return Wait(socket, milliseconds, false);
    }
    std::int32_t WaitWritable(SocketId socket, std::int32_t milliseconds) override {
        return Wait(socket, milliseconds, true);
    }

    std::int32_t PendingError(SocketId socket) override {
        int error = 0;
        int size = sizeof error;
        const int result =
            getsockopt(Native(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
        return result == 0 ? error : WSAGetLastError();
    }

    Address LocalAddress(SocketId socket) override { return ReadAddress(&getsockname, socket); }
    Address PeerAddress(SocketId socket) override { return ReadAddress(&getpeername, socket); }

    std::optional<std::uint32_t> Resolve(const std::string& host) override {
        if (auto dotted = ParseDotted(host)) return dotted;
        const StartedSockets started;
        const hostent* entry = gethostbyname(host.c_str());
        if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr) return {};
        return ntohl(reinterpret_cast<const in_addr*>(entry->h_addr_list[0])->s_addr);
    }

    std::string HostName() override {
        const StartedSockets started;
        char name[256] = {};
        return gethostname(name, sizeof name - 1) == 0 ? name : std::string();
    }

    LookUpId LookUpAddresses(const std::string& host, AddressesFound found) override {
        return resolver_.LookUpAddresses(host, std::move(found));
    }
    LookUpId LookUpService(const std::string& service, const std::string& domain,
                           ServiceFound found) override {
        return resolver_.LookUpService(service, domain, std::move(found));
    }
    void CancelLookUp(LookUpId lookUp) override { resolver_.Cancel(lookUp); }

    std::vector<std::string> TrustedCertificates() override { return SystemRoots(); }
    std::uint32_t Random() override { return std::random_device()(); }

    // The timer of a socket is a timer of its window, under the socket's number.
    void SetSocketTimer(SocketId socket, const HiddenWindow& window, SocketSink& sink,
                        std::int32_t milliseconds) override {
        windows::OwnSocket(socket, Native(window), sink);
        ::SetTimer(Native(window), static_cast<UINT_PTR>(socket), static_cast<UINT>(milliseconds), nullptr);
    }

    void KillSocketTimer(SocketId socket, const HiddenWindow& window) override {
        ::KillTimer(Native(window), static_cast<UINT_PTR>(socket));
    }

    TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) override {
        const UINT_PTR id = ::SetTimer(nullptr, 0, static_cast<UINT>(std::max(milliseconds, 10)), &OnTick);
        if (id != 0) ticks[id] = std::move(tick);
        return static_cast<TimerId>(id);
    }

    void KillTimer(TimerId timer) override {
        const auto id = static_cast<UINT_PTR>(timer);
        ::KillTimer(nullptr, id);
        ticks.erase(id);
    }

    std::int64_t Milliseconds() override { return static_cast<std::int64_t>(GetTickCount64()); }

    void DoEvents() override {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) {  // meant for the loop that called us
                PostQuitMessage(static_cast<int>(message.wParam));
                return;
            }
            Handle(message);
        }
    }

    void Run() override {
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0) Handle(message);
    }

    void Quit() override { PostQuitMessage(0); }

    void CriticalMessage(StringView text, StringView title) override {
        MessageBoxW(nullptr, reinterpret_cast<const wchar_t*>(String(text).c_str()),
                    reinterpret_cast<const wchar_t*>(String(title).c_str()), MB_OK | MB_ICONERROR);
    }

private:
    windows::Resolver resolver_;
};

}  // namespace

Environment& SystemEnvironment() {
    static thread_local WindowsEnvironment environment;
    return environment;
}

}  // namespace quorix
