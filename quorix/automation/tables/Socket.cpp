#include "quorix/automation/Classes.h"
#include "quorix/automation/EventSource.h"
#include "quorix/net/cSocketSSL.h"

namespace quorix::automation {
namespace {

using T = cSocketSSL;

// The socket's events by their numbers; all arguments are references.
class SocketRelay : public SocketEvents, public EventSource {
public:
    explicit SocketRelay(const std::shared_ptr<T>& socket) : socket_(socket) {}

    void OnConnect() override { Fire(1, {}); }
    void OnClosed() override { Fire(2, {}); }
    void OnSendComplete() override { Fire(3, {}); }
    void OnDataArrival(std::string_view bytes, StringView remoteHost) override {
        Fire(4, {Reference(Bytes(bytes)), Reference(remoteHost)});
    }
    void OnLineDataArrival(StringView line, StringView remoteHost) override {
        Fire(5, {Reference(line), Reference(remoteHost)});
    }
    void OnError(std::int32_t number, StringView description) override {
        Fire(6, {Reference(number), Reference(description)});
    }
    void OnConnectionRequest() override { Fire(7, {}); }

protected:
    bool Attach() override {
        const auto socket = socket_.lock();
        if (!socket || socket->IsAdvised()) return false;
        socket->Advise(std::static_pointer_cast<SocketRelay>(shared_from_this()));
        return true;
    }
    void Detach() override {
        if (auto socket = socket_.lock()) socket->Advise({});
    }

private:
    std::weak_ptr<T> socket_;
};

// A string, a byte array, or anything else as the string it reads as.
void SendData(T& socket, Variant data) {
    if (data.vt == (VT_ARRAY | VT_UI1)) return socket.SendBytes(FromVariant<Bytes>(data));
    socket.SendData(FromVariant<String>(data));
}

// The system's handles have 32 significant bits in every width.
template <std::intptr_t (T::*get)() const>
std::int32_t HandleOf(T& socket) {
    return static_cast<std::int32_t>((socket.*get)());
}
template <void (T::*set)(std::intptr_t)>
void SetHandle(T& socket, std::int32_t value) {
    (socket.*set)(value);
}

}  // namespace

template <>
const ClassTable& TableOf<T>() {
    static const auto table =
        Class<T>(L"cSocketSSL")
            .Creatable()
            .Raises<SocketRelay>()
            .Property(L"State", &T::State, &T::State)
            .Property(L"SocketHandle", &T::SocketHandle, &T::SocketHandle)
            .Property(L"LocalPort", &T::LocalPort, &T::LocalPort)
            .Property(L"RemoteHost", &T::RemoteHost, &T::RemoteHost)
            .Property(L"RemotePort", &T::RemotePort, &T::RemotePort)
            .Property(L"LineSeparator", &T::LineSeparator, &T::LineSeparator)
            .Property(L"SSLEnable", &T::SSLEnable, &T::SSLEnable)
            .Property(L"SSLCipher", &T::SSLCipher, &T::SSLCipher)
            .Property(L"SSLSubject", &T::SSLSubject, &T::SSLSubject)
            .Property(L"SSLIssuer", &T::SSLIssuer, &T::SSLIssuer)
            .Get(L"SSLFingerprint", &T::SSLFingerprint)
            .Property(L"SSLPin", &T::SSLPin, &T::SSLPin)
            .Property(L"SSLServerCertificate", &T::SSLServerCertificate, &T::SSLServerCertificate)
            .Property(L"SSLServerKey", &T::SSLServerKey, &T::SSLServerKey)
            .Property(L"SSLTrusted", &T::SSLTrusted, &T::SSLTrusted)
            .Property(L"SSLCAFile", &T::SSLCAFile, &T::SSLCAFile)
            .Property(L"TimeOut", &T::TimeOut, &T::TimeOut)
            .Get(L"WindowProcOld", &HandleOf<&T::WindowProcOld>)
            .Put(L"WindowProcOld", &SetHandle<&T::WindowProcOld>)
            .Property(L"SSLHandle", &T::SSLHandle, &T::SSLHandle)
            .Get(L"WindowHandle", &HandleOf<&T::WindowHandle>)
            .Put(L"WindowHandle", &SetHandle<&T::WindowHandle>)
            .Method(L"Connect", &T::Connect)
            .Method(L"Listen", &T::Listen)
            .Method(L"LocalIP", &T::LocalIP)
            .Method(L"SendData", &SendData)
            .Method(L"Disconnect", &T::Disconnect)
            .Method(L"Accept", &T::Accept)
            .Method(L"SendFile", &T::SendFile)
            .Method(L"MyIP", &T::MyIP)
            .Method(L"MyName", &T::MyName);
    return table;
}

}  // namespace quorix::automation
