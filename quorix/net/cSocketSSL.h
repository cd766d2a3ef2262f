// An asynchronous TCP socket with optional TLS: the transport of a session, usable on its own.
//
// Ownership: made with std::make_shared. Every notification keeps the socket alive until it has been handled,
// so a handler may disconnect, connect again or drop the last reference to the socket.
// Threads: a socket belongs to the thread that made it, and its events come from that thread's message loop,
// which the application runs (see MessageLoop.h).
#pragma once

#include <memory>

#include "quorix/base/String.h"
#include "quorix/net/ByteQueue.h"
#include "quorix/net/Connector.h"
#include "quorix/net/LineBuffer.h"
#include "quorix/platform/Environment.h"

namespace quorix {

class SocketTable;

enum sockType : std::int32_t {
    sockClosed = 1,
    sockListening = 2,
    sockConnecting = 3,
    sockConnected = 4,
};

// What a socket tells its owner. Events are raised synchronously; what a handler throws is swallowed.
class SocketEvents {
public:
    virtual ~SocketEvents() = default;

    virtual void OnConnect() {}

    // The peer has closed the connection, after the last byte was delivered. The socket is not closed by it.
    virtual void OnClosed() {}

    // The socket takes data, and nothing waits to be sent: once after connecting, and each time that text
    // which had to wait has gone out. Text that goes out at once raises nothing.
    virtual void OnSendComplete() {}

    // Bytes as they came, at most 2000 at a time; in line mode the bytes behind the last separator.
    virtual void OnDataArrival(std::string_view /*bytes*/, StringView /*remoteHost*/) {}

    // A line (wire text) without its separator.
    virtual void OnLineDataArrival(StringView /*line*/, StringView /*remoteHost*/) {}

    // 10xxx numbers with their English text, 100 for a host name that does not resolve, 0 for a time-out.
    // The socket disconnects when the handler returns, except after number 100.
    virtual void OnError(std::int32_t /*Number*/, StringView /*Description*/) {}

    // A connection waits at this listening socket: AcceptConnection takes it (see mSocketSSL.h).
    virtual void OnConnectionRequest() {}
};

class cSocketSSL : public std::enable_shared_from_this<cSocketSSL>, private ConnectorEvents {
public:
    cSocketSSL();
    ~cSocketSSL() override;
    cSocketSSL(const cSocketSSL&) = delete;
    cSocketSSL& operator=(const cSocketSSL&) = delete;

    // The one receiver of the events. It is kept alive while it handles one, and no longer.
    void Advise(std::weak_ptr<SocketEvents> sink) { sink_ = std::move(sink); }
    bool IsAdvised() const { return !sink_.expired(); }

    // Setting the state closes nothing and opens nothing. While it is not sockConnected, sending is silent
    // and without effect.
    sockType State() const { return state_; }
    void State(sockType value) { state_ = value; }

    // The system's socket, 0 for none.
    std::int32_t SocketHandle() const { return handle_; }
    void SocketHandle(std::int32_t value);

    // The local port to bind, 0 for any. Listen stores the port that was really bound.
    std::int32_t LocalPort() const { return localPort_; }
    void LocalPort(std::int32_t value) { localPort_ = value; }

    // The peer's host name or dotted IPv4 address (text, ASCII). Once connected it is the dotted address.
    String RemoteHost() const { return remoteHost_; }
    void RemoteHost(StringView value) { remoteHost_ = value; }

    // Of a port, the lower 16 bits are used.
    std::int32_t RemotePort() const { return remotePort_; }
    void RemotePort(std::int32_t value) { remotePort_ = value; }

    // "" delivers data as it comes. Otherwise received data is cut into lines at each occurrence. In this
    // mode a block's bytes from its first NUL on are lost, and a line may grow without bound.
    String LineSeparator() const { return lineSeparator_; }
    void LineSeparator(StringView value) { lineSeparator_ = value; }

    // TLS 1.2 or 1.3 over the connection, as the client after Connect and as the server after Accept.
    bool SSLEnable() const { return sslEnable_; }
    void SSLEnable(bool value) { sslEnable_ = value; }

    // Of the last TLS Connect: the cipher's name, and the distinguished names (RFC 2253, ASCII) of the
    // peer's certificate, "" when it sent none.
    String SSLCipher() const { return sslCipher_; }
    void SSLCipher(StringView value) { sslCipher_ = value; }
    String SSLSubject() const { return sslSubject_; }
    void SSLSubject(StringView value) { sslSubject_ = value; }
    String SSLIssuer() const { return sslIssuer_; }
    void SSLIssuer(StringView value) { sslIssuer_ = value; }

    // File names (text) of the PEM certificate chain and private key that Accept presents.
    String SSLServerCertificate() const { return sslServerCertificate_; }
    void SSLServerCertificate(StringView value) { sslServerCertificate_ = value; }
    String SSLServerKey() const { return sslServerKey_; }
    void SSLServerKey(StringView value) { sslServerKey_ = value; }

    // OpenSSL's verification result for the peer of the last TLS Connect, known when Connect returns: 0 is
    // trusted, 10 expired, 18 self-signed, 20 of an unknown issuer, 62 for another name, 64 for another
    // address. While it is not known yet, 1. It is never enforced: an application that does not want to go
    // on disconnects.
    std::int32_t SSLTrusted() const { return sslTrusted_; }
    void SSLTrusted(std::int32_t value) { sslTrusted_ = value; }

    // File name (text) of the PEM certificates that are trusted. Without it, or when it cannot be read,
    // nothing is trusted; the system's certificates are not read by themselves.
    String SSLCAFile() const { return sslCAFile_; }
    void SSLCAFile(StringView value) { sslCAFile_ = value; }

