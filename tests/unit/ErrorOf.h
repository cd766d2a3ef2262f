#pragma once

#include <functional>

#include "quorix/base/AutomationError.h"

namespace quorix {

// The number of the error that `act` ends with; 0 when it ends well.
inline std::int32_t ErrorOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const AutomationError& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace quorix
