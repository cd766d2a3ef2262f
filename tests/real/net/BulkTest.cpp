// 64 MB in each direction at once, to a peer that reads slowly: nothing is lost, doubled or out of order.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mSocketSSL.h"
#include "quorix/platform/MessageLoop.h"
#include "testkit/Certificates.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

constexpr std::size_t kTotal = 64'000'000;
constexpr std::size_t kLine = 80;  // with its separator
constexpr std::size_t kPause = 65536;

// Lines that number themselves: any loss or change of order shows.
std::string Text() {
    std::string text;
    text.reserve(kTotal);
    for (std::size_t i = 0; text.size() < kTotal; ++i) {
        std::string number = std::to_string(i);
        text += std::string(kLine - 1 - number.size(), '.') + number + '\n';
    }
    return text;
}

// Sends the whole text and expects it back, comparing as it comes.
class Side : public SocketEvents {
public:
    Side(const std::string& text, bool slow) : text_(text), slow_(slow) {}

    void OnSendComplete() override {
        if (!std::exchange(sent_, true)) socket->SendBytes(text_);
    }
    void OnLineDataArrival(StringView line, StringView) override { Take(BytesFromWire(line) + '\n'); }
    void OnConnectionRequest() override { takeConnection(); }
    void OnError(std::int32_t, StringView) override { same = false; }

    bool HasAll() const { return !same || received_ == text_.size(); }

    std::shared_ptr<cSocketSSL> socket = std::make_shared<cSocketSSL>();
    std::function<void()> takeConnection;
    bool same = true;

private:
    void Take(std::string_view bytes) {
        bool own = std::this_thread::get_id() == thread_;  // each loop delivers its own thread's events
        same = same && own && std::string_view(text_).substr(received_, bytes.size()) == bytes;
        received_ += bytes.size();
        if (slow_ && received_ / kPause != (received_ - bytes.size()) / kPause) {
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    }

    const std::string& text_;
    std::thread::id thread_ = std::this_thread::get_id();
    bool slow_;
    bool sent_ = false;
    std::size_t received_ = 0;
};

class Bulk : public ::testing::Test {
protected:
    std::shared_ptr<Side> NewSide(bool slow) {
        auto side = std::make_shared<Side>(text, slow);
        side->socket->Advise(side);
        side->socket->SSLEnable(true);
        side->socket->LineSeparator(u"\n");
        return side;
    }

    // The slow side, with a loop of its own, until both have everything.
    void Serve() {
        auto listener = std::make_shared<Side>(text, false);
        listener->socket->Advise(listener);
        auto server = NewSide(true);
        server->socket->SSLServerCertificate(TextFromUtf8(identity.SaveCertificate(folder.Path())));
        server->socket->SSLServerKey(TextFromUtf8(identity.SaveKey(folder.Path())));
        listener->takeConnection = [&] {
            server->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));
        };
        listener->socket->Listen();
        port = listener->socket->LocalPort();
        EXPECT_TRUE(RunUntil([&] { return server->HasAll() && clientHasAll; }, 120));
        EXPECT_TRUE(server->same);
    }

    testkit::TemporaryFolder folder;
    testkit::Identity identity = testkit::SelfSigned({});
    const std::string text = Text();
    std::atomic<int> port = 0;
    std::atomic<bool> clientHasAll = false;
};

// The most memory that the process held since the last call.
long TakePeakKilobytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    long peak = 0;
    status >> peak;
    std::ofstream("/proc/self/clear_refs") << 5;
    return peak;
}

TEST_F(Bulk, OfLinesInTlsArrivesWholeAndInOrderBothWays) {
    TakePeakKilobytes();
    long before = TakePeakKilobytes();  // what it holds now
    std::thread serving([this] { Serve(); });
    while (port == 0) std::this_thread::yield();
    auto client = NewSide(false);
    client->socket->RemoteHost(u"127.0.0.1");
    client->socket->RemotePort(port);
    client->socket->Connect();
    EXPECT_TRUE(RunUntil([&] { return client->HasAll(); }, 120));
    EXPECT_TRUE(client->same);
    clientHasAll = true;
    serving.join();
#ifndef __SANITIZE_ADDRESS__
    // Both queues hold one text at most; the rest is small change.
    EXPECT_LT(TakePeakKilobytes() - before, static_cast<long>(2 * kTotal / 1024) + 32768);
#else
    (void)before;
#endif
}

}  // namespace
}  // namespace quorix::real
