/// \class quorix::cSocketSSL
/// An asynchronous TCP socket with optional TLS: the transport of a session, usable on its own.
///
/// Ownership: made with std::make_shared. Every notification keeps the socket alive until it has been
/// handled, so a handler may disconnect, connect again or drop the last reference to the socket. Threads: a
/// socket belongs to the thread that made it, and its events come from that thread's message loop, which the
/// application runs (see MessageLoop.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/net/ConnectTarget.h"

namespace quorix {

class SocketCore;

enum sockType : std::int32_t {
    sockClosed = 1,
    sockListening = 2,
    sockConnecting = 3,
    sockConnected = 4,
};

/// What a socket tells its owner. Events are raised synchronously; what a handler throws is swallowed.
class QUORIX_API SocketEvents {
public:
    virtual ~SocketEvents() = default;

    virtual void OnConnect() {}

    /// The peer has closed the connection, after the last byte was delivered. The socket is not closed by it.
    virtual void OnClosed() {}

    /// The socket takes data, and nothing waits to be sent: once after connecting, and each time that text
    /// which had to wait has gone out. Text that goes out at once raises nothing.
    virtual void OnSendComplete() {}

    /// Bytes as they came, at most 2000 at a time; in line mode the bytes behind the last separator.
    virtual void OnDataArrival(std::string_view /*bytes*/, StringView /*remoteHost*/) {}

    /// A line (wire text) without its separator.
    virtual void OnLineDataArrival(StringView /*line*/, StringView /*remoteHost*/) {}

    /// 10xxx numbers with their English text, 100 for a host name that does not resolve, 0 for a time-out.
    /// The socket disconnects when the handler returns, except after number 100.
    virtual void OnError(std::int32_t /*Number*/, StringView /*Description*/) {}

    /// A connection waits at this listening socket: AcceptConnection takes it.
    virtual void OnConnectionRequest() {}
};

class QUORIX_API cSocketSSL {
public:
    cSocketSSL();
    ~cSocketSSL();
    cSocketSSL(const cSocketSSL&) = delete;
    cSocketSSL& operator=(const cSocketSSL&) = delete;

    /// The one receiver of the events. It is kept alive while it handles one, and no longer.
    void Advise(std::weak_ptr<SocketEvents> sink);
    bool IsAdvised() const;

    /// Setting the state closes nothing and opens nothing. While it is not sockConnected, sending is silent
    /// and without effect.
    sockType State() const;
    void State(sockType value);

    /// The system's socket, 0 for none.
    std::int32_t SocketHandle() const;
    void SocketHandle(std::int32_t value);

    /// The local port to bind, 0 for any. Listen stores the port that was really bound.
    std::int32_t LocalPort() const;
    void LocalPort(std::int32_t value);

    /// The peer's host name or dotted IPv4 address (text, ASCII). Once connected it is the dotted address.
    String RemoteHost() const;
    void RemoteHost(StringView value);

    /// Of a port, the lower 16 bits are used.
    std::int32_t RemotePort() const;
    void RemotePort(std::int32_t value);

    /// "" delivers data as it comes. Otherwise received data is cut into lines at each occurrence. In this
    /// mode a block's bytes from its first NUL on are lost, and a line may grow without bound.
    String LineSeparator() const;
    void LineSeparator(StringView value);

    /// TLS 1.2 or 1.3 over the connection, as the client after Connect and as the server after Accept.
    bool SSLEnable() const;
    void SSLEnable(bool value);

    /// Of the last TLS Connect: the cipher's name, and the distinguished names (RFC 2253, ASCII) of the
    /// peer's certificate, "" when it sent none.
    String SSLCipher() const;
    void SSLCipher(StringView value);
    String SSLSubject() const;
    void SSLSubject(StringView value);
    String SSLIssuer() const;
    void SSLIssuer(StringView value);

    /// File names (text) of the PEM certificate chain and private key that Accept presents.
    String SSLServerCertificate() const;
    void SSLServerCertificate(StringView value);
    String SSLServerKey() const;
    void SSLServerKey(StringView value);

    /// OpenSSL's verification result for the peer of the last TLS Connect, known when Connect returns: 0 is
    /// trusted, 10 expired, 18 self-signed, 20 of an unknown issuer, 62 for another name, 64 for another
    /// address. While it is not known yet, 1. It is never enforced: an application that does not want to go
    /// on disconnects.
    std::int32_t SSLTrusted() const;
    void SSLTrusted(std::int32_t value);

    /// File name (text) of the PEM certificates that are trusted. Without it, or when it cannot be read,
    /// nothing is trusted; the system's certificates are not read by themselves.
    String SSLCAFile() const;
    void SSLCAFile(StringView value);

    /// Milliseconds, 10 at least, until an attempt to connect, or a TLS handshake, is given up. Default 5000.
    std::int32_t TimeOut() const;
    void TimeOut(std::int32_t value);

    /// The hidden window that receives the notifications, and its previous procedure; 0 where there is none.
    std::intptr_t WindowProcOld() const;
    void WindowProcOld(std::intptr_t value);
    std::intptr_t WindowHandle() const;
    void WindowHandle(std::intptr_t value);

    /// The secure channel, 0 for a plain connection.
    std::int32_t SSLHandle() const;
    void SSLHandle(std::int32_t value);

    /// SHA-256 of the peer's certificate, 64 hexadecimal digits in lower case, after ConnectTo, and after its
    /// refusal too.
    String SSLFingerprint() const;

    /// The fingerprint of the one certificate that ConnectTo accepts, whatever else speaks for it or against
    /// it: hexadecimal digits in either case, with or without colons. "" leaves it to the verification.
    String SSLPin() const;
    void SSLPin(StringView value);

    /// Starts connecting to RemoteHost:RemotePort, after closing what was open before. OnConnect or OnError
    /// tells how it ended. With SSLEnable, all of it happens before Connect returns, TimeOut milliseconds at
    /// most for the connection and as many for the handshake.
    void Connect();

    /// Starts connecting to `target` without ever blocking; TimeOut holds for each address, and again for the
    /// TLS handshake. With SSLEnable the certificate must be for `name` and issued by one of SSLCAFile, or of
    /// the system where that is empty, or it must be the one of SSLPin. OnConnect or OnError tells how it
    /// ended.
    void ConnectTo(const ConnectTarget& target, StringView name);

    /// Listens on LocalPort of every local address.
    void Listen();

    /// The local address of the connection, dotted; "0.0.0.0" without one.
    String LocalIP() const;

    /// Sends wire text (a character above 255 goes out as "?"), or bytes. What the system does not take at
    /// once waits, in order, and goes out as the peer reads; it is lost when the socket is disconnected.
    void SendData(StringView wireText);
    void SendBytes(std::string_view bytes);

    /// Closes the connection, if any. Raises nothing.
    void Disconnect();

    /// Takes over the accepted socket `RequestID`, which AcceptConnection returned. No OnConnect is raised.
    /// With SSLEnable the TLS handshake happens before Accept returns.
    void Accept(std::int32_t RequestID);

    /// Sends a file in blocks of 5000 bytes, delivering pending events in between; ends early when one of
    /// them closes the connection. Error 53 when the file cannot be opened.
    void SendFile(StringView FileName);

    /// The dotted address of the local host's name, "" when that does not resolve; and the name.
    String MyIP() const;
    String MyName() const;

private:
    std::shared_ptr<SocketCore> core_;
};

/// Accepts the connection that waits at the listening socket `listener`, for cSocketSSL::Accept. 0 when none
/// waits, or it could not be accepted.
QUORIX_API std::int32_t AcceptConnection(std::int32_t listener);

}  // namespace quorix
