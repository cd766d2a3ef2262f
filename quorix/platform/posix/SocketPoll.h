// All sockets of a thread behind one source of its main loop, so that what happens to one of them costs the
// same however many others are idle. Threads: the loop's own.
//
// The source polls an epoll descriptor, in which each socket stands for what it waits for. A socket says when
// that may have changed (Touch), and is asked once before the loop waits again.
#pragma once

#include <glib.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "quorix/platform/posix/SocketWatch.h"

namespace quorix {

// Microseconds that what is due of one kind, sockets or timers, may take before other sources have their
// turn.
inline constexpr std::int64_t kLongestTurn = 10000;

class SocketPoll {
public:
    // Calls `touched` when a socket is touched that was not.
    SocketPoll(GMainContext* context, std::function<void()> touched);
    ~SocketPoll();
    SocketPoll(const SocketPoll&) = delete;
    SocketPoll& operator=(const SocketPoll&) = delete;

    // While in scope, the context waits for the sockets themselves, which spares a call of the system at each
    // turn, as long as nothing else is to be waited for. Not in a context that somebody waits for in a manner
    // of his own.
    class DirectWait {
    public:
        DirectWait(SocketPoll& poll, GMainContext* context);
        ~DirectWait();
        DirectWait(const DirectWait&) = delete;
        DirectWait& operator=(const DirectWait&) = delete;

    private:
        GMainContext* context_;
    };

    void Touch(SocketWatch& watch);

    // Waits for `wanted` at the socket of `watch` in place of `former`. Zero is none, hang-ups included.
    void Wait(SocketWatch& watch, unsigned former, unsigned wanted);

private:
    struct Source;
    static gboolean OnPrepare(GSource* source, gint* timeout);
    static gboolean OnCheck(GSource* source);
    static gboolean OnDispatch(GSource* source, GSourceFunc callback, gpointer data);
    static gint Poll(GPollFD* descriptors, guint count, gint milliseconds);

    void AskTouched();
    void Ask(SocketWatch& watch);
    void Enqueue(SocketWatch& watch);
    bool HasNews() const;
    bool Includes(const GPollFD& wakeUp);
    gint Gather(gint milliseconds, GPollFD* wakeUp);
    void DeliverForATurn();
    void Deliver(SocketWatch& watch);

    std::function<void()> onTouched_;
    int epoll_;
    int wakeUp_ = -1;  // the context's, once it is in the set; its data are null
    GSource* source_;
    gpointer polled_;
    SocketWatch* delivering_ = nullptr;
    std::vector<std::weak_ptr<SocketWatch>> touched_;
    std::deque<std::weak_ptr<SocketWatch>> due_;
};

}  // namespace quorix
