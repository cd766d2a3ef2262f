// One socket as the main loop sees it: which notifications are selected, which of them are due.
//
// A notification is raised once and then stays silent until the call that re-enables it (a receive, a send
// that would block, an accept), so that a socket nobody serves costs no time. Threads: the loop's own.
#pragma once

#include <memory>
#include <optional>

#include "quorix/platform/Environment.h"

namespace quorix {

class SocketPoll;

class SocketWatch : public std::enable_shared_from_this<SocketWatch> {
public:
    enum class Phase { Idle, Connecting, Connected, Listening };

    SocketWatch(SocketPoll& poll, SocketId socket, Phase phase)
        : poll_(poll), socket_(socket), phase_(phase) {}
    ~SocketWatch() { Deselect(); }
    SocketWatch(const SocketWatch&) = delete;
    SocketWatch& operator=(const SocketWatch&) = delete;

    void Select(SocketSink& sink, std::int32_t events);
    void Deselect();
    bool IsSelected() const { return sink_ != nullptr; }

    bool IsConnected() const { return phase_ == Phase::Connected; }
    void EnterPhase(Phase phase);
    // The connection attempt has ended already; the pump still has to say so.
    void ConnectEnded(std::int32_t error);
    void Received(Transfer transfer);
    void ReadAgain();
    void Rearm(eSocketEvent event);

private:
    friend class SocketPoll;

    // Waits for what is wanted now. True when something is due that needs no waiting.
    bool Settle();
    void Dispatch();

    void Changed();
    void WaitFor(unsigned wanted);
    unsigned Wanted() const;
    bool IsDue(eSocketEvent event, unsigned ready) const;
    void Deliver(eSocketEvent event);
    std::int32_t ErrorFor(eSocketEvent event);
    std::int32_t TakeConnectResult();

    SocketPoll& poll_;
    SocketId socket_;
    Phase phase_;
    SocketSink* sink_ = nullptr;  // while selected
    std::int32_t events_ = 0;     // selected
    std::int32_t armed_ = 0;      // selected, and not raised since they were last re-enabled
    bool readAgain_ = false;      // the reader holds bytes that poll cannot see
    std::optional<std::int32_t> connectResult_;
    std::optional<std::int32_t> end_;  // the stream has ended, with this error or with none

    unsigned waitedFor_ = 0;
    unsigned ready_ = 0;      // of what was waited for
    bool isTouched_ = false;  // in the poll's lists
    bool isDue_ = false;
};

}  // namespace quorix
