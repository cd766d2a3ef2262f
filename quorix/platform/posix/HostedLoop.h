// A GLib main context inside another loop: one descriptor that is readable when the context has something to
// do. Threads: the context's own.
//
// An epoll descriptor holds what the context would poll, and a timer for when it wants to be woken.
#pragma once

#include <glib.h>

#include <map>
#include <vector>

namespace quorix {

class HostedLoop {
public:
    explicit HostedLoop(GMainContext* context);
    ~HostedLoop();
    HostedLoop(const HostedLoop&) = delete;
    HostedLoop& operator=(const HostedLoop&) = delete;

    int Descriptor() const { return epoll_; }

    // One turn of the context, and the descriptor set for the next.
    void Dispatch();

    // Something came up that the context has not been asked about; it is asked at the next Dispatch.
    void Changed();

private:
    void Prepare();
    void Watch(const std::vector<GPollFD>& wanted);
    void WakeIn(int milliseconds);  // negative: never

    GMainContext* context_;
    int epoll_;
    int timer_;
    std::map<int, unsigned> watched_;
    bool isDispatching_ = false;
};

}  // namespace quorix
