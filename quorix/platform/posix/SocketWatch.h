// One socket as the GLib main loop sees it: which notifications are selected, which of them are due.
//
// A notification is raised once and then stays silent until the call that re-enables it (a receive, a send
// that would block, an accept), so that a socket nobody serves costs no time. Threads: the loop's own.
#pragma once

#include <glib.h>

#include <memory>
#include <optional>

#include "quorix/platform/Environment.h"

namespace quorix {

class SocketWatch : public std::enable_shared_from_this<SocketWatch> {
public:
    enum class Phase { Idle, Connecting, Connected, Listening };

    SocketWatch(SocketId socket, Phase phase) : socket_(socket), phase_(phase) {}
    ~SocketWatch();
    SocketWatch(const SocketWatch&) = delete;
    SocketWatch& operator=(const SocketWatch&) = delete;

    void Select(GMainContext* context, SocketSink& sink, std::int32_t events);
    void Deselect();
    bool IsSelected() const { return source_ != nullptr; }

    void SetTimer(GMainContext* context, SocketSink& sink, std::int32_t milliseconds);
    void KillTimer();

    void EnterPhase(Phase phase) { phase_ = phase; }
    // The connection attempt has ended already; the pump still has to say so.
    void ConnectEnded(std::int32_t error);
    void Received(Transfer transfer);
    void ReadAgain() { readAgain_ = true; }
    void Rearm(eSocketEvent event) { armed_ |= event & events_; }

private:
    struct Source;
    static gboolean OnPrepare(GSource* source, gint* timeout);
    static gboolean OnCheck(GSource* source);
    static gboolean OnDispatch(GSource* source, GSourceFunc callback, gpointer data);
    static gboolean OnTimer(gpointer watch);

    unsigned Wanted() const;
    unsigned Ready() const;
    void UpdatePoll();
    bool HasDueWithoutPoll() const;
    bool IsDue(eSocketEvent event, unsigned ready) const;
    void Dispatch(unsigned ready);
    void Deliver(eSocketEvent event);
    std::int32_t ErrorFor(eSocketEvent event);
    std::int32_t TakeConnectResult();

    SocketId socket_;
    Phase phase_;
    SocketSink* sink_ = nullptr;
    std::int32_t events_ = 0;  // selected
    std::int32_t armed_ = 0;   // selected, and not raised since they were last re-enabled
    bool readAgain_ = false;   // the reader holds bytes that poll cannot see
    std::optional<std::int32_t> connectResult_;
    std::optional<std::int32_t> end_;  // the stream has ended, with this error or with none
    GSource* source_ = nullptr;
    gpointer polled_ = nullptr;
    unsigned polledFor_ = 0;
    SocketSink* timerSink_ = nullptr;
    GSource* timer_ = nullptr;
};

// Destroys and releases `source`, if any, and empties it.
void Dispose(GSource*& source);

}  // namespace quorix
