// One call from the automation world: its arguments put in order, the member called, and what went wrong
// reported as IDispatch reports it.
#pragma once

#include "quorix/automation/TypeLibrary.h"

namespace quorix::automation {

struct Invocation {
    const BoundClass& bound;
    const scripting::Instance instance;
    DISPID id;
    WORD kinds;
    const DISPPARAMS& parameters;
};

HRESULT InvokeMember(const Invocation& invocation, VARIANT* result, EXCEPINFO* exception, UINT* badArgument);

}  // namespace quorix::automation
