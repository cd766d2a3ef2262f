// Certificates made on the spot, for peers whose certificates are good, expired, for another name, or signed
// by nobody known.
#pragma once

#include <openssl/x509.h>

#include <filesystem>
#include <memory>
#include <string>

namespace quorix::testkit {

template <auto Free>
struct Freeing {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};
using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freeing<EVP_PKEY_free>>;

struct CertificateWishes {
    std::string commonName = "localhost";
    std::string alternativeNames = "DNS:localhost,IP:127.0.0.1";  // as in OpenSSL's configuration
    int validFromDay = -1;                                        // counted from today
    int validUntilDay = 30;
    bool isAuthority = false;
};

// A certificate and the key that belongs to it.
struct Identity {
    Certificate certificate;
    Key key;

    std::string CertificatePem() const;
    std::string KeyPem() const;

    // Each writes its PEM into `folder` and returns the file's path.
    std::string SaveCertificate(const std::filesystem::path& folder) const;
    std::string SaveKey(const std::filesystem::path& folder) const;
    std::string SaveBoth(const std::filesystem::path& folder) const;
};

Identity SelfSigned(const CertificateWishes& wishes);
Identity IssuedBy(const Identity& authority, const CertificateWishes& wishes);

// A self-signed certificate that may sign others.
Identity Authority(const std::string& commonName);

}  // namespace quorix::testkit
