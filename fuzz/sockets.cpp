// Two ends of connections over the system's own sockets and loop, on loopback. Whatever is done to them, each
// hears what the other has sent, in order, as bytes or cut into lines; and all of it where nobody has hung
// up.
#include <fuzzer/FuzzedDataProvider.h>
#include <poll.h>

#include <cstdlib>

#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/platform/Environment.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/Timer.h"
#include "quorix/platform/posix/SocketError.h"

namespace quorix {
namespace {

void Expect(bool holds) {
    if (!holds) std::abort();
}

struct End : SocketEvents {
    void OnDataArrival(std::string_view bytes, StringView) override {
        if (separator.empty()) heard += bytes;  // otherwise they come again, in their line
    }
    void OnLineDataArrival(StringView line, StringView) override { heard += BytesFromWire(line) + separator; }
    void OnError(std::int32_t number, StringView) override { Expect(number >= 0); }

    void Begin() { sent.clear(), heard.clear(); }

    cSocketSSL socket;
    std::string separator, sent, heard;
};

class Ends : public SocketEvents, public std::enable_shared_from_this<Ends> {
public:
    Ends(const std::uint8_t* data, std::size_t size) : input_(data, size) {}

    void Run() {
        listener_.Advise(weak_from_this());
        listener_.Listen();
        for (const auto& end : {client_, server_}) end->socket.Advise(end);
        if (input_.ConsumeBool()) client_->separator = Text(3);
        client_->socket.LineSeparator(WireFromBytes(client_->separator));
        for (int steps = 0; steps < 50 && input_.remaining_bytes() > 0; ++steps) Step();
        for (int turn = 0; turn < 10000 && ArePair() && !HaveAll(); ++turn) Turn();
        if (!ArePair()) return;
        Expect(HaveAll());
        Expect(server_->sent.starts_with(client_->heard));
    }

    void OnConnectionRequest() override {
        server_->socket.Accept(AcceptConnection(listener_.SocketHandle()));
        server_->Begin();
    }

private:
    static constexpr std::size_t kMuch = 8000000;

    void Step() {
        switch (input_.ConsumeIntegralInRange(0, 11)) {
            case 0: return Connect(input_.ConsumeIntegralInRange(0, 5));
            case 1: return Send(*client_, Text(40));
            case 2: return Send(*server_, Text(40));
            case 3: return SendMuch();
            case 4: return client_->socket.Disconnect();
            case 5: return server_->socket.Disconnect();
            case 6: return Listen();
            case 7: return LookUp();
            case 8: return timer_.Start(1, [this] { input_.ConsumeBool() ? timer_.Stop() : Step(); });
            case 9: return static_cast<void>(SocketErrorFromErrno(input_.ConsumeIntegral<std::uint8_t>()));
            default: return Turn();
        }
    }

    // Of few letters, so that lines end; line mode could not carry NUL.
    std::string Text(std::size_t longest) {
        std::string text = input_.ConsumeRandomLengthString(longest);
        for (char& letter : text) letter = "ab\nx"[static_cast<unsigned char>(letter) % 4];
        return text;
    }

    void Connect(int how) {
        client_->Begin();
        client_->socket.SSLEnable(how == 1);
        server_->socket.SSLEnable(how == 2);
        for (const auto& end : {client_, server_})
            end->socket.TimeOut(how < 3 ? 10 : 5000);  // for no handshake
        client_->socket.RemoteHost(u"127.0.0.1");
        client_->socket.RemotePort(listener_.LocalPort());
        if (how < 3) return client_->socket.Connect();
        const String host = how == 3 ? u"localhost" : how == 4 ? u"::1" : u"127.0.0.1";
        client_->socket.ConnectTo({host, static_cast<std::uint16_t>(listener_.LocalPort())}, host);
    }

    static void Send(End& end, const std::string& bytes) {
        if (end.socket.State() != sockConnected) return;
        end.socket.SendBytes(bytes);
        end.sent += bytes;
    }

    // More than the system takes at once.
    void SendMuch() {
        if (server_->sent.size() < kMuch) Send(*server_, std::string(kMuch, 'y'));
    }

    void Listen() {
        listener_.Disconnect();
        if (input_.ConsumeBool()) listener_.Listen();
    }

    // No name that somebody else would be asked for.
    void LookUp() {
        const std::string host = input_.PickValueInArray({"localhost", "127.0.0.1", "::1", "127.1", ""});
        Environment& environment = Environment::Current();
        const LookUpId lookUp = environment.LookUpAddresses(host, [](const std::vector<Address>& found) {
            for (const Address& address : found) Expect(!AddressText(address).empty());
        });
        if (input_.ConsumeBool()) environment.CancelLookUp(lookUp);
        if (input_.ConsumeBool()) environment.Resolve(host);
    }

    // Not all of them in the same way.
    void Turn() {
        if ((++turns_ % 2) == 0) return MessageLoop::DoEvents();
        pollfd loop = {MessageLoop::Descriptor(), POLLIN, 0};
        if (poll(&loop, 1, timer_.IsRunning() ? 20 : 1) > 0) MessageLoop::Dispatch();
    }

    // The server may still have an earlier connection.
    bool ArePair() const {
        const auto& [client, server] = std::tie(client_->socket, server_->socket);
        return client.State() == sockConnected && server.State() == sockConnected &&
               Environment::Current().LocalAddress(client.SocketHandle()).port ==
                   static_cast<std::uint16_t>(server.RemotePort());
    }

    // A line that has not ended does not count.
    bool HaveAll() const {
        return server_->heard == client_->sent &&
               (client_->heard == server_->sent || !client_->separator.empty());
    }

    FuzzedDataProvider input_;
    cSocketSSL listener_;
    std::shared_ptr<End> client_ = std::make_shared<End>(), server_ = std::make_shared<End>();
    Timer timer_;
    unsigned turns_ = 0;
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::make_shared<quorix::Ends>(data, size)->Run();
    return 0;
}
