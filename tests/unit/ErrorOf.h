// The number of the error that an application's call ends with.
#pragma once

#include "quorix/base/AutomationError.h"

namespace quorix {

// 0 when there is none.
template <class Call>
std::int32_t ErrorOf(Call call) {
    try {
        call();
    } catch (const AutomationError& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace quorix
