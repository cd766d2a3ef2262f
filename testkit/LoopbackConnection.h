// The server's side of one client connection: stream header, login, and a table of what answers which query.
#pragma once

#include "quorix/session/Framer.h"
#include "testkit/LoopbackServer.h"

namespace quorix::testkit {

class LoopbackConnection : public SocketEvents {
public:
    LoopbackConnection(LoopbackServer& server, std::shared_ptr<cSocketSSL> socket, String streamId)
        : server_(server), socket_(std::move(socket)), streamId_(std::move(streamId)) {}

    void Close() { socket_->Disconnect(); }

    void OnDataArrival(std::string_view bytes, StringView remoteHost) override;
    void OnClosed() override;

private:
    using Answer = void (LoopbackConnection::*)(const Stanza&);
    struct Route {
        StringView nameSpace;
        Answer answer;
    };
    static const Route kRoutes[];

    void OpenStream();
    void Take(const Stanza& stanza);
    void TakeIq(const Stanza& stanza);
    void TakePresence(const Stanza& stanza);
    void TakeMessage(const Stanza& stanza);

    void Auth(const Stanza& stanza);
    void Login(const Stanza& stanza);
    bool Proves(const LoopbackAccount& account, const ParsedNode& query) const;
    void Register(const Stanza& stanza);
    void RosterList(const Stanza& stanza);

    void Send(StringView xml) { socket_->SendData(xml); }
    void Result(const Stanza& stanza, StringView content);
    void Error(const Stanza& stanza, StringView code, StringView text);
    String FullJid() const;

    LoopbackServer& server_;
    std::shared_ptr<cSocketSSL> socket_;
    String streamId_;
    String username_;
    String resource_;
    bool streamOpen_ = false;
    bool authorized_ = false;
    Framer framer_;
};

}  // namespace quorix::testkit
