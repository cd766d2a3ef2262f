// Whose certificate is accepted: one that verifies, the one that was pinned, or the one that the user has
// accepted by hand and that is remembered by its fingerprint.
#pragma once

#include <string>

#include "apps/console/Event.h"
#include "apps/console/KnownServers.h"
#include "apps/console/Options.h"
#include "quorix/session/cSession.h"

namespace quorix::console {

class Trust {
public:
    explicit Trust(const Options& options);

    // Before each Connect.
    void Apply(cSession& session) const;

    // Of the peer of the connection that is open, or was refused.
    bool IsAccepted(const cSession& session) const;
    Fields Verdict(const cSession& session) const;
    std::string State(const cSession& session) const;

    // From now on this peer's certificate counts, and no other; remembered when the user said so.
    void Accept(const cSession& session, bool remembered);

    // The fingerprint that counts instead of a verification, "" when there is none.
    const std::string& Pin() const { return pin_; }

private:
    bool isTls_;
    bool acceptsAll_;
    std::string server_;
    KnownServers known_;
    std::string pin_;
};

}  // namespace quorix::console
