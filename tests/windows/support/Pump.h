// Waiting while messages are delivered.
#pragma once

#include <windows.h>

namespace windowstest {

// How long anything may take on a machine that is busy with other things, in milliseconds.
inline constexpr int kPatience = 60000;

// Delivers messages until `done`, or until that takes too long; tells whether `done` came.
template <class Done>
bool PumpUntil(Done done) {
    const ULONGLONG end = GetTickCount64() + kPatience;
    while (!done()) {
        if (GetTickCount64() > end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return true;
}

inline void PumpFor(ULONGLONG milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    PumpUntil([end] { return GetTickCount64() >= end; });
}

}  // namespace windowstest
