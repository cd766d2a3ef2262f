#include "testkit/LoopbackServer.h"

#include "quorix/net/mSocketSSL.h"
#include "testkit/LoopbackConnection.h"

namespace quorix::testkit {

LoopbackServer::~LoopbackServer() { DropConnections(); }

std::uint16_t LoopbackServer::Start(std::uint16_t port) {
    listener_ = std::make_shared<cSocketSSL>();
    listener_->Advise(weak_from_this());
    listener_->LocalPort(port);
    listener_->Listen();
    return static_cast<std::uint16_t>(listener_->LocalPort());
}

void LoopbackServer::OnConnectionRequest() {
    auto socket = std::make_shared<cSocketSSL>();
    String streamId = Concat({u"loopback-", ToString(++nextStream_)});
    auto connection = std::make_shared<LoopbackConnection>(*this, socket, streamId);
    connections_.push_back(connection);
    socket->Advise(connection);
    socket->Accept(AcceptConnection(listener_->SocketHandle()));
}

LoopbackAccount* LoopbackServer::FindAccount(StringView username) {
    auto found = accounts_.find(username);
    return found == accounts_.end() ? nullptr : &found->second;
}

void LoopbackServer::DropConnections() {
    auto connections = std::move(connections_);
    connections_.clear();
    for (const auto& connection : connections) connection->Close();
}

void LoopbackServer::Forget(const LoopbackConnection* connection) {
    std::erase_if(connections_, [&](const auto& known) { return known.get() == connection; });
}

}  // namespace quorix::testkit
