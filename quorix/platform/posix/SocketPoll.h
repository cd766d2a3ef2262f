// All sockets of a thread behind one source of its main loop, so that what happens to one of them costs the
// same however many others are idle. Threads: the loop's own.
//
// The source polls an epoll descriptor, in which each socket stands for what it waits for. A socket says when
// that may have changed (Touch), and is asked once before the loop waits again.
#pragma once

#include <glib.h>

#include <deque>
#include <memory>
#include <vector>

#include "quorix/platform/posix/SocketWatch.h"

namespace quorix {

class SocketPoll {
public:
    explicit SocketPoll(GMainContext* context);
    ~SocketPoll();
    SocketPoll(const SocketPoll&) = delete;
    SocketPoll& operator=(const SocketPoll&) = delete;

    void Touch(SocketWatch& watch);

    // Waits for `wanted` at the socket of `watch` in place of `former`. Zero is none, hang-ups included.
    void Wait(SocketWatch& watch, unsigned former, unsigned wanted);

private:
    struct Source;
    static gboolean OnPrepare(GSource* source, gint* timeout);
    static gboolean OnCheck(GSource* source);
    static gboolean OnDispatch(GSource* source, GSourceFunc callback, gpointer data);

    void AskTouched();
    void Enqueue(SocketWatch& watch);
    bool HasNews() const;
    void Gather();
    void DeliverForATurn();

    int epoll_;
    GSource* source_;
    gpointer polled_;
    std::vector<std::weak_ptr<SocketWatch>> touched_;
    std::deque<std::weak_ptr<SocketWatch>> due_;
};

}  // namespace quorix
