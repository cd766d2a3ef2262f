#include "quorix/net/mTimer.h"

#include <algorithm>
#include <utility>

#include "quorix/platform/Environment.h"

namespace quorix::mTimer {

namespace {

constexpr std::int32_t kLeastInterval = 10;

struct Slot {
    TimerId id = 0;
    const cHelpEvent* owner = nullptr;
};

// Plain data: a session may be a static object, which ends after its thread's own.
thread_local const cHelpEvent* relaySlot = nullptr;
thread_local Slot keepAlive;
thread_local Slot reconnect;

std::shared_ptr<TimerTarget> Target() { return relaySlot ? relaySlot->GetMe() : nullptr; }

void OnKeepAlive() {
    if (std::shared_ptr<TimerTarget> target = Target()) target->KeepAliveTick();
}

void OnReconnect() {
    if (std::shared_ptr<TimerTarget> target = Target()) target->ReconnectTick();
}

void Kill(Slot& slot) {
    if (TimerId id = std::exchange(slot, {}).id) Environment::Current().KillTimer(id);
}

void Arm(Slot& slot, const cHelpEvent& owner, std::int32_t milliseconds, TimerTick tick) {
    Kill(slot);
    slot = {Environment::Current().SetTimer(std::max(milliseconds, kLeastInterval), std::move(tick)), &owner};
}

}  // namespace

void SetRelay(const cHelpEvent& relay) { relaySlot = &relay; }

void Release(const cHelpEvent& relay) {
    if (relaySlot == &relay) relaySlot = nullptr;
    if (keepAlive.owner == &relay) Kill(keepAlive);
    if (reconnect.owner == &relay) Kill(reconnect);
}

void StartKeepAlive(const cHelpEvent& owner, std::int32_t milliseconds) {
    Kill(keepAlive);
    if (milliseconds > 0) Arm(keepAlive, owner, milliseconds, OnKeepAlive);
}
void StopKeepAlive() { Kill(keepAlive); }
void StartReconnect(const cHelpEvent& owner, std::int32_t milliseconds) {
    Kill(reconnect);
    if (milliseconds >= 0) Arm(reconnect, owner, milliseconds, OnReconnect);
}
void StopReconnect() { Kill(reconnect); }

}  // namespace quorix::mTimer
