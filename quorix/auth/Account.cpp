#include "quorix/auth/Account.h"

#include "quorix/link/StanzaText.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

// `body` is XML.
void SendRegister(SessionLink& link, StringView id, StringView body) {
    link.SendXML(
        Compose(link.Text(), {u"<iq type='set' to='", Quoted(link.ServerAddress()), u"' id='", Quoted(id),
                              u"'><query xmlns='jabber:iq:register'>", Markup(body), u"</query></iq>"}));
}

String Credentials(SessionLink& link, StringView password) {
    return Compose(link.Text(), {u"<username>", Content(link.username(), Put::Own), u"</username><password>",
                                 Content(password, Put::Own), u"</password>"});
}

}  // namespace

void ChangePassword(SessionLink& link, StringView newPassword) {
    SendRegister(link, kChangePasswordId, Credentials(link, newPassword));
}

void RemoveAccount(SessionLink& link) { SendRegister(link, kRemoveAccountId, u"<remove/>"); }

void RequestRegistrationForm(SessionLink& link, StringView id) {
    link.SendXML(Compose(link.Text(), {u"<iq type='get' to='", Quoted(link.ServerAddress()), u"' id='",
                                       Quoted(id), u"'><query xmlns='jabber:iq:register'/></iq>"}));
}

void SendNewUser(SessionLink& link, const Stanza& form) {
    if (!link.IsConnected()) return;
    String key = Compose(link.Text(), {u"<key>", Content(FindTagBelow(form.root, u"key").Text()), u"</key>"});
    SendRegister(link, kNewUserId, Credentials(link, link.Password()) + key);
}

}  // namespace quorix
