// The socket behind a cSocketSSL: every notification keeps it alive until it has been handled, whatever
// becomes of the other.
#pragma once

#include <memory>

#include "quorix/base/String.h"
#include "quorix/net/ByteQueue.h"
#include "quorix/net/Connector.h"
#include "quorix/net/LineBuffer.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/platform/Environment.h"

namespace quorix {

class SocketTable;

// See cSocketSSL for what each member means.
class SocketCore final : public std::enable_shared_from_this<SocketCore>, private ConnectorEvents {
public:
    SocketCore();
    ~SocketCore() override;
    SocketCore(const SocketCore&) = delete;
    SocketCore& operator=(const SocketCore&) = delete;
    void Advise(std::weak_ptr<SocketEvents> sink) { sink_ = std::move(sink); }
    bool IsAdvised() const { return !sink_.expired(); }
    sockType State() const { return state_; }
    void State(sockType value) { state_ = value; }
    std::int32_t SocketHandle() const { return handle_; }
    void SocketHandle(std::int32_t value);
    std::int32_t LocalPort() const { return localPort_; }
    void LocalPort(std::int32_t value) { localPort_ = value; }
    String RemoteHost() const { return remoteHost_; }
    void RemoteHost(StringView value) { remoteHost_ = value; }
    std::int32_t RemotePort() const { return remotePort_; }
    void RemotePort(std::int32_t value) { remotePort_ = value; }
    String LineSeparator() const { return lineSeparator_; }
    void LineSeparator(StringView value) { lineSeparator_ = value; }
    bool SSLEnable() const { return sslEnable_; }
    void SSLEnable(bool value) { sslEnable_ = value; }
    String SSLCipher() const { return sslCipher_; }
    void SSLCipher(StringView value) { sslCipher_ = value; }
    String SSLSubject() const { return sslSubject_; }
    void SSLSubject(StringView value) { sslSubject_ = value; }
    String SSLIssuer() const { return sslIssuer_; }
    void SSLIssuer(StringView value) { sslIssuer_ = value; }
    String SSLServerCertificate() const { return sslServerCertificate_; }
    void SSLServerCertificate(StringView value) { sslServerCertificate_ = value; }
    String SSLServerKey() const { return sslServerKey_; }
    void SSLServerKey(StringView value) { sslServerKey_ = value; }
    std::int32_t SSLTrusted() const { return sslTrusted_; }
    void SSLTrusted(std::int32_t value) { sslTrusted_ = value; }
    String SSLCAFile() const { return sslCAFile_; }
    void SSLCAFile(StringView value) { sslCAFile_ = value; }
    std::int32_t TimeOut() const { return timeOut_; }
    void TimeOut(std::int32_t value) { timeOut_ = value; }
    std::intptr_t WindowProcOld() const { return window_.previousProcedure; }
    void WindowProcOld(std::intptr_t value) { window_.previousProcedure = value; }
    std::intptr_t WindowHandle() const { return window_.handle; }
    void WindowHandle(std::intptr_t value) { window_.handle = value; }
    std::int32_t SSLHandle() const { return sslHandle_; }
    void SSLHandle(std::int32_t value) { sslHandle_ = value; }
    String SSLFingerprint() const { return sslFingerprint_; }
    String SSLPin() const { return sslPin_; }
    void SSLPin(StringView value) { sslPin_ = value; }
    void Connect();
    void ConnectTo(const ConnectTarget& target, StringView name);
    void Listen();
    String LocalIP() const;
    void SendData(StringView wireText);
    void SendBytes(std::string_view bytes);
    void Disconnect();
    void Accept(std::int32_t RequestID);
    void SendFile(StringView FileName);
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
