#include "quorix/net/SocketCore.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <utility>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/net/SecureChannel.h"
#include "quorix/net/mSocketSSL.h"

namespace quorix {

namespace {

constexpr std::int32_t kConnectionEvents = SOCK_Read | SOCK_Write | SOCK_Connect | SOCK_Close;
constexpr std::int32_t kServerEvents = SOCK_Read | SOCK_Write | SOCK_Accept | SOCK_Close;
constexpr std::int32_t kBacklog = 5;
constexpr std::size_t kReadBlock = 2000;
constexpr int kBlocksANotification = 32;  // then others have their turn
constexpr std::size_t kFileBlock = 5000;
constexpr std::int32_t kNotASocket = 10038;
constexpr std::int32_t kNotJudgedYet = 1;
constexpr std::int32_t kNotThePinnedOne = 28;  // OpenSSL's "certificate rejected"

std::uint16_t Port(std::int32_t port) { return static_cast<std::uint16_t>(port); }

// Whether `text` means the fingerprint, in either case, with colons or without.
bool IsFingerprint(StringView text, StringView fingerprint) {
    String digits(text);
    std::erase(digits, u':');
    return EqualsIgnoringCase(digits, fingerprint);
}

std::ifstream OpenFile(StringView name) {
    std::string utf8 = Utf8FromText(name);
    std::filesystem::path path(std::u8string(utf8.begin(), utf8.end()));
    std::ifstream file(path, std::ios::binary);
    std::error_code ignored;
    if (!file || std::filesystem::is_directory(path, ignored)) throw AutomationError(ERR_FileNotFound);
    return file;
}

}  // namespace

class SocketCore::Moment {
public:
    explicit Moment(const SocketCore& socket) : socket_(socket), generation_(socket.generation_) {}
    bool HasPassed() const { return socket_.generation_ != generation_; }

private:
    const SocketCore& socket_;
    std::uint64_t generation_;
};

SocketCore::SocketCore()
    : environment_(Environment::Current()),
      table_(SocketTable::OfThisThread()),
      connector_(environment_, *this) {}

SocketCore::~SocketCore() {
    Disconnect();
    if (windowOpen_) environment_.CloseWindow(window_);
}

template <class... Parameters, class... Arguments>
void SocketCore::Raise(void (SocketEvents::*event)(Parameters...), const Arguments&... arguments) {
    auto sink = sink_.lock();
    if (sink == nullptr) return;
    try {
        (*sink.*event)(arguments...);
    } catch (...) {  // a handler's fault must not stop the connection
    }
}

void SocketCore::SocketHandle(std::int32_t value) {
    table_->Remove(handle_, *this);
    handle_ = value;
    if (handle_ != 0) table_->Insert(handle_, *this);
}

void SocketCore::Connect() {
    auto self = shared_from_this();
    Open();
    state_ = sockConnecting;
    auto ip = ResolveHost(environment_, remoteHost_);
    if (!ip) return Raise(&SocketEvents::OnError, kNoSuchHost, kNoSuchHostText);
    if (std::int32_t error = OpenSocket(false)) return Fail(error);
    Address peer{*ip, Port(remotePort_)};
    sslEnable_ ? ConnectSecure(peer) : ConnectPlain(peer);
}

void SocketCore::ConnectPlain(Address peer) {
    std::int32_t error = environment_.AsyncSelect(handle_, window_, *table_, kConnectionEvents);
    if (error == SOCKERR_None) error = environment_.Connect(handle_, peer);
    if (error != SOCKERR_None && error != SOCKERR_WouldBlock) return Fail(error);
    environment_.SetSocketTimer(handle_, window_, *table_, timeOut_);
}

void SocketCore::ConnectSecure(Address peer) {
    if (!ConnectAndWait(peer)) return;
    sslTrusted_ = kNotJudgedYet;
    sslHandle_ = ssl_init_client(environment_, handle_, sslCAFile_, remoteHost_, timeOut_);
    if (sslHandle_ == 0) return Fail(SOCKERR_Aborted);
    Moment before(*this);
    CompleteConnection();
    if (before.HasPassed()) return;
    sslTrusted_ = ssl_getverify(sslHandle_);
    Watch(kConnectionEvents);
}

// A blocking connect that obeys TimeOut. Reports its own failure.
bool SocketCore::ConnectAndWait(Address peer) {
    environment_.SetBlocking(handle_, false);
    std::int32_t error = environment_.Connect(handle_, peer);
    if (error == SOCKERR_WouldBlock) {
        if (environment_.WaitWritable(handle_, std::max(timeOut_, kShortestInterval)) == SOCKERR_TimedOut) {
            Fail(kTimedOut, kTimedOutText);
            return false;
        }
        error = environment_.PendingError(handle_);
    }
    if (error != SOCKERR_None) Fail(error);
    return error == SOCKERR_None;
}

void SocketCore::ConnectTo(const ConnectTarget& target, StringView name) {
    auto self = shared_from_this();
    Open();
    state_ = sockConnecting;
    expectedName_ = name;
    sslFingerprint_.clear();
    connector_.Start(target, window_, timeOut_, Port(localPort_));
}

void SocketCore::NotConnected(std::int32_t number, StringView description) {
    auto self = shared_from_this();
    Fail(number, description);
}

void SocketCore::Connected(SocketId socket) {
    auto self = shared_from_this();
    SocketHandle(socket);
    sslEnable_ ? BeginHandshake() : TakeOver();
}

void SocketCore::BeginHandshake() {
    sslTrusted_ = kNotJudgedYet;
    sslHandle_ = ssl_begin_client(environment_, handle_, sslCAFile_, expectedName_);
    handshaking_ = true;
    Moment before(*this);
    Watch(SOCK_Read | SOCK_Write | SOCK_Close);
    if (before.HasPassed()) return;
    environment_.SetSocketTimer(handle_, window_, *table_, timeOut_);
    ContinueHandshake();
}

void SocketCore::ContinueHandshake() {
    switch (ssl_handshake(sslHandle_)) {
        case Handshake::Pending: return;
        case Handshake::Failed: return Fail(SOCKERR_Aborted);
        case Handshake::Done: return JudgePeer();
    }
}

// Nothing is sent to a peer that is not trusted.
void SocketCore::JudgePeer() {
    handshaking_ = false;
    environment_.KillSocketTimer(handle_, window_);
    DescribeChannel();
    sslFingerprint_ = ssl_getfingerprint(sslHandle_);
    sslTrusted_ = ssl_getverify(sslHandle_);
    if (!sslPin_.empty()) sslTrusted_ = IsFingerprint(sslPin_, sslFingerprint_) ? 0 : kNotThePinnedOne;
    if (sslTrusted_ == 0) return TakeOver();
    Fail(kUntrusted, Concat({u"Certificate not trusted: ", ssl_verdicttext(sslTrusted_)}));
}

void SocketCore::TakeOver() {
    Moment before(*this);
    CompleteConnection();
    if (!before.HasPassed()) Watch(kConnectionEvents);
}

void SocketCore::Watch(std::int32_t events) {
    std::int32_t error = environment_.AsyncSelect(handle_, window_, *table_, events);
    if (error != SOCKERR_None) Fail(error);
}

void SocketCore::Listen() {
    auto self = shared_from_this();
    Open();
    std::int32_t error = OpenSocket(true);
    if (error == SOCKERR_None) error = environment_.AsyncSelect(handle_, window_, *table_, kServerEvents);
    if (error == SOCKERR_None) error = environment_.Listen(handle_, kBacklog);
    if (error != SOCKERR_None) return Fail(error);
    state_ = sockListening;
    localPort_ = environment_.LocalAddress(handle_).port;
}

void SocketCore::Accept(std::int32_t RequestID) {
    auto self = shared_from_this();
    Open();
    if (RequestID == 0) return Fail(kNotASocket);
    SocketHandle(RequestID);
    ReadPeer();
    if (sslEnable_ && !AcceptSecure()) return;
    state_ = sockConnected;
    Watch(kServerEvents);
}

// The socket may still be selected, as the listener was.
bool SocketCore::AcceptSecure() {
    environment_.AsyncSelect(handle_, window_, *table_, 0);
    environment_.SetBlocking(handle_, false);
    sslHandle_ = ssl_init_server(environment_, handle_, sslServerCertificate_, sslServerKey_, timeOut_);
    if (sslHandle_ == 0) Fail(SOCKERR_Aborted);
    return sslHandle_ != 0;
}

// Ends what was open before, so that nothing of it reaches the new connection.
void SocketCore::Open() {
    Disconnect();
    if (windowOpen_) return;
    window_ = environment_.OpenWindow(*table_);
    windowOpen_ = true;
}

std::int32_t SocketCore::OpenSocket(bool reuseAddress) {
    NewSocket made = environment_.CreateSocket(false);
    if (made.id == 0) return made.error;
    SocketHandle(made.id);
    return environment_.Bind(handle_, {0, Port(localPort_)}, reuseAddress);
}

void SocketCore::Disconnect() {
    ++generation_;
    state_ = sockClosed;
    closedRaised_ = handshaking_ = false;
    connector_.Stop();
    unsent_.Clear();
    lines_.Clear();
    ssl_cleanup(std::exchange(sslHandle_, 0));
    Release();
}

void SocketCore::Release() {
    if (handle_ == 0) return;
    SocketId closing = handle_;
    SocketHandle(0);
    environment_.KillSocketTimer(closing, window_);
    environment_.Close(closing);
}

void SocketCore::Fail(std::int32_t number) { Fail(number, SocketErrorText(number)); }

// A handler of the error may have connected again; that connection is not the one that failed.
void SocketCore::Fail(std::int32_t number, StringView description) {
    Moment before(*this);
    Raise(&SocketEvents::OnError, number, description);
    if (!before.HasPassed()) Disconnect();
}

void SocketCore::OnConnectResult(std::int32_t error) {
    if (state_ == sockConnected) return;  // some systems repeat it when a connected socket is selected
    if (error != SOCKERR_None) return Fail(error);
    CompleteConnection();
}

void SocketCore::CompleteConnection() {
    ReadPeer();
    if (sslHandle_ != 0) DescribeChannel();
    state_ = sockConnected;
    Raise(&SocketEvents::OnConnect);
}

void SocketCore::ReadPeer() {
    Address peer = environment_.PeerAddress(handle_);
    remoteHost_ = AddressText(peer);
    remotePort_ = peer.port;
}

void SocketCore::DescribeChannel() {
    sslCipher_ = ssl_getcipher(sslHandle_);
    sslSubject_ = ssl_getsubject(sslHandle_);
    sslIssuer_ = ssl_getissuer(sslHandle_);
}

void SocketCore::OnConnectTimer() {
    environment_.KillSocketTimer(handle_, window_);
    if (state_ == sockConnecting) Fail(kTimedOut, kTimedOutText);
}

void SocketCore::OnPeerClosed() {
    if (handshaking_) return Fail(SOCKERR_Aborted);
    if (!std::exchange(closedRaised_, true)) Raise(&SocketEvents::OnClosed);
}

void SocketCore::OnAcceptable() { Raise(&SocketEvents::OnConnectionRequest); }

void SocketCore::OnReadable() {
    if (handshaking_) return ContinueHandshake();
    Moment before(*this);
    std::array<char, kReadBlock> buffer;
    for (int block = 0; block < kBlocksANotification; ++block) {
        Transfer received = ReceiveSome(buffer.data(), buffer.size());
        if (received.count <= 0) return OnNothingReceived(received.error);
        Deliver({buffer.data(), static_cast<std::size_t>(received.count)});
        if (before.HasPassed() || IsShort(received)) return;
    }
    if (sslHandle_ != 0) environment_.ReadAgain(handle_);
}

// What the system had is read; it notifies what comes later. A secure channel gives a record at a time.
bool SocketCore::IsShort(Transfer received) const {
    return sslHandle_ == 0 && static_cast<std::size_t>(received.count) < kReadBlock;
}

// The end of a plain connection is notified. That of a secure channel need not be: the peer may end the
// channel and keep the connection.
void SocketCore::OnNothingReceived(std::int32_t error) {
    if (sslHandle_ != 0 && error != SOCKERR_WouldBlock) OnPeerClosed();
}

void SocketCore::Deliver(std::string_view bytes) {
    String peer = remoteHost_;  // a handler may change it
    if (lineSeparator_.empty()) return Raise(&SocketEvents::OnDataArrival, bytes, peer);
    lines_.Append(bytes.substr(0, bytes.find('\0')));
    DeliverLines(peer);
}

void SocketCore::DeliverLines(StringView peer) {
    Moment before(*this);
    while (!lineSeparator_.empty()) {
        auto line = lines_.TakeLine(lineSeparator_);
        if (!line) break;
        Raise(&SocketEvents::OnLineDataArrival, *line, peer);
        if (before.HasPassed()) return;
    }
    std::string leftOver(lines_.TakeLeftOver());
    if (!leftOver.empty()) Raise(&SocketEvents::OnDataArrival, leftOver, peer);
}

void SocketCore::SendData(StringView wireText) { SendBytes(BytesFromWire(wireText)); }

void SocketCore::SendBytes(std::string_view bytes) {
    if (state_ != sockConnected || handle_ == 0) return;
    if (unsent_.IsEmpty()) bytes.remove_prefix(SendNow(bytes));
    unsent_.Append(bytes);
}

// Sends until the system takes no more. What can never be sent counts as sent: the connection is lost, and
// the closing that follows tells so.
std::size_t SocketCore::SendNow(std::string_view bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        Transfer taken = SendSome(bytes.substr(sent));
        if (taken.error == SOCKERR_WouldBlock) break;
        if (taken.count < 0) return bytes.size();
        sent += static_cast<std::size_t>(taken.count);
    }
    return sent;
}

