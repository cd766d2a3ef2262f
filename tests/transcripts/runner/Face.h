// How a transcript reaches the library, and the end of the server that it plays.
#pragma once

#include <functional>
#include <string>

#include "quorix/scripting/ClassTable.h"
#include "tests/transcripts/runner/Scenario.h"

namespace quorix::transcripts {

using scripting::Object;
using scripting::Value;
using scripting::Values;
using EventHandler = std::function<void(const std::string& event, const Values& arguments)>;

class Face {
public:
    virtual ~Face() = default;

    // Whether this face can play the scenario.
    virtual bool Plays(const Scenario& scenario) const = 0;

    // These throw AutomationError.
    virtual Value Create(const std::string& className) = 0;
    virtual Value Call(const Object& object, const std::string& member, const Values& arguments) = 0;
    virtual void Put(const Object& object, const std::string& member, const Value& value) = 0;
    virtual void Listen(const Object& session, EventHandler onEvent) = 0;

    // The newest connection says `bytes`; what all of them have heard since the last call.
    virtual void Say(const std::string& bytes) = 0;
    virtual std::string Heard() = 0;

    // "server.Close" and the like.
    virtual Value Control(const std::string& what, const Values& arguments) = 0;
    virtual void Wait(double seconds) = 0;
    // Behind each step of the scenario itself, as opposed to what its handlers do.
    virtual void Settle() = 0;

    // Lets happen what is due until `done`; false when it took too long.
    virtual bool Until(const std::function<bool()>& done) = 0;
    virtual std::int16_t Port() const = 0;
};

}  // namespace quorix::transcripts
