// A small Jabber server in the same process, for the demonstration and for tests.
//
// It listens on a loopback port of the current environment (real sockets, or a deterministic one), serves the
// accounts it is given, and plays one contact, who comes online with the user and answers every message.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "quorix/link/Stanza.h"
#include "quorix/net/cSocketSSL.h"
#include "testkit/LoopbackServices.h"

namespace quorix::testkit {

struct LoopbackAccount {
    String password;
    bool digest = true;
    std::int32_t sequence = 0;  // above 0: zero-knowledge login is on offer
    String token{};
};

class LoopbackConnection;

class LoopbackServer : public SocketEvents, public std::enable_shared_from_this<LoopbackServer> {
public:
    static constexpr StringView kDomain = u"localhost";
    static constexpr StringView kContact = u"echo@localhost";

    static std::shared_ptr<LoopbackServer> Create() { return std::make_shared<LoopbackServer>(); }
    ~LoopbackServer() override;

    // Begins to listen, on any free port or on the one given. Returns the port.
    std::uint16_t Start(std::uint16_t port = 0);

    void AddAccount(StringView username, LoopbackAccount account) {
        accounts_.insert_or_assign(String(username), std::move(account));
    }
    LoopbackAccount* FindAccount(StringView username);
    void RemoveAccount(StringView username) { accounts_.erase(String(username)); }

    // Ends every connection from the server's side, without a closing tag.
    void DropConnections();

    std::size_t ConnectionCount() const { return connections_.size(); }

    void OnConnectionRequest() override;

private:
    friend class LoopbackConnection;

    void Forget(const LoopbackConnection* connection);

    std::shared_ptr<cSocketSSL> listener_;
    std::vector<std::shared_ptr<LoopbackConnection>> connections_;
    std::map<String, LoopbackAccount, std::less<>> accounts_;
    LoopbackServices services_;
    std::uint32_t nextStream_ = 0;
};

}  // namespace quorix::testkit
