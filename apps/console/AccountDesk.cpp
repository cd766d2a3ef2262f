#include "apps/console/AccountDesk.h"

#include "apps/console/Console.h"
#include "apps/console/Text.h"

namespace quorix::console {

void AccountDesk::ChangePassword(StringView password) {
    newPassword_ = password;
    Session().ChangePassword(Inserted(Session(), password));
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
