#include "apps/console/AccountDesk.h"

#include "apps/console/Console.h"
#include "apps/console/Text.h"

namespace quorix::console {

void AccountDesk::ChangePassword(StringView password) {
    newPassword_ = password;
    try {
        Session().ChangePassword(Inserted(Session(), password));
    } catch (const AutomationError& error) {
        if (error.Number() != ERR_InvalidCall) throw;
        throw AutomationError(ERR_InvalidCall,
                              "The password would go out in the clear; use --tls, or --plain");
    }
}

void AccountDesk::OnChangedPassword() {
    Session().Password(newPassword_);
    Show("password-changed", {});
}

void AccountDesk::Remove() {
    Session().Reconnect(false);
    Session().RemoveAccount();
}

void AccountDesk::OnAccountRemoved(StringView /*FromJid*/, StringView /*ID*/) {
    Show("account-removed", {});
    Owner().Quit();
}

}  // namespace quorix::console
