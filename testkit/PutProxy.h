// An HTTP proxy that takes a stream in PUT requests, each with a piece of it as the body, for tests.
//
// It connects to the host and port of the first request and sends one status head. From the next request on
// it relays: a client drops a chunk that begins with a status line as a whole, so nothing may follow the head
// in its chunk.
#pragma once

#include <memory>
#include <string>

#include "quorix/net/cSocketSSL.h"

namespace quorix::testkit {

class PutProxy : public std::enable_shared_from_this<PutProxy> {
public:
    static std::shared_ptr<PutProxy> Create() { return std::make_shared<PutProxy>(); }

    // Serves one connection at a time, on a port of the current environment, which is returned.
    std::uint16_t Start();

    std::size_t RequestCount() const { return requests_; }
    const std::string& LastBody() const { return body_; }

private:
    class Listener;
    class Client;
    class Server;

    void TakeClient();
    void TakeRequests(std::string_view bytes);
    bool TakeRequest();
    void ConnectTo(const std::string& authority);
    void Relay();
    void End();

    std::shared_ptr<cSocketSSL> listener_ = std::make_shared<cSocketSSL>();
    std::shared_ptr<cSocketSSL> client_ = std::make_shared<cSocketSSL>();
    std::shared_ptr<cSocketSSL> server_ = std::make_shared<cSocketSSL>();
    std::shared_ptr<SocketEvents> sinks_[3];
    std::string inbound_;   // from the client, not yet a whole request
    std::string toServer_;  // bodies that wait for the connection
    std::string toClient_;  // what the server said before the second request
    std::string body_;
    std::size_t requests_ = 0;
    bool connected_ = false;
};

}  // namespace quorix::testkit
