// Ports and a plain blocking connection on 127.0.0.1, to see what a server does without our own client.
#pragma once

#include <string>
#include <string_view>

namespace quorix::real {

inline constexpr std::string_view kStreamHeader =
    "<?xml version='1.0'?><stream:stream to='localhost' xmlns='jabber:client' "
    "xmlns:stream='http://etherx.jabber.org/streams'>";

// A port that nobody listens on, never given out before by this process, and below the range that the
// system takes for outgoing connections: it stays free while its server is down.
int FreePort();

// True when something accepts connections on the port.
bool Accepts(int port);

// Every failure, and an answer that takes longer than 10 s, is a std::runtime_error.
class Connection {
public:
    explicit Connection(int port);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Send(std::string_view text) const;

    // Takes in what has arrived up to the first '>' behind `mark`, and returns it.
    std::string ReceiveUntil(std::string_view mark);

private:
    int socket_;
    std::string arrived_;
};

}  // namespace quorix::real
