// What the registry has to know about the component.
#pragma once

#include <windows.h>

namespace quorix::automation {

// For the whole machine, or for the current user alone, which needs no administrator's rights.
enum class Scope { Machine, User };

HRESULT Register(Scope scope);

// Removes what Register wrote; what is not there is no error.
HRESULT Unregister(Scope scope);

}  // namespace quorix::automation
