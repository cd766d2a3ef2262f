// Creating, re-keying and removing an account (jabber:iq:register, XEP-0077).
//
// Nothing is checked before sending. In KV_Classic the account's name and its passwords go out as they are,
// so that one with XML's special characters breaks the request. The answers are known by their fixed ids and
// end in OnNewUserCreated, OnChangedPassword, OnAccountRemoved or OnIQError.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"

namespace quorix {

inline constexpr StringView kNewUserId = u"kv_newuser";
inline constexpr StringView kChangePasswordId = u"kv_changepass";
inline constexpr StringView kRemoveAccountId = u"kv_removeaccount";

// The session's Password stays as it is; set it before the next login.
void ChangePassword(SessionLink& link, StringView newPassword);

void RemoveAccount(SessionLink& link);

// Asks the server for its registration form, under `id`.
void RequestRegistrationForm(SessionLink& link, StringView id);

// Answers that form with the session's username and password and the form's key, empty when it has none.
void SendNewUser(SessionLink& link, const Stanza& form);

}  // namespace quorix
