// The face of the tables that all other faces stand on, over the deterministic environment.
#pragma once

#include <cmath>

#include "testkit/transcripts/Face.h"
#include "testkit/transcripts/Transcript.h"

namespace quorix::transcripts {

class NativeFace : public Face, public Stage {
public:
    explicit NativeFace(Begin begin) : begin_(std::move(begin)) {}

    void Add(const std::string& name, const std::shared_ptr<cSession>& session) override;
    void Add(const std::string& name, Action action) override { actions_[name] = std::move(action); }
    testkit::DeterministicEnvironment& Network() override { return env_; }

    std::map<std::string, Value> Start(EventHandler onEvent) override;
    Value Create(const std::string& className) override;
    Value Call(const Object& object, const std::string& member, const Values& arguments) override;
    void Put(const Object& object, const std::string& member, const Value& value) override;
    Value Control(const std::string& what, const Values& arguments) override;
    void Say(const std::string& bytes) override { env_.Peer().Say(bytes); }
    std::string Heard() override;
    void Wait(double seconds) override { env_.Advance(std::llround(seconds * 1000)); }
    void Settle() override { env_.DoEvents(); }
    bool Until(const std::function<bool()>& done) override;

private:
    testkit::DeterministicEnvironment env_;
    Begin begin_;
    EventHandler onEvent_;
    std::map<std::string, Value> names_;
    std::map<std::string, Action> actions_;
    std::vector<scripting::Connection> connections_;
    std::shared_ptr<void> application_;
    std::size_t deaf_ = 0;  // so many connections have been closed by the server
};

}  // namespace quorix::transcripts
