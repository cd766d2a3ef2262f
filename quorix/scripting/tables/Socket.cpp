#include "quorix/net/cSocketSSL.h"
#include "quorix/scripting/Classes.h"

namespace quorix::scripting {
namespace {

using T = cSocketSSL;

const std::vector<Event>& SocketEventList() {
    using E = SocketEvents;
    static const std::vector<Event> list = {
        EventOf("Connect", &E::OnConnect),
        EventOf("Closed", &E::OnClosed),
        EventOf("SendComplete", &E::OnSendComplete),
        EventOf("DataArrival", &E::OnDataArrival),
        EventOf("LineDataArrival", &E::OnLineDataArrival),
        EventOf("Error", &E::OnError),
        EventOf("ConnectionRequest", &E::OnConnectionRequest),
    };
    return list;
}

class SocketRelay : public SocketEvents {
public:
    explicit SocketRelay(std::shared_ptr<Listener> listener) : listener_(std::move(listener)) {}

    void OnConnect() override { Pass(1); }
    void OnClosed() override { Pass(2); }
    void OnSendComplete() override { Pass(3); }
    void OnDataArrival(std::string_view bytes, StringView remoteHost) override { Pass(4, bytes, remoteHost); }
    void OnLineDataArrival(StringView line, StringView remoteHost) override { Pass(5, line, remoteHost); }
    void OnError(std::int32_t number, StringView description) override { Pass(6, number, description); }
    void OnConnectionRequest() override { Pass(7); }

private:
    template <class... A>
    void Pass(std::size_t number, const A&... arguments) {
        Tell(*listener_, SocketEventList()[number - 1], arguments...);
    }

    std::shared_ptr<Listener> listener_;
};

// A socket knows its listener weakly: the connection owns it.
Connection ListenToSocket(const std::shared_ptr<T>& socket, std::shared_ptr<Listener> listener) {
    if (socket->IsAdvised()) return nullptr;
    auto relay = std::make_shared<SocketRelay>(std::move(listener));
    socket->Advise(relay);
    return relay;
}

// A string, or bytes.
void SendData(T& socket, const Data& data) {
    if (const auto* bytes = std::get_if<ByteArray>(&data)) return socket.SendBytes(*bytes);
    socket.SendData(std::get<String>(data));
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
        Class<T>("cSocketSSL")
            .Creatable()
            .Raises(SocketEventList(), &ListenToSocket)
            .Property("State", &T::State, &T::State)
            .Property("SocketHandle", &T::SocketHandle, &T::SocketHandle)
            .Property("LocalPort", &T::LocalPort, &T::LocalPort)
            .Property("RemoteHost", &T::RemoteHost, &T::RemoteHost)
            .Property("RemotePort", &T::RemotePort, &T::RemotePort)
            .Property("LineSeparator", &T::LineSeparator, &T::LineSeparator)
            .Property("SSLEnable", &T::SSLEnable, &T::SSLEnable)
            .Property("SSLCipher", &T::SSLCipher, &T::SSLCipher)
            .Property("SSLSubject", &T::SSLSubject, &T::SSLSubject)
            .Property("SSLIssuer", &T::SSLIssuer, &T::SSLIssuer)
            .Get("SSLFingerprint", &T::SSLFingerprint)
            .Property("SSLPin", &T::SSLPin, &T::SSLPin)
            .Property("SSLServerCertificate", &T::SSLServerCertificate, &T::SSLServerCertificate)
            .Property("SSLServerKey", &T::SSLServerKey, &T::SSLServerKey)
            .Property("SSLTrusted", &T::SSLTrusted, &T::SSLTrusted)
            .Property("SSLCAFile", &T::SSLCAFile, &T::SSLCAFile)
            .Property("TimeOut", &T::TimeOut, &T::TimeOut)
            .Get("WindowProcOld", &HandleOf<&T::WindowProcOld>)
            .Put("WindowProcOld", &SetHandle<&T::WindowProcOld>)
            .Property("SSLHandle", &T::SSLHandle, &T::SSLHandle)
            .Get("WindowHandle", &HandleOf<&T::WindowHandle>)
            .Put("WindowHandle", &SetHandle<&T::WindowHandle>)
            .Method("Connect", &T::Connect)
            .Method("Listen", &T::Listen)
            .Method("LocalIP", &T::LocalIP)
            .Method("SendData", &SendData)
            .Method("Disconnect", &T::Disconnect)
            .Method("Accept", &T::Accept)
            .Method("SendFile", &T::SendFile)
            .Method("MyIP", &T::MyIP)
            .Method("MyName", &T::MyName);
    return table;
}

}  // namespace quorix::scripting