void SocketCore::Flush() {
    while (!unsent_.IsEmpty()) {
        std::size_t waiting = unsent_.Front().size();
        std::size_t sent = SendNow(unsent_.Front());
        unsent_.Pop(sent);
        if (sent < waiting) return;
    }
}

void SocketCore::OnWritable() {
    if (handshaking_) return ContinueHandshake();
    Flush();
    if (unsent_.IsEmpty()) Raise(&SocketEvents::OnSendComplete);
}

Transfer SocketCore::ReceiveSome(char* buffer, std::size_t capacity) {
    if (sslHandle_ != 0) return ssl_recv(sslHandle_, buffer, capacity);
    return environment_.Receive(handle_, buffer, capacity);
}

Transfer SocketCore::SendSome(std::string_view bytes) {
    if (sslHandle_ != 0) return ssl_send(sslHandle_, bytes);
    return environment_.Send(handle_, bytes);
}

void SocketCore::SendFile(StringView FileName) {
    auto self = shared_from_this();
    Moment before(*this);
    std::ifstream file = OpenFile(FileName);
    std::array<char, kFileBlock> block;
    while (!before.HasPassed()) {
        file.read(block.data(), block.size());
        if (file.gcount() == 0) return;
        SendBytes({block.data(), static_cast<std::size_t>(file.gcount())});
        environment_.DoEvents();
    }
}

String SocketCore::LocalIP() const {
    return AddressText(handle_ != 0 ? environment_.LocalAddress(handle_) : Address());
}

String SocketCore::MyName() const { return WireFromBytes(environment_.HostName()); }

String SocketCore::MyIP() const {
    auto ip = ResolveHost(environment_, MyName());
    return ip ? DottedAddress(*ip) : String();
}

}  // namespace quorix
