#include "tests/real/Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace quorix::real {
namespace {

constexpr int kFirstPort = 20000;
constexpr int kPorts = 12000;
constexpr timeval kPatience{10, 0};

class Socket {
public:
    Socket() : number_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (number_ >= 0) close(number_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int Number() const { return number_; }
    int Release() { return std::exchange(number_, -1); }

private:
    int number_;
};

sockaddr_in Address(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool Binds(int port) {
    const Socket probe;
    const int yes = 1;
    setsockopt(probe.Number(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    const sockaddr_in address = Address(port);
    return bind(probe.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool Connects(const Socket& socket, int port) {
    const sockaddr_in address = Address(port);
    return connect(socket.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

int FreePort() {
    // Where a process begins depends on its number, so that two test runs at a time seldom meet.
    static int next = static_cast<int>(getpid()) % kPorts;
    for (int tries = 0; tries < kPorts; ++tries) {
        const int port = kFirstPort + next++ % kPorts;
        if (Binds(port)) return port;
    }
    throw std::runtime_error("No free port");
}

bool Accepts(int port) { return Connects(Socket(), port); }

Connection::Connection(int port) {
    Socket socket;
    setsockopt(socket.Number(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    if (!Connects(socket, port)) throw std::runtime_error("Nothing accepts on port " + std::to_string(port));
    socket_ = socket.Release();
}

Connection::~Connection() { close(socket_); }

void Connection::Send(std::string_view text) const {
    if (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("The server took only a part");
    }
}

std::string Connection::ReceiveUntil(std::string_view mark) {
    std::array<char, 4096> chunk;
    for (;;) {
        const auto found = arrived_.find(mark);
        const auto end = found == std::string::npos ? found : arrived_.find('>', found + mark.size() - 1);
        if (end != std::string::npos) {
            std::string taken = arrived_.substr(0, end + 1);
            arrived_.erase(0, end + 1);
            return taken;
        }
        const ssize_t count = recv(socket_, chunk.data(), chunk.size(), 0);
        if (count <= 0) throw std::runtime_error("No " + std::string(mark) + " in: " + arrived_);
        arrived_.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace quorix::real
