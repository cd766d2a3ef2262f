// TLS over the system's real sockets, with both ends in this process on threads of their own.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mSocketSSL.h"
#include "quorix/platform/MessageLoop.h"
#include "testkit/Certificates.h"

namespace quorix {
namespace {

String Wide(const std::string& text) { return TextFromUtf8(text); }

// Sends back what it receives, over TLS, until its one client leaves.
class EchoServer : public SocketEvents, public std::enable_shared_from_this<EchoServer> {
public:
    // On a thread of its own; returns the port once it listens.
    static std::uint16_t Start(std::thread& thread, const String& certificate, const String& key) {
        std::promise<std::uint16_t> port;
        std::future<std::uint16_t> listening = port.get_future();
        thread = std::thread([&port, certificate, key] {
            const auto server = std::make_shared<EchoServer>();
            server->connection_->SSLEnable(true);
            server->connection_->SSLServerCertificate(certificate);
            server->connection_->SSLServerKey(key);
            server->connection_->Advise(server);
            server->listener_->Advise(server);
            server->listener_->Listen();
            port.set_value(static_cast<std::uint16_t>(server->listener_->LocalPort()));
            MessageLoop::Run();
        });
        return listening.get();
    }

    void OnConnectionRequest() override { connection_->Accept(AcceptConnection(listener_->SocketHandle())); }
    void OnDataArrival(std::string_view bytes, StringView) override { connection_->SendBytes(bytes); }
    void OnClosed() override { MessageLoop::Quit(); }

private:
    std::shared_ptr<cSocketSSL> listener_ = std::make_shared<cSocketSSL>();
    std::shared_ptr<cSocketSSL> connection_ = std::make_shared<cSocketSSL>();
};

class Collector : public SocketEvents {
public:
    void OnConnect() override { connected = true; }
    void OnDataArrival(std::string_view bytes, StringView) override { received += bytes; }
    bool connected = false;
    std::string received;
};

TEST(SecureSocket, CarriesMoreThanFitsIntoAnyBufferBothWays) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "quorix-secure-windows";
    std::filesystem::create_directories(folder);
    const testkit::Identity identity = testkit::SelfSigned({});
    const String certificate = Wide(identity.SaveCertificate(folder));
    std::thread thread;
    const std::uint16_t port = EchoServer::Start(thread, certificate, Wide(identity.SaveKey(folder)));

    const auto events = std::make_shared<Collector>();
    const auto client = std::make_shared<cSocketSSL>();
    client->Advise(events);
    client->SSLEnable(true);
    client->SSLCAFile(certificate);
    client->RemoteHost(u"localhost");
    client->RemotePort(port);
    client->Connect();
    ASSERT_TRUE(events->connected);
    EXPECT_EQ(client->SSLTrusted(), 0);
    EXPECT_EQ(client->SSLSubject(), u"CN=localhost");
    EXPECT_NE(client->SSLCipher(), u"");

    std::string sent;
    for (int i = 0; i < 1000000; ++i) sent += static_cast<char>(i * 7);
    client->SendBytes(sent);
    Environment& environment = Environment::Current();
    const std::int64_t end = environment.Milliseconds() + 20000;
    while (events->received.size() < sent.size() && environment.Milliseconds() < end) {
        MessageLoop::DoEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(events->received.size(), sent.size());
    EXPECT_TRUE(events->received == sent);
    client->Disconnect();
    thread.join();
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace quorix
