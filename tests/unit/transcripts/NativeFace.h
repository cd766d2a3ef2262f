// The face of the tables that all other faces stand on, over the deterministic environment.
#pragma once

#include <cmath>

#include "testkit/DeterministicEnvironment.h"
#include "tests/transcripts/runner/Face.h"

namespace quorix::transcripts {

class NativeFace : public Face {
public:
    bool Plays(const Scenario& /*scenario*/) const override { return true; }

    Value Create(const std::string& className) override;
    Value Call(const Object& object, const std::string& member, const Values& arguments) override;
    void Put(const Object& object, const std::string& member, const Value& value) override;
    void Listen(const Object& session, EventHandler onEvent) override;

    void Say(const std::string& bytes) override { env_.Peer().Say(bytes); }
    std::string Heard() override;
    void Wait(double seconds) override { env_.Advance(std::llround(seconds * 1000)); }
    void Settle() override { env_.DoEvents(); }
    bool Until(const std::function<bool()>& done) override;
    std::int16_t Port() const override { return 5222; }
    Value Control(const std::string& what, const Values& arguments) override;

private:
    testkit::DeterministicEnvironment env_;
    scripting::Connection connection_;
    std::size_t deaf_ = 0;  // so many connections have been closed by the server
};

}  // namespace quorix::transcripts
