#include "quorix/net/mTimer.h"

#include <algorithm>
#include <utility>

#include "quorix/platform/Environment.h"

namespace quorix::mTimer {

namespace {

constexpr std::int32_t kLeastInterval = 10;

thread_local std::weak_ptr<cHelpEvent> relaySlot;
thread_local TimerId keepAliveId = 0;
thread_local TimerId reconnectId = 0;

std::shared_ptr<TimerTarget> Target() {
    std::shared_ptr<cHelpEvent> relay = relaySlot.lock();
    return relay ? relay->GetMe() : nullptr;
}

void OnKeepAlive() {
    if (std::shared_ptr<TimerTarget> target = Target()) target->KeepAliveTick();
}

void OnReconnect() {
    if (std::shared_ptr<TimerTarget> target = Target()) target->ReconnectTick();
}

void Kill(TimerId& slot) {
    if (TimerId id = std::exchange(slot, 0)) Environment::Current().KillTimer(id);
}

void Arm(TimerId& slot, std::int32_t milliseconds, TimerTick tick) {
    Kill(slot);
    slot = Environment::Current().SetTimer(std::max(milliseconds, kLeastInterval), tick);
}

}  // namespace

void SetRelay(const std::shared_ptr<cHelpEvent>& relay) { relaySlot = relay; }

void Release(const std::shared_ptr<cHelpEvent>& relay) {
    if (relaySlot.lock() != relay) return;
    relaySlot.reset();
    Kill(keepAliveId);
    Kill(reconnectId);
}

void StartKeepAlive(std::int32_t milliseconds) {
    Kill(keepAliveId);
    if (milliseconds > 0) Arm(keepAliveId, milliseconds, OnKeepAlive);
}
void StopKeepAlive() { Kill(keepAliveId); }
void StartReconnect(std::int32_t milliseconds) { Arm(reconnectId, milliseconds, OnReconnect); }
void StopReconnect() { Kill(reconnectId); }

}  // namespace quorix::mTimer
