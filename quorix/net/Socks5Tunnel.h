// The client's side of SOCKS version 5 (RFC 1928) with its user name and password (RFC 1929), reply by reply:
// in any pieces, by the proxy's choice of a method, and with the reason of a refusal. It opens no socket.
#pragma once

#include <string>

#include "quorix/net/Socks5Exchange.h"
#include "quorix/platform/Environment.h"

namespace quorix {

// What to send, and which of the bytes belong to whatever comes through the open tunnel.
struct Socks5Step {
    std::string answer;
    std::string_view rest;
};

class Socks5Tunnel {
public:
    // Where to, in place of the request's host.
    void Destination(const Address& address) { destination_ = address; }

    // The greeting; "" when the request cannot be put: a text of more than 255 bytes in UTF-8.
    std::string Begin(Socks5Request request);

    Socks5Step Take(std::string_view bytes);

    bool IsOpen() const { return stage_ == Stage::Open; }
    bool HasFailed() const { return stage_ == Stage::Failed; }
    // The proxy itself is ready, but cannot or will not reach the destination.
    bool IsRefused() const { return isRefused_; }
    StringView Reason() const { return reason_; }

private:
    enum class Stage { Idle, Method, Login, Connection, Open, Failed };

    // How long the reply is that begins what has come; 0 while that cannot be told.
    std::size_t ReplySize() const;
    std::string TakeReply(std::string_view reply);
    std::string TakeMethod(char method);
    std::string Login();
    std::string Connection();
    std::string Fail(StringView reason);

    Socks5Request request_;
    std::optional<Address> destination_;
    Stage stage_ = Stage::Idle;
    std::string pending_;
    StringView reason_;
    bool isRefused_ = false;
};

}  // namespace quorix
