// The events of one object on their way to the automation world's sinks.
#pragma once

#include <ocidl.h>

#include <initializer_list>
#include <map>
#include <memory>

#include "quorix/automation/TypeLibrary.h"

namespace quorix::automation {

// One argument of an event. A referenced one lets the sink read a number or text that it cannot change here.
struct EventArgument {
    Variant value;
    bool referenced = false;
};

// Derived classes listen to the library's object while sinks are connected, and call Fire.
class EventSource : public std::enable_shared_from_this<EventSource> {
public:
    virtual ~EventSource() = default;

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

protected:
    // Starts listening; false when the object tells its events to somebody else alone.
    virtual bool Attach() = 0;
    virtual void Detach() = 0;

    template <class T>
    static EventArgument Value(const T& value) {
        return {ToVariant(value), false};
    }
    template <class T>
    static EventArgument Reference(const T& value) {
        return {ToVariant(value), true};
    }

    // Calls each sink in the order of their arrival. One that fails or disappears does not stop the others.
    void Fire(DISPID event, std::initializer_list<EventArgument> arguments);

private:
    std::map<DWORD, Sink> sinks_;
    DWORD lastCookie_ = 0;
};

class Object;

// The connection point of `owner` for its one event interface.
IConnectionPoint* MakeConnectionPoint(Object& owner);
IEnumConnectionPoints* MakeConnectionPointList(Object& owner);

}  // namespace quorix::automation
