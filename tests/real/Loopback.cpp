#include "tests/real/Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <list>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorix::real {
namespace {

constexpr int kFirstPort = 20000;
constexpr int kPorts = 12000;
constexpr timeval kPatience{10, 0};
constexpr std::string_view kQuery =
    "<?xml version='1.0'?><stream:stream to='localhost' xmlns='jabber:client' "
    "xmlns:stream='http://etherx.jabber.org/streams'><iq type='get' id='up'><query "
    "xmlns='jabber:iq:register'/></iq>";

class Socket {
public:
    explicit Socket(int family = AF_INET) : number_(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() { close(number_); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int Number() const { return number_; }

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

// For as long as this process lives, since a server's port is free while the server is down: by a name in no
// folder, which one process at a time can have.
bool Reserves(int port) {
    static std::list<Socket> held;
    sockaddr_un name{AF_UNIX, {}};
    ("quorix port " + std::to_string(port)).copy(name.sun_path + 1, sizeof name.sun_path - 1);
    if (bind(held.emplace_back(AF_UNIX).Number(), reinterpret_cast<const sockaddr*>(&name), sizeof name) ==
        0) {
        return true;
    }
    held.pop_back();
    return false;
}

bool Connects(const Socket& socket, int port) {
    const sockaddr_in address = Address(port);
    return connect(socket.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

bool HasIp6() {
    const int probe = socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const bool binds = bind(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return binds;
}

int FreePort() {
    // Where a process begins depends on its number, so that it seldom gets what another has just left.
    static int next = static_cast<int>(getpid()) % kPorts;
    for (int tries = 0; tries < kPorts; ++tries) {
        const int port = kFirstPort + next++ % kPorts;
        if (Reserves(port) && Binds(port)) return port;
    }
    throw std::runtime_error("No free port");
}

bool Accepts(int port) { return Connects(Socket(), port); }

// A header alone is answered too early: what follows may be an error while the server's parts find each
// other.
bool AnswersQuery(int port) {
    const Socket socket;
    setsockopt(socket.Number(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    if (!Connects(socket, port)) return false;
    send(socket.Number(), kQuery.data(), kQuery.size(), MSG_NOSIGNAL);
    std::string arrived;
    std::array<char, 4096> chunk;
    for (std::size_t iq = std::string::npos; arrived.find('>', iq) == std::string::npos;) {
        const ssize_t count = recv(socket.Number(), chunk.data(), chunk.size(), 0);
        if (count <= 0) return false;
        arrived.append(chunk.data(), static_cast<std::size_t>(count));
        iq = arrived.find("<iq");
    }
    return arrived.find("result", arrived.find("<iq")) != std::string::npos;
}

}  // namespace quorix::real
