// The login request of jabber:iq:auth (Non-SASL Authentication, XEP-0078, with its older zero-knowledge
// form).
//
// The answer arrives at the session, under the fixed id "kv_login".
#pragma once

#include <memory>

#include "quorix/link/SessionLink.h"

namespace quorix {

class cAuth {
public:
    void SetSession(const std::shared_ptr<cSession>& session) { session_ = LinkOf(session); }
    void SetSession(const std::shared_ptr<SessionLink>& session) { session_ = session; }

    // Whether the request would carry the password itself. Error 91 without a session.
    bool TellsPassword() const;

    // Sends one login request in the form that `AuthType` and the server's offer choose, or nothing when
    // zero-knowledge is asked for and the server offered no sequence and token. Error 91 without a session.
    //
    // In KV_Classic the username goes out as it is: one that holds XML's special characters breaks the
    // request. The resource, and the password of the plain form, are escaped and encoded.
    void SendAuth();

private:
    std::weak_ptr<SessionLink> session_;
};

}  // namespace quorix
