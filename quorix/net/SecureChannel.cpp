#include "quorix/net/SecureChannel.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <unordered_map>

#include "quorix/base/WireText.h"
#include "quorix/net/SocketBio.h"

namespace quorix {

namespace {

constexpr std::size_t kLongestName = 999;

template <auto Free>
struct Freeing {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

using Context = std::unique_ptr<SSL_CTX, Freeing<SSL_CTX_free>>;
using Tls = std::unique_ptr<SSL, Freeing<SSL_free>>;
using Memory = std::unique_ptr<BIO, Freeing<BIO_free_all>>;

using SharedContext = std::shared_ptr<SSL_CTX>;

// A connection that broke while sending may still hold what the peer said before.
struct Channel {
    Tls tls;
    SharedContext context;  // kept for other channels that want the same
    bool reads = true;
    bool writes = true;
};

// The thread's channels. The table is freed with its last channel, so that a socket in a static variable
// still finds it when the program ends.
struct ChannelTable {
    std::unordered_map<std::int32_t, Channel> channels;
    std::int32_t last = 0;
};
thread_local ChannelTable* table = nullptr;

std::int32_t Keep(Tls tls) {
    if (table == nullptr) table = new ChannelTable;
    table->channels[++table->last].tls = std::move(tls);
    return table->last;
}

Channel* Find(std::int32_t channel) {
    if (table == nullptr) return nullptr;
    auto found = table->channels.find(channel);
    return found == table->channels.end() ? nullptr : &found->second;
}

void Forget(std::int32_t channel) {
    table->channels.erase(channel);
    if (!table->channels.empty()) return;
    delete table;
    table = nullptr;
}

// -- Handshake --

// OpenSSL would ask for the password of a key on the terminal.
int NoPassword(char* /*buffer*/, int /*size*/, int /*isForWriting*/, void* /*data*/) { return 0; }

Context NewContext(const SSL_METHOD* method) {
    Context context(SSL_CTX_new(method));
    if (context == nullptr) return context;
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION);
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_default_passwd_cb(context.get(), NoPassword);
    return context;
}

Tls NewTls(SSL_CTX* context, Environment& environment, SocketId socket) {
    Tls tls(SSL_new(context));
    BIO* bio = tls == nullptr ? nullptr : NewSocketBio(environment, socket);
    if (bio == nullptr) return nullptr;
    SSL_set_bio(tls.get(), bio, bio);
    return tls;
}

// Makes the verification look for `host` in the certificate.
void Expect(SSL* tls, const std::string& host) {
    if (X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(tls), host.c_str()) == 1) return;
    SSL_set_hostflags(tls, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    SSL_set1_host(tls, host.c_str());
    SSL_set_tlsext_host_name(tls, host.c_str());
}

std::int32_t WaitFor(int reason, Environment& environment, SocketId socket, std::int64_t deadline) {
    auto left = static_cast<std::int32_t>(deadline - environment.Milliseconds());
    if (left <= 0) return SOCKERR_TimedOut;
    if (reason == SSL_ERROR_WANT_READ) return environment.WaitReadable(socket, left);
    if (reason == SSL_ERROR_WANT_WRITE) return environment.WaitWritable(socket, left);
    return SOCKERR_Aborted;
}

bool ShakeHands(SSL* tls, Environment& environment, SocketId socket, std::int32_t milliseconds) {
    std::int64_t deadline = environment.Milliseconds() + std::max(milliseconds, kShortestInterval);
    for (;;) {
        ERR_clear_error();
        int result = SSL_do_handshake(tls);
        if (result == 1) return true;
        int reason = SSL_get_error(tls, result);
        if (WaitFor(reason, environment, socket, deadline) != SOCKERR_None) return false;
    }
}

void TrustTheSystem(SSL_CTX* context, Environment& environment) {
    SSL_CTX_set_default_verify_paths(context);
    for (const std::string& der : environment.TrustedCertificates()) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
        std::unique_ptr<X509, Freeing<X509_free>> root(
            d2i_X509(nullptr, &bytes, static_cast<long>(der.size())));
        if (root != nullptr) X509_STORE_add_cert(SSL_CTX_get_cert_store(context), root.get());
    }
}

// One context serves all channels that live at a time, since to read the certificates takes long. When none
// is left, the next channel reads them anew.
SharedContext SharedClientContext(Environment& environment, const std::string& caFile) {
    thread_local std::unordered_map<std::string, std::weak_ptr<SSL_CTX>> contexts;
    std::weak_ptr<SSL_CTX>& known = contexts[caFile];
    if (SharedContext context = known.lock()) return context;
    SharedContext context = NewContext(TLS_client_method());
    if (context == nullptr) return context;
    if (caFile.empty()) {
        TrustTheSystem(context.get(), environment);
    } else {
        SSL_CTX_load_verify_file(context.get(), caFile.c_str());
    }
    known = context;
    return context;
}

// What follows the handshake is read in large blocks. During the handshake nothing beyond it may be read:
// no notification would come for bytes that have left the socket already.
std::int32_t Open(Tls tls, Environment& environment, SocketId socket, std::int32_t milliseconds) {
    if (!ShakeHands(tls.get(), environment, socket, milliseconds)) return 0;
    SSL_set_read_ahead(tls.get(), 1);
    return Keep(std::move(tls));
}

// -- Transfer --

Transfer Outcome(Channel& channel, bool Channel::*way, int result) {
    if (result > 0) return {result, SOCKERR_None};
    int reason = SSL_get_error(channel.tls.get(), result);
    if (reason == SSL_ERROR_WANT_READ || reason == SSL_ERROR_WANT_WRITE) return {-1, SOCKERR_WouldBlock};
    channel.*way = false;
    if (reason == SSL_ERROR_ZERO_RETURN) return {0, SOCKERR_None};
    return {-1, SOCKERR_Aborted};
}

template <class Operation>
Transfer Perform(std::int32_t handle, bool Channel::*way, std::size_t size, Operation operation) {
    Channel* channel = Find(handle);
    if (channel == nullptr || !(channel->*way)) return {-1, SOCKERR_Aborted};
    ERR_clear_error();
    return Outcome(*channel, way, operation(channel->tls.get(), static_cast<int>(size)));
}

// -- Description --

String Cut(std::string_view text) { return WireFromBytes(text.substr(0, kLongestName)); }

String NameText(const X509_NAME* name) {
    Memory memory(BIO_new(BIO_s_mem()));
    if (memory == nullptr || X509_NAME_print_ex(memory.get(), name, 0, XN_FLAG_RFC2253) < 0) return {};
    char* text = nullptr;
    long size = BIO_get_mem_data(memory.get(), &text);
    return Cut({text, static_cast<std::size_t>(size)});
}

X509* PeerCertificate(std::int32_t handle) {
    Channel* channel = Find(handle);
    return channel == nullptr ? nullptr : SSL_get0_peer_certificate(channel->tls.get());
}

using NameOf = X509_NAME* (*)(const X509*);

String PeerName(std::int32_t handle, NameOf nameOf) {
    X509* certificate = PeerCertificate(handle);
    return certificate == nullptr ? String() : NameText(nameOf(certificate));
}

}  // namespace

