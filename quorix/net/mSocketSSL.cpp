#include "quorix/net/mSocketSSL.h"

#include <algorithm>
#include <iterator>

#include "quorix/base/WireText.h"
#include "quorix/net/SocketCore.h"

namespace quorix {

namespace {

constexpr std::uint32_t kNoAddress = 0xFFFFFFFF;

struct ErrorText {
    std::int32_t number;
    StringView text;
};

// In ascending order.
constexpr ErrorText kErrorTexts[] = {
    {10004, u"Interrupted system call."},
    {10009, u"Bad file number."},
    {10013, u"Permission Denied."},
    {10014, u"Bad Address."},
    {10022, u"Invalid Argument."},
    {10024, u"Too many open files."},
    {10035, u"Operation would block."},
    {10036, u"Operation now in progress."},
    {10037, u"Operation already in progress."},
    {10038, u"Socket operation on nonsocket."},
    {10039, u"Destination address required."},
    {10040, u"Message too long."},
    {10041, u"Protocol wrong type for socket."},
    {10042, u"Protocol not available."},
    {10043, u"Protocol not supported."},
    {10044, u"Socket type not supported."},
    {10045, u"Operation not supported on socket."},
    {10046, u"Protocol family not supported."},
    {10047, u"Address family not supported by protocol family."},
    {10048, u"Address already in use."},
    {10049, u"Can't assign requested address."},
    {10050, u"Network is down."},
    {10051, u"Network is unreachable."},
    {10052, u"Network dropped connection."},
    {10053, u"Software caused connection abort."},
    {10054, u"Connection reset by peer."},
    {10055, u"No buffer space available."},
    {10056, u"Socket is already connected."},
    {10057, u"Socket is not connected."},
    {10058, u"Can't send after socket shutdown."},
    {10059, u"Too many references: can't splice."},
    {10060, u"Connection timed out."},
    {10061, u"Connection refused."},
    {10062, u"Too many levels of symbolic links."},
    {10063, u"File name too long."},
    {10064, u"Host is down."},
    {10065, u"No route to host."},
    {10066, u"Directory not empty."},
    {10067, u"Too many processes."},
    {10068, u"Too many users."},
    {10069, u"Disk quota exceeded."},
    {10070, u"Stale NFS file handle."},
    {10071, u"Too many levels of remote in path."},
    {10091, u"Network subsystem is unusable."},
    {10092, u"Winsock DLL cannot support this application."},
    {10093, u"Winsock not Initized."},
    {10101, u"Disconnect."},
    {11001, u"Host not found."},
    {11002, u"Nonauthoritative host not found."},
    {11003, u"Nonrecoverable error."},
    {11004, u"Valid name, no data record of requested type."},
};

}  // namespace

StringView SocketErrorText(std::int32_t number) {
    const auto* found =
        std::lower_bound(std::begin(kErrorTexts), std::end(kErrorTexts), number,
                         [](const ErrorText& entry, std::int32_t wanted) { return entry.number < wanted; });
    return found != std::end(kErrorTexts) && found->number == number ? found->text : StringView();
}

std::optional<std::uint32_t> ResolveHost(Environment& environment, StringView host) {
    if (host.find(u'\0') != StringView::npos) return {};  // the system would look up the part before it
    auto found = environment.Resolve(BytesFromWire(host));
    return found == kNoAddress ? std::nullopt : found;
}

std::int32_t AcceptConnection(std::int32_t listener) { return Environment::Current().Accept(listener).id; }

std::shared_ptr<SocketTable> SocketTable::OfThisThread() {
    thread_local std::weak_ptr<SocketTable> table;
    auto current = table.lock();
    if (current == nullptr) table = current = std::make_shared<SocketTable>();
    return current;
}

void SocketTable::Insert(SocketId handle, SocketCore& socket) { sockets_[handle] = &socket; }

void SocketTable::Remove(SocketId handle, const SocketCore& socket) {
    auto found = sockets_.find(handle);
    if (found != sockets_.end() && found->second == &socket) sockets_.erase(found);
}

std::shared_ptr<SocketCore> SocketTable::Find(SocketId handle) const {
    auto found = sockets_.find(handle);
    return found != sockets_.end() ? found->second->weak_from_this().lock() : nullptr;
}

void SocketTable::OnSocketEvent(SocketId handle, std::int32_t event, std::int32_t error) {
    auto socket = Find(handle);
    if (socket == nullptr) return;
    switch (event) {
        case SOCK_Read: return socket->OnReadable();
        case SOCK_Write: return socket->OnWritable();
        case SOCK_Accept: return socket->OnAcceptable();
        case SOCK_Connect: return socket->OnConnectResult(error);
        case SOCK_Close: return socket->OnPeerClosed();
        default: return;
    }
}

void SocketTable::OnSocketTimer(SocketId handle) {
    if (auto socket = Find(handle)) socket->OnConnectTimer();
}

}  // namespace quorix
