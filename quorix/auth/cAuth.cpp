#include "quorix/auth/cAuth.h"

#include "quorix/auth/SHAHash.h"
#include "quorix/base/modUTF_8.h"

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

String ZeroKnowledgeHash(StringView password, const LoginFacts& login) {
    String hash = SHAHash(Concat({SHAHash(password), login.token}));
    for (std::int32_t round = 0; round < login.sequence; ++round) hash = SHAHash(hash);
    return hash;
}

// The element that proves the password.
String Proof(Form form, StringView password, const LoginFacts& login) {
    switch (form) {
        case Form::Plain: return Concat({u"<password>", EncodeUTF8(password, true), u"</password>"});
        case Form::Digest:
            return Concat({u"<digest>", SHAHash(Concat({login.sessionID, password})), u"</digest>"});
        case Form::ZeroKnowledge: return Concat({u"<hash>", ZeroKnowledgeHash(password, login), u"</hash>"});
        case Form::None: break;
    }
    return {};
}

}  // namespace

void cAuth::SendAuth() {
    std::shared_ptr<SessionLink> session = RequireSession(session_);
    LoginFacts login = session->Login();
    Form form = FormFor(login);
    if (form == Form::None) return;
    session->SendXML(
        Concat({u"<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>", session->username(),
                u"</username>", Proof(form, session->Password(), login), u"<resource>",
                EncodeUTF8(session->Resource(), true), u"</resource></query></iq>"}));
}

}  // namespace quorix
