// The session's two timers, keep-alive and reconnect.
//
// A timer callback is a plain function without an object. It finds its session through one relay slot, which
// holds the relay of the session created last. Relay slot and timer slots are one per thread: one live
// session a thread is the supported use where timers matter.
#pragma once

#include <cstdint>
#include <memory>

namespace quorix {

// What the ticks reach.
class TimerTarget {
public:
    virtual ~TimerTarget() = default;
    virtual void KeepAliveTick() = 0;
    virtual void ReconnectTick() = 0;
};

// The relay between a timer callback and the session that created it.
class cHelpEvent {
public:
    explicit cHelpEvent(std::weak_ptr<TimerTarget> target) : target_(std::move(target)) {}
    std::shared_ptr<TimerTarget> GetMe() const { return target_.lock(); }

private:
    std::weak_ptr<TimerTarget> target_;
};

namespace mTimer {

// Ticks go to `relay` from now on. Its session must Release it before it ends.
void SetRelay(const cHelpEvent& relay);

// The session of `relay` ends: kills the timers that it has armed, and empties the relay slot if that is
// still its own.
void Release(const cHelpEvent& relay);

// Arming a timer kills the one in its slot. A keep-alive interval of 0 or less is not armed, nor is a
// negative reconnect interval; 0 is the shortest that the system knows. `owner` is the relay of the session
// that arms.
void StartKeepAlive(const cHelpEvent& owner, std::int32_t milliseconds);
void StopKeepAlive();
void StartReconnect(const cHelpEvent& owner, std::int32_t milliseconds);
void StopReconnect();

}  // namespace mTimer
}  // namespace quorix