std::int32_t ssl_init_client(Environment& environment, SocketId socket, StringView caFile, StringView host,
                             std::int32_t milliseconds) {
    Context context = NewContext(TLS_client_method());
    if (context == nullptr) return 0;
    if (!caFile.empty()) SSL_CTX_load_verify_file(context.get(), Utf8FromText(caFile).c_str());
    Tls tls = NewTls(context.get(), environment, socket);
    if (tls == nullptr) return 0;
    Expect(tls.get(), BytesFromWire(host));
    SSL_set_connect_state(tls.get());
    return Open(std::move(tls), environment, socket, milliseconds);
}

std::int32_t ssl_init_server(Environment& environment, SocketId socket, StringView certificateFile,
                             StringView keyFile, std::int32_t milliseconds) {
    Context context = NewContext(TLS_server_method());
    if (context == nullptr) return 0;
    SSL_CTX_use_certificate_chain_file(context.get(), Utf8FromText(certificateFile).c_str());
    SSL_CTX_use_PrivateKey_file(context.get(), Utf8FromText(keyFile).c_str(), SSL_FILETYPE_PEM);
    Tls tls = NewTls(context.get(), environment, socket);
    if (tls == nullptr) return 0;
    SSL_set_accept_state(tls.get());
    return Open(std::move(tls), environment, socket, milliseconds);
}

