// What is typed becomes what is done: finds the command, checks its parameters, asks before what cannot be
// undone, and keeps what cannot be done while there is no connection.
#pragma once

#include <vector>

#include "apps/console/Command.h"

namespace quorix::console {

class Interpreter {
public:
    explicit Interpreter(Console& console) : console_(console) {}

    // Text without a command goes to the current chat. Without one it goes nowhere: nobody should say in
    // public what was meant for the program.
    void TakeLine(StringView line);

    // The connection is back: does what was kept.
    void Release();

    // What could stand in the place of `word` behind `before`.
    std::vector<std::string> Complete(const std::string& before, const std::string& word) const;

private:
    void TakeCommand(StringView line);
    void Check(const Command& command, StringView line);
    void AskForPassword(const Command& command, const Words& values);
    void Confirm(const Command& command, const Words& values);
    void Run(const Command& command, const Words& values);
    void Keep(StringView line);
    void Say(StringView text);
    std::vector<String> Candidates(const ParameterKind& kind) const;

    Console& console_;
    Words kept_;
};

}  // namespace quorix::console
