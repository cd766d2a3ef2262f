// The server's end of a TLS connection without a socket: bytes in, bytes out.
#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>
#include <string_view>

#include "testkit/Certificates.h"

namespace quorix::testkit {

class TlsPeer {
public:
    explicit TlsPeer(const Identity& identity);

    // Takes what the client sent, and goes on with the handshake.
    void Hear(std::string_view bytes);

    void Write(std::string_view text);
    void SayGoodbye() { SSL_shutdown(tls_.get()); }

    // What is to be sent to the client now, and the text it has sent so far.
    std::string TakeOutput();
    const std::string& Text() const { return text_; }

    // The server name that the client asked for, "" for none.
    std::string AskedName() const;
    bool HeardGoodbye() const { return (SSL_get_shutdown(tls_.get()) & SSL_RECEIVED_SHUTDOWN) != 0; }

    SSL* Native() { return tls_.get(); }

private:
    std::unique_ptr<SSL_CTX, Freeing<SSL_CTX_free>> context_;
    std::unique_ptr<SSL, Freeing<SSL_free>> tls_;
    std::string text_;
};

}  // namespace quorix::testkit
