#include "apps/console/Trust.h"

#include <openssl/x509.h>

#include "apps/console/Folders.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

std::string Verified(const cSession& session) {
    return X509_verify_cert_error_string(session.Socket()->SSLTrusted());
}

// A session of the classic mode takes no fingerprint; there its peer is known by its names.
String IdentityOf(const cSocketSSL& socket) {
    const String fingerprint = socket.SSLFingerprint();
    return fingerprint.empty() ? Concat({socket.SSLSubject(), u" / ", socket.SSLIssuer()}) : fingerprint;
}

std::string Fingerprint(const cSession& session) { return Utf8FromText(IdentityOf(*session.Socket())); }

}  // namespace

Trust::Trust(const Options& options)
    : isTls_(options.tls),
      acceptsAll_(options.insecure),
      server_(options.domain),
      known_(StateFile("servers")),
      pin_(options.pin.empty() ? known_.Fingerprint(server_) : options.pin) {}

void Trust::Apply(cSession& session) const { session.Socket()->SSLPin(TextFromUtf8(pin_)); }

bool Trust::IsAccepted(const cSession& session) const {
    const bool isPinned = !pin_.empty() && Fingerprint(session) == pin_;
    return !isTls_ || acceptsAll_ || isPinned || session.Socket()->SSLTrusted() == X509_V_OK;
}

Fields Trust::Verdict(const cSession& session) const {
    const cSocketSSL& socket = *session.Socket();
    return {{"cipher", socket.SSLCipher()},
            {"subject", socket.SSLSubject()},
            {"issuer", socket.SSLIssuer()},
            {"verdict", Verified(session)},
            {"fingerprint", Fingerprint(session)}};
}

std::string Trust::State(const cSession& session) const {
    if (!isTls_) return "no TLS";
    if (!pin_.empty()) return "TLS, pinned";
    return session.Socket()->SSLTrusted() == X509_V_OK ? "TLS" : "TLS with anybody";
}

void Trust::Accept(const cSession& session, bool remembered) {
    pin_ = Fingerprint(session);
    if (remembered) known_.Remember(server_, pin_);
}

}  // namespace quorix::console
