// The secure channel: the operations by which a socket runs TLS 1.2 or 1.3 (RFC 5246, RFC 8446) over its
// connection. Made with OpenSSL.
//
// A channel is named by a small positive number, and belongs to the thread that made it; any other number is
// a channel that has failed. A peer's certificate is judged, and never refused: the application decides.
#pragma once

#include <string_view>

#include "quorix/base/String.h"
#include "quorix/platform/Environment.h"

namespace quorix {

// Each runs its handshake on a connected, non-blocking socket, which nothing is selected on, and returns the
// channel; 0 when the handshake fails or outlasts `milliseconds`. File names are text, the contents PEM.

// `host` is the name or dotted address that the certificate must be for; a name is sent to the server
// (RFC 6066). With an empty `caFile`, or one that cannot be read, no certificate is trusted.
std::int32_t ssl_init_client(Environment& environment, SocketId socket, StringView caFile, StringView host,
                             std::int32_t milliseconds);
std::int32_t ssl_init_server(Environment& environment, SocketId socket, StringView certificateFile,
                             StringView keyFile, std::int32_t milliseconds);

// A client's channel whose handshake ssl_handshake takes further, without waiting, whenever the socket can be
// read or written. With an empty `caFile` the system's certificates are trusted. 0 when it cannot be made.
std::int32_t ssl_begin_client(Environment& environment, SocketId socket, StringView caFile, StringView host);

enum class Handshake { Done, Pending, Failed };
Handshake ssl_handshake(std::int32_t channel);

// As Environment::Send. What would block must be sent again, more bytes behind it or not, before others.
Transfer ssl_send(std::int32_t channel, std::string_view bytes);

// As Environment::Receive: bytes decrypted already come at once. A peer that ends the channel properly is the
// end of the stream; a damaged record, or a connection that ends without notice, is SOCKERR_Aborted.
Transfer ssl_recv(std::int32_t channel, char* buffer, std::size_t capacity);

// Names are cut at 999 characters and at the first NUL. The certificate's are RFC 2253 text in ASCII, ""
// when the peer sent none.
String ssl_getcipher(std::int32_t channel);
String ssl_getsubject(std::int32_t channel);
String ssl_getissuer(std::int32_t channel);

// SHA-256 of the peer's certificate, 64 hexadecimal digits in lower case; "" when it sent none.
String ssl_getfingerprint(std::int32_t channel);

// Why OpenSSL gave the verification result `verdict`.
String ssl_verdicttext(std::int32_t verdict);

// OpenSSL's verification result: 0 is trusted. Never 0 when the peer sent no certificate.
std::int32_t ssl_getverify(std::int32_t channel);

// Says good-bye to the peer, without waiting for its answer, and frees the channel. The socket stays open.
void ssl_cleanup(std::int32_t channel);

}  // namespace quorix
