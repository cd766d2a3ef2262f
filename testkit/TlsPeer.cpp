#include "testkit/TlsPeer.h"

#include <array>

namespace quorix::testkit {

TlsPeer::TlsPeer(const Identity& identity) : context_(SSL_CTX_new(TLS_server_method())) {
    SSL_CTX_use_certificate(context_.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(context_.get(), identity.key.get());
    tls_.reset(SSL_new(context_.get()));
    SSL_set_bio(tls_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
    SSL_set_accept_state(tls_.get());
}

void TlsPeer::Hear(std::string_view bytes) {
    BIO_write(SSL_get_rbio(tls_.get()), bytes.data(), static_cast<int>(bytes.size()));
    std::array<char, 16384> buffer;
    int count = 0;
    while ((count = SSL_read(tls_.get(), buffer.data(), buffer.size())) > 0) {
        text_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void TlsPeer::Write(std::string_view text) {
    SSL_write(tls_.get(), text.data(), static_cast<int>(text.size()));
}

std::string TlsPeer::TakeOutput() {
    char* bytes = nullptr;
    BIO* out = SSL_get_wbio(tls_.get());
    long size = BIO_get_mem_data(out, &bytes);
    std::string taken(bytes, static_cast<std::size_t>(size));
    BIO_reset(out);
    return taken;
}

std::string TlsPeer::AskedName() const {
    const char* name = SSL_get_servername(tls_.get(), TLSEXT_NAMETYPE_host_name);
    return name == nullptr ? "" : name;
}

}  // namespace quorix::testkit
