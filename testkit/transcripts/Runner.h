// Plays one scenario on one face.
#pragma once

#include "testkit/transcripts/Face.h"
#include "testkit/transcripts/Scenario.h"

namespace quorix::transcripts {

class Runner {
public:
    Runner(Face& face, const Scenario& scenario) : face_(face), steps_(scenario.steps) {}

    // What went wrong and where, or "".
    std::string Play();

private:
    // A member of an object that has been named and not yet read.
    struct Named {
        Value owner;
        std::string member;  // "" for the owner itself
        Values arguments;
    };

    void PlayFrom(std::size_t depth);
    void Do(const std::string& text);
    void Act(const std::string& text);
    void ActOnce(const std::string& text);
    void ExpectClient(const std::string& bytes);
    void ExpectEvent(std::size_t step);
    void ExpectFailure(const std::string& text, std::int32_t number);
    void ExpectValue(const std::string& text, const std::string& expected);
    void ExpectSilence();

    void OnEvent(const std::string& event, const Values& arguments);
    void Match(const std::string& expected, const std::string& event);
    void MatchArgument(const std::string& pattern, std::size_t position);

    Value ValueOf(const std::string& text);
    Values ValuesOf(const std::string& list);
    Value Base(const std::string& name);
    bool IsControl(const std::vector<std::string>& parts) const;
    Named NameOf(const std::string& text);
    Value Read(const Named& named);
    void Assign(const std::string& target, const Value& value);
    void Fail(const std::string& what);

    Face& face_;
    const std::vector<Step>& steps_;
    std::size_t next_ = 0;
    std::string where_;
    std::string failure_;
    std::string heard_;
    bool isCurious_ = true;  // about what goes out
    std::map<std::string, Value> names_;
};

}  // namespace quorix::transcripts
