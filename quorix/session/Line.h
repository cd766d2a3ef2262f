// How a session comes to its connection, keeps it, and gets it back: what lies between the session and its
// socket. One manner for each mode of a session.
//
// The session tells its line what happens, and the line acts on the session. Events may replace the line, so
// whoever calls one that raises events holds it meanwhile.
#pragma once

#include <memory>
#include <string_view>

#include "quorix/link/Stanza.h"

namespace quorix {

class SessionCore;

inline constexpr std::int32_t kMillisecondsASecond = 1000;
inline constexpr StringView kKeepAliveText = u"  \t  ";

class Line {
public:
    explicit Line(SessionCore& session) : session_(session) {}
    virtual ~Line() = default;
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    // An attempt begins; the former connection is closed. The socket is not opened for a proxy that is not
    // supported.
    virtual void AttemptBegins() = 0;
    virtual void OpenSocket() = 0;

    // The socket is connected, to the server or the proxy. The line sends the header when the way is free.
    virtual void SocketUp() = 0;
    virtual void SocketFailed(std::int32_t number) = 0;  // OnSocketError was raised

    // Whether texts may be sent over the connected socket.
    virtual bool IsFree() const { return true; }

    virtual void Transmit(std::string_view bytes) = 0;

    // What has come from the socket; the answer is what of it belongs to the stream.
    virtual std::string_view Receive(std::string_view bytes) = 0;

    virtual void StreamOpens() {}  // the login is about to be asked for
    virtual void LoggedIn() = 0;

    // True for the answer to a question of the line's own, which concerns nobody else.
    virtual bool IsOwnAnswer(const Stanza& /*stanza*/) { return false; }

    // Seconds until the next attempt to connect again, rounded up; 0 when none is waited for.
    virtual std::int32_t RetryDelay() const { return 0; }

    virtual void Closing() = 0;  // the session ends; events follow
    virtual void Closed() = 0;   // they were raised

protected:
    // An HTTP proxy gets each text as a request of its own, and what begins as a response is one.
    void TransmitByRequest(std::string_view bytes);
    std::string_view WithoutResponses(std::string_view bytes) const;

    SessionCore& session_;
};

std::shared_ptr<Line> NewClassicLine(SessionCore& session);
std::shared_ptr<Line> NewModernLine(SessionCore& session);

}  // namespace quorix
