// The events of one object on their way to the automation world's sinks.
#pragma once

#include <ocidl.h>

#include <map>
#include <memory>

#include "quorix/automation/TypeLibrary.h"

namespace quorix::automation {

// Listens to its object while sinks are connected.
class EventSource : public std::enable_shared_from_this<EventSource> {
public:
    EventSource(const BoundClass& bound, const scripting::Instance& instance)
        : bound_(bound), instance_(instance) {}

    // Adds a sink for the events of `eventsId`. CONNECT_E_CANNOTCONNECT when it is no such sink, or the
    // object has a listener that it shares with nobody.
    HRESULT Advise(IUnknown* sink, REFGUID eventsId, DWORD* cookie);
    HRESULT Unadvise(DWORD cookie);

    struct Sink {
        ComPtr<IDispatch> target;
        // One that knows the event interface by its id takes references of the declared types. One that
        // knows only IDispatch serves a script, which reads references to variants and no others.
        bool typed;
    };
    const std::map<DWORD, Sink>& Sinks() const { return sinks_; }

    // The object has no more clients: lets all sinks go.
    void Close();

    // Calls each sink in the order of their arrival. One that fails or disappears does not stop the others.
    void Fire(const scripting::Event& event, const scripting::Values& arguments);

private:
    // Starts listening; false when the object tells its events to somebody else alone.
    bool Attach();

    const BoundClass& bound_;
    std::weak_ptr<void> instance_;
    scripting::Connection connection_;
    std::map<DWORD, Sink> sinks_;
    DWORD lastCookie_ = 0;
};

class Object;

// The connection point of `owner` for its one event interface.
IConnectionPoint* MakeConnectionPoint(Object& owner);
IEnumConnectionPoints* MakeConnectionPointList(Object& owner);

}  // namespace quorix::automation
