#include "apps/console/Command.h"
#include "apps/console/Console.h"

namespace quorix::console {

namespace {

void Register(Console& console, const Words& values) { console.Line().OpenNew(values[0], values[1]); }
void ChangePassword(Console& console, const Words& values) { console.Account().ChangePassword(values[0]); }
void Unregister(Console& console, const Words& /*values*/) { console.Account().Remove(); }

}  // namespace

std::span<const Command> AccountCommands() {
    static constexpr Command kCommands[] = {
        {"/register", "USER PASSWORD", "creates an account on this server and goes on with it", Register,
         Command::kSecret},
        {"/passwd", "PASSWORD", "changes the password of the account", ChangePassword,
         Command::kSecret | Command::kAsks},
        {"/unregister", "", "removes the account for good", Unregister, Command::kAsks,
         "This removes the account and everything in it for good. Go on?"},
    };
    return kCommands;
}

}  // namespace quorix::console
