// The account itself: its password, and its end.
#pragma once

#include "apps/console/Desk.h"

namespace quorix::console {

class AccountDesk : public Desk {
public:
    using Desk::Desk;

    // The new password is used from the server's consent on.
    void ChangePassword(StringView password);
    // Whatever comes of it, no reconnection follows.
    void Remove();

    void OnChangedPassword() override;
    void OnAccountRemoved(StringView FromJid, StringView ID) override;

private:
    String newPassword_;
};

}  // namespace quorix::console
