#include "testkit/Certificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <fstream>

namespace quorix::testkit {

namespace {

constexpr long kSecondsPerDay = 86400;

using Memory = std::unique_ptr<BIO, Freeing<BIO_free_all>>;

std::string Contents(BIO* memory) {
    char* text = nullptr;
    long size = BIO_get_mem_data(memory, &text);
    return {text, static_cast<std::size_t>(size)};
}

void Extend(X509* certificate, int kind, const std::string& value) {
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

long NextSerial() {
    static std::atomic<long> last = 0;
    return ++last;
}

Identity Unsigned(const CertificateWishes& wishes) {
    Identity made{Certificate(X509_new()), Key(EVP_EC_gen("P-256"))};
    X509* certificate = made.certificate.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), NextSerial());
    X509_gmtime_adj(X509_getm_notBefore(certificate), wishes.validFromDay * kSecondsPerDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), wishes.validUntilDay * kSecondsPerDay);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(wishes.commonName.c_str()), -1, -1, 0);
    X509_set_pubkey(certificate, made.key.get());
    Extend(certificate, NID_basic_constraints, wishes.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
    if (!wishes.alternativeNames.empty()) Extend(certificate, NID_subject_alt_name, wishes.alternativeNames);
    return made;
}

std::string Save(const std::filesystem::path& folder, const Identity& identity, const std::string& ending,
                 const std::string& contents) {
    long serial = ASN1_INTEGER_get(X509_get_serialNumber(identity.certificate.get()));
    std::filesystem::path path = folder / (std::to_string(serial) + ending);
    std::ofstream(path, std::ios::binary) << contents;
    return path.string();
}

}  // namespace

std::string Identity::CertificatePem() const {
    Memory memory(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(memory.get(), certificate.get());
    return Contents(memory.get());
}

std::string Identity::KeyPem() const {
    Memory memory(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(memory.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    return Contents(memory.get());
}

std::string Identity::SaveCertificate(const std::filesystem::path& folder) const {
    return Save(folder, *this, ".crt", CertificatePem());
}

std::string Identity::SaveKey(const std::filesystem::path& folder) const {
    return Save(folder, *this, ".key", KeyPem());
}

std::string Identity::SaveBoth(const std::filesystem::path& folder) const {
    return Save(folder, *this, ".pem", CertificatePem() + KeyPem());
}

Identity SelfSigned(const CertificateWishes& wishes) {
    Identity made = Unsigned(wishes);
    X509_set_issuer_name(made.certificate.get(), X509_get_subject_name(made.certificate.get()));
    X509_sign(made.certificate.get(), made.key.get(), EVP_sha256());
    return made;
}

Identity IssuedBy(const Identity& authority, const CertificateWishes& wishes) {
    Identity made = Unsigned(wishes);
    X509_set_issuer_name(made.certificate.get(), X509_get_subject_name(authority.certificate.get()));
    X509_sign(made.certificate.get(), authority.key.get(), EVP_sha256());
    return made;
}

Identity Authority(const std::string& commonName) {
    CertificateWishes wishes;
    wishes.commonName = commonName;
    wishes.alternativeNames.clear();
    wishes.isAuthority = true;
    return SelfSigned(wishes);
}

}  // namespace quorix::testkit