    // Milliseconds, 10 at least, until an attempt to connect, or a TLS handshake, is given up. Default 5000.
    std::int32_t TimeOut() const { return timeOut_; }
    void TimeOut(std::int32_t value) { timeOut_ = value; }

    // The hidden window that receives the notifications, and its previous procedure; 0 where there is none.
    std::intptr_t WindowProcOld() const { return window_.previousProcedure; }
    void WindowProcOld(std::intptr_t value) { window_.previousProcedure = value; }
    std::intptr_t WindowHandle() const { return window_.handle; }
    void WindowHandle(std::intptr_t value) { window_.handle = value; }

    // The secure channel (see SecureChannel.h), 0 for a plain connection.
    std::int32_t SSLHandle() const { return sslHandle_; }
    void SSLHandle(std::int32_t value) { sslHandle_ = value; }

    // SHA-256 of the peer's certificate, 64 hexadecimal digits in lower case, after ConnectTo, and after its
    // refusal too.
    String SSLFingerprint() const { return sslFingerprint_; }

    // The fingerprint of the one certificate that ConnectTo accepts, whatever else speaks for it or against
    // it: hexadecimal digits in either case, with or without colons. "" leaves it to the verification.
    String SSLPin() const { return sslPin_; }
    void SSLPin(StringView value) { sslPin_ = value; }

    // Starts connecting to RemoteHost:RemotePort, after closing what was open before. OnConnect or OnError
    // tells how it ended. With SSLEnable, all of it happens before Connect returns, TimeOut milliseconds at
    // most for the connection and as many for the handshake.
    void Connect();

    // Starts connecting to `target` without ever blocking; TimeOut holds for each address, and again for the
    // TLS handshake. With SSLEnable the certificate must be for `name` and issued by one of SSLCAFile, or of
    // the system where that is empty, or it must be the one of SSLPin. OnConnect or OnError tells how it
    // ended.
    void ConnectTo(const ConnectTarget& target, StringView name);

    // Listens on LocalPort of every local address.
    void Listen();

    // The local address of the connection, dotted; "0.0.0.0" without one.
    String LocalIP() const;

    // Sends wire text (a character above 255 goes out as "?"), or bytes. What the system does not take at
    // once waits, in order, and goes out as the peer reads; it is lost when the socket is disconnected.
    void SendData(StringView wireText);
    void SendBytes(std::string_view bytes);

    // Closes the connection, if any. Raises nothing.
    void Disconnect();

    // Takes over the accepted socket `RequestID`, which AcceptConnection returned. No OnConnect is raised.
    // With SSLEnable the TLS handshake happens before Accept returns.
    void Accept(std::int32_t RequestID);

    // Sends a file in blocks of 5000 bytes, delivering pending events in between; ends early when one of
    // them closes the connection. Error 53 when the file cannot be opened.
    void SendFile(StringView FileName);

    // The dotted address of the local host's name, "" when that does not resolve; and the name.
    String MyIP() const;
    String MyName() const;

private:
    friend class SocketTable;

    // Tells whether anything was disconnected or connected since it was made.
    class Moment;

    void OnReadable();
    void OnWritable();
    void OnAcceptable();
    void OnConnectResult(std::int32_t error);
    void OnPeerClosed();
    void OnConnectTimer();

    void Connected(SocketId socket) override;
    void NotConnected(std::int32_t number, StringView description) override;
    void BeginHandshake();
    void ContinueHandshake();
    void JudgePeer();
    void TakeOver();

    void Open();
    std::int32_t OpenSocket(bool reuseAddress);
    void ConnectPlain(Address peer);
    void ConnectSecure(Address peer);
    bool ConnectAndWait(Address peer);
    bool AcceptSecure();
    void Watch(std::int32_t events);
    void CompleteConnection();
    void DescribeChannel();
    void ReadPeer();
    void Fail(std::int32_t number);
    void Fail(std::int32_t number, StringView description);
    void Release();

    Transfer ReceiveSome(char* buffer, std::size_t capacity);
    Transfer SendSome(std::string_view bytes);
    std::size_t SendNow(std::string_view bytes);
    void Flush();
    bool IsShort(Transfer received) const;
    void OnNothingReceived(std::int32_t error);
    void Deliver(std::string_view bytes);
    void DeliverLines(StringView peer);

    template <class... Parameters, class... Arguments>
    void Raise(void (SocketEvents::*event)(Parameters...), const Arguments&... arguments);

    Environment& environment_;
    std::shared_ptr<SocketTable> table_;
    std::weak_ptr<SocketEvents> sink_;
    Connector connector_;
    String expectedName_;           // of the certificate
    bool handshaking_ = false;      // in the loop
    std::uint64_t generation_ = 0;  // advanced whenever a connection begins or ends
    bool closedRaised_ = false;
    bool windowOpen_ = false;
    HiddenWindow window_;
    ByteQueue unsent_;
    LineBuffer lines_;

    sockType state_ = sockClosed;
    std::int32_t handle_ = 0;
    std::int32_t localPort_ = 0;
    String remoteHost_;
    std::int32_t remotePort_ = 0;
    String lineSeparator_;
    bool sslEnable_ = false;
    String sslCipher_;
    String sslSubject_;
    String sslIssuer_;
    String sslServerCertificate_;
    String sslServerKey_;
    std::int32_t sslTrusted_ = 0;
    String sslCAFile_;
    String sslFingerprint_;
    String sslPin_;
    std::int32_t timeOut_ = 5000;
    std::int32_t sslHandle_ = 0;
};

}  // namespace quorix
