// What a script may do with a class: its members and events, each bound by name.
//
// Every face that is driven by names stands on these tables. None of them is written twice.
#pragma once

#include <functional>
#include <string_view>

#include "quorix/scripting/Value.h"

namespace quorix::scripting {

struct Parameter {
    Type type;
    bool isOptional = false;  // may be left out; only others of that kind follow
};

enum class MemberKind { Method, Get, Put };

struct Member {
    const char* name;
    MemberKind kind;
    std::vector<Parameter> parameters;  // the new value of a Put is the last
    Type result;
    // Takes one value for each parameter, Missing for one left out. Throws ArgumentError for one that does
    // not fit, and what the member throws. See Call.
    std::function<Value(const Instance&, const Values&)> thunk;
};

struct Event {
    const char* name;
    std::vector<Type> parameters;
};

// Hears the events of one object, on the object's thread, inside the notification that caused them.
class Listener {
public:
    virtual ~Listener() = default;

    // Whether it wants to hear `event` now. What nobody wants is not made into values.
    virtual bool Wants(const Event& /*event*/) const { return true; }
    virtual void OnEvent(const Event& event, const Values& arguments) = 0;
};

// Ends the listening when the last owner lets go of it.
using Connection = std::shared_ptr<void>;

class ClassTable {
public:
    const char* Name() const { return name_; }
    const std::vector<Member>& Members() const { return members_; }
    const Member* Find(std::string_view name, MemberKind kind) const;  // null when there is none

    // Makes an object; empty where only the library makes them.
    const std::function<Instance()>& Create() const { return create_; }
    Object MakeObject() const;  // where there is a Create

    // The events of the class, in the order of their numbers; empty where it raises none.
    const std::vector<Event>& Events() const { return *events_; }
    // Null when the object tells its events to somebody else alone, or has none.
    Connection Listen(const Instance& instance, std::shared_ptr<Listener> listener) const {
        return listen_ ? listen_(instance, std::move(listener)) : nullptr;
    }

protected:
    explicit ClassTable(const char* name);

    const char* name_;
    std::vector<Member> members_;
    const std::vector<Event>* events_;  // never null; a listener hears of these very ones
    std::function<Instance()> create_;
    std::function<Connection(const Instance&, std::shared_ptr<Listener>)> listen_;
};

// Calls `member` with arguments that may be too few or too many. Errors 449 and 450 besides those of the
// thunk.
Value Call(const Member& member, const Instance& instance, Values arguments);

}  // namespace quorix::scripting
