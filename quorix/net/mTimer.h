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

// Ticks go to `relay` from now on.
void SetRelay(const std::shared_ptr<cHelpEvent>& relay);

// Empties the relay slot and kills both timers, if the slot is still `relay`'s.
void Release(const std::shared_ptr<cHelpEvent>& relay);

// Arming a timer kills the one in its slot. A keep-alive interval of 0 or less is not armed.
void StartKeepAlive(std::int32_t milliseconds);
void StopKeepAlive();
void StartReconnect(std::int32_t milliseconds);
void StopReconnect();

}  // namespace mTimer
}  // namespace quorix
