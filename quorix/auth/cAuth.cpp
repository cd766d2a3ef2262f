#include "quorix/auth/cAuth.h"

#include "quorix/auth/SHAHash.h"
#include "quorix/link/StanzaText.h"

namespace quorix {

namespace {

enum class Form { None, Plain, Digest, ZeroKnowledge };

Form FormFor(const LoginFacts& login) {
    bool zeroKnowledge = login.sequence > 0 && !login.token.empty();
    switch (login.authType) {
        case KV_PlainAuth: return Form::Plain;
        case KV_DigestAuth: return Form::Digest;
        case KV_ZeroKAuth: return zeroKnowledge ? Form::ZeroKnowledge : Form::None;
        case KV_AutoAuth:
            if (zeroKnowledge) return Form::ZeroKnowledge;
            return login.digest ? Form::Digest : Form::Plain;
    }
    return Form::None;
}

String Hash(const TextRules& text, StringView secret) { return SHAHash(text.ToBytes(secret)); }

String ZeroKnowledgeHash(const TextRules& text, StringView password, const LoginFacts& login) {
    String hash = Hash(text, Concat({Hash(text, password), login.token}));
    for (std::int32_t round = 0; round < login.sequence; ++round) hash = SHAHash(hash);
    return hash;
}

// The element that proves the password.
String Proof(const TextRules& text, Form form, StringView password, const LoginFacts& login) {
    switch (form) {
        case Form::Plain:
            return Compose(text, {u"<password>", Content(password, Put::Escaped), u"</password>"});
        case Form::Digest:
            return Concat({u"<digest>", Hash(text, Concat({login.sessionID, password})), u"</digest>"});
        case Form::ZeroKnowledge:
            return Concat({u"<hash>", ZeroKnowledgeHash(text, password, login), u"</hash>"});
        case Form::None: break;
    }
    return {};
}

}  // namespace

bool cAuth::TellsPassword() const { return FormFor(RequireSession(session_)->Login()) == Form::Plain; }

void cAuth::SendAuth() {
    std::shared_ptr<SessionLink> session = RequireSession(session_);
    const TextRules& text = session->Text();
    LoginFacts login = session->Login();
    Form form = FormFor(login);
    if (form == Form::None) return;
    session->SendXML(
        Compose(text, {u"<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>",
                       Content(session->username(), Put::Own), u"</username>",
                       Markup(Proof(text, form, session->Password(), login)), u"<resource>",
                       Content(session->Resource(), Put::Escaped), u"</resource></query></iq>"}));
}

}  // namespace quorix
