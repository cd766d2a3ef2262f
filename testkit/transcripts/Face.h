// How a transcript reaches the library, and the end of the server that it plays.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "quorix/scripting/ClassTable.h"

namespace quorix::transcripts {

using scripting::Object;
using scripting::Value;
using scripting::Values;
using EventHandler = std::function<void(const std::string& event, const Values& arguments)>;

class Face {
public:
    virtual ~Face() = default;

    // What steps may name from the beginning. The events of the sessions among it go to `onEvent`.
    virtual std::map<std::string, Value> Start(EventHandler onEvent) = 0;

    // These throw AutomationError.
    virtual Value Create(const std::string& className) = 0;
    virtual Value Call(const Object& object, const std::string& member, const Values& arguments) = 0;
    virtual void Put(const Object& object, const std::string& member, const Value& value) = 0;
    // "server.Close" and the like: what belongs to no object.
    virtual Value Control(const std::string& what, const Values& arguments) = 0;

    // The newest connection says `bytes`; what all of them have heard since the last call.
    virtual void Say(const std::string& bytes) = 0;
    virtual std::string Heard() = 0;

    virtual void Wait(double seconds) = 0;
    // Behind each step of the scenario itself, as opposed to what its handlers do.
    virtual void Settle() = 0;
    // Lets happen what is due until `done`; false when it took too long.
    virtual bool Until(const std::function<bool()>& done) = 0;
};

}  // namespace quorix::transcripts
