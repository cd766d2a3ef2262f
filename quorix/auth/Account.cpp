#include "quorix/auth/Account.h"

namespace quorix {

namespace {

void SendRegister(SessionLink& link, StringView id, StringView body) {
    link.SendXML(Concat({u"<iq type='set' to='", link.ServerAddress(), u"' id='", id,
                         u"'><query xmlns='jabber:iq:register'>", body, u"</query></iq>"}));
}

String Credentials(StringView username, StringView password) {
    return Concat({u"<username>", username, u"</username><password>", password, u"</password>"});
}

}  // namespace

void ChangePassword(SessionLink& link, StringView newPassword) {
    SendRegister(link, kChangePasswordId, Credentials(link.username(), newPassword));
}

void RemoveAccount(SessionLink& link) { SendRegister(link, kRemoveAccountId, u"<remove/>"); }

void RequestRegistrationForm(SessionLink& link) {
    link.SendXML(Concat({u"<iq type='get' to='", link.ServerAddress(), u"' id='", link.GetNextID(),
                         u"'><query xmlns='jabber:iq:register'/></iq>"}));
}

void SendNewUser(SessionLink& link, const Stanza& form) {
    SendRegister(link, kNewUserId,
                 Concat({Credentials(link.username(), link.Password()), u"<key>", form.node->GetTag(u"key"),
                         u"</key>"}));
}

}  // namespace quorix