std::int32_t ssl_begin_client(Environment& environment, SocketId socket, StringView caFile, StringView host) {
    SharedContext context = SharedClientContext(environment, Utf8FromText(caFile));
    Tls tls = context == nullptr ? nullptr : NewTls(context.get(), environment, socket);
    if (tls == nullptr) return 0;
    Expect(tls.get(), Utf8FromText(host));
    SSL_set_connect_state(tls.get());
    std::int32_t channel = Keep(std::move(tls));
    Find(channel)->context = std::move(context);
    return channel;
}

Handshake ssl_handshake(std::int32_t channel) {
    Channel* found = Find(channel);
    if (found == nullptr) return Handshake::Failed;
    ERR_clear_error();
    int result = SSL_do_handshake(found->tls.get());
    if (result == 1) {
        SSL_set_read_ahead(found->tls.get(), 1);
        return Handshake::Done;
    }
    int reason = SSL_get_error(found->tls.get(), result);
    if (reason == SSL_ERROR_WANT_READ || reason == SSL_ERROR_WANT_WRITE) return Handshake::Pending;
    found->reads = found->writes = false;
    return Handshake::Failed;
}

// One record at a time: what would block must come again with as many bytes at least, and OpenSSL begins as
// many as it can when it is given more.
Transfer ssl_send(std::int32_t channel, std::string_view bytes) {
    return Perform(channel, &Channel::writes, std::min<std::size_t>(bytes.size(), SSL3_RT_MAX_PLAIN_LENGTH),
                   [&](SSL* tls, int count) { return SSL_write(tls, bytes.data(), count); });
}

Transfer ssl_recv(std::int32_t channel, char* buffer, std::size_t capacity) {
    return Perform(channel, &Channel::reads, std::min<std::size_t>(capacity, INT_MAX),
                   [&](SSL* tls, int count) { return SSL_read(tls, buffer, count); });
}

String ssl_getcipher(std::int32_t channel) {
    Channel* found = Find(channel);
    return found == nullptr ? String() : Cut(SSL_get_cipher_name(found->tls.get()));
}

String ssl_getsubject(std::int32_t channel) { return PeerName(channel, X509_get_subject_name); }
String ssl_getissuer(std::int32_t channel) { return PeerName(channel, X509_get_issuer_name); }

String ssl_getfingerprint(std::int32_t channel) {
    X509* certificate = PeerCertificate(channel);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
    unsigned size = 0;
    if (certificate == nullptr || X509_digest(certificate, EVP_sha256(), digest.data(), &size) != 1)
        return {};
    constexpr StringView digits = u"0123456789abcdef";
    String text;
    for (unsigned i = 0; i < size; ++i) text += {digits[digest[i] >> 4U], digits[digest[i] & 0xFU]};
    return text;
}

String ssl_verdicttext(std::int32_t verdict) { return Cut(X509_verify_cert_error_string(verdict)); }

std::int32_t ssl_getverify(std::int32_t channel) {
    Channel* found = Find(channel);
    bool judged = found != nullptr && SSL_get0_peer_certificate(found->tls.get()) != nullptr;
    return judged ? static_cast<std::int32_t>(SSL_get_verify_result(found->tls.get()))
                  : X509_V_ERR_UNSPECIFIED;
}

void ssl_cleanup(std::int32_t channel) {
    Channel* found = Find(channel);
    if (found == nullptr) return;
    ERR_clear_error();
    if (found->reads && found->writes) SSL_shutdown(found->tls.get());
    ERR_clear_error();
    Forget(channel);
}

}  // namespace quorix
