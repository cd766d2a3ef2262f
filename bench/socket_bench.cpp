// 64 MB from one thread to another over loopback, by the socket and by bare calls of OpenSSL. Each thread has
// its own loop; the processor time is that of both sides together. The receiver acknowledges each block with
// a byte, and a few blocks are on their way at a time, so that the socket's queue stays short; or all of
// them, so that it grows as long as it can.
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <functional>
#include <thread>

#include "quorix/base/WireText.h"
#include "quorix/net/cSocketSSL.h"
#include "quorix/net/mSocketSSL.h"
#include "quorix/platform/MessageLoop.h"
#include "testkit/Certificates.h"
#include "testkit/TemporaryFolder.h"

namespace quorix {
namespace {

constexpr std::size_t kTotal = 64'000'000;
constexpr std::size_t kBlock = 1'000'000;
constexpr std::size_t kReadBlock = 2000;
constexpr int kFewBlocks = 4;
constexpr int kAllBlocks = 64;
constexpr std::size_t kLine = 100;

const std::string& Block() {
    static const std::string block = [] {
        std::string made;
        while (made.size() < kBlock) made += std::string(kLine - 1, 'x') + '\n';
        return made;
    }();
    return block;
}

struct CertificateFiles {
    testkit::TemporaryFolder folder;
    testkit::Identity identity = testkit::SelfSigned({});
    std::string certificate = identity.SaveCertificate(folder.Path());
    std::string key = identity.SaveKey(folder.Path());
};

// One side of the transfer: sends or receives everything, and then ends its thread's loop.
class Side : public SocketEvents {
public:
    Side(bool sends, int most) : sends_(sends), most_(most) {}

    void OnSendComplete() override {
        while (sends_ && onTheirWay_ < most_ && left_ > 0) SendBlock();
    }
    void OnDataArrival(std::string_view bytes, StringView) override {
        if (sends_) return Acknowledged(bytes);
        if (socket->LineSeparator().empty()) Take(bytes.size());  // else it comes again, in its line
    }
    void OnLineDataArrival(StringView line, StringView) override { Take(line.size() + 1); }
    void OnClosed() override { MessageLoop::Quit(); }
    void OnConnectionRequest() override { takeConnection(); }

    std::shared_ptr<cSocketSSL> socket = std::make_shared<cSocketSSL>();
    std::function<void()> takeConnection;

private:
    void SendBlock() {
        ++onTheirWay_;
        left_ -= kBlock;
        socket->SendBytes(Block());
    }

    void Acknowledged(std::string_view bytes) {
        onTheirWay_ -= static_cast<int>(bytes.size());
        OnSendComplete();
        if (left_ == 0 && onTheirWay_ == 0) MessageLoop::Quit();
    }

    void Take(std::size_t count) {
        for (received_ += count; received_ >= kBlock; received_ -= kBlock) socket->SendBytes("!");
    }

    bool sends_;
    int most_;  // blocks on their way
    std::size_t left_ = kTotal;
    std::size_t received_ = 0;
    int onTheirWay_ = 0;
};

struct Manner {
    bool secure;
    bool lines;
    bool upload;
    int most = kFewBlocks;
};

void Serve(Manner manner, const CertificateFiles& files, std::atomic<int>& port) {
    auto side = std::make_shared<Side>(!manner.upload, manner.most);
    auto listener = std::make_shared<Side>(false, 0);
    listener->socket->Advise(listener);
    side->socket->Advise(side);
    side->socket->SSLEnable(manner.secure);
    side->socket->SSLServerCertificate(TextFromUtf8(files.certificate));
    side->socket->SSLServerKey(TextFromUtf8(files.key));
    if (manner.lines) side->socket->LineSeparator(u"\n");
    listener->takeConnection = [&] {
        side->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));
    };
    listener->socket->Listen();
    port = listener->socket->LocalPort();
    MessageLoop::Run();
}

void TransferOnce(Manner manner, const CertificateFiles& files) {
    std::atomic<int> port = 0;
    std::thread serving(Serve, manner, std::cref(files), std::ref(port));
    while (port == 0) std::this_thread::yield();
    {
        auto side = std::make_shared<Side>(manner.upload, manner.most);
        side->socket->Advise(side);
        side->socket->SSLEnable(manner.secure);
        if (manner.lines) side->socket->LineSeparator(u"\n");
        side->socket->RemoteHost(u"127.0.0.1");
        side->socket->RemotePort(port);
        side->socket->Connect();
        MessageLoop::Run();
    }
    serving.join();
}

void Socket(benchmark::State& state, Manner manner) {
    CertificateFiles files;
    for (auto _ : state) TransferOnce(manner, files);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kTotal));
}

// -- The same by bare calls --

using Context = std::unique_ptr<SSL_CTX, testkit::Freeing<SSL_CTX_free>>;
using Tls = std::unique_ptr<SSL, testkit::Freeing<SSL_free>>;

void BareSend(SSL* tls) {
    for (std::size_t left = kTotal; left > 0;) {
        std::size_t size = std::min(left, Block().size());
        SSL_write(tls, Block().data(), static_cast<int>(size));
        left -= size;
    }
}

void BareReceive(SSL* tls) {
    std::array<char, kReadBlock> buffer;
    for (std::size_t left = kTotal; left > 0;) {
        int count = SSL_read(tls, buffer.data(), buffer.size());
        if (count <= 0) return;
        left -= static_cast<std::size_t>(count);
    }
}

void BareServer(int listener, const CertificateFiles& files) {
    Context context(SSL_CTX_new(TLS_server_method()));
    SSL_CTX_use_certificate_file(context.get(), files.certificate.c_str(), SSL_FILETYPE_PEM);
    SSL_CTX_use_PrivateKey_file(context.get(), files.key.c_str(), SSL_FILETYPE_PEM);
    Tls tls(SSL_new(context.get()));
    int accepted = accept(listener, nullptr, nullptr);
    SSL_set_fd(tls.get(), accepted);
    SSL_set_read_ahead(tls.get(), 1);
    if (SSL_accept(tls.get()) == 1) BareReceive(tls.get());
    close(accepted);
}

void BareOpenSSL(benchmark::State& state) {
    CertificateFiles files;
    for (auto _ : state) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        int listener = socket(AF_INET, SOCK_STREAM, 0);
        bind(listener, reinterpret_cast<sockaddr*>(&address), size);
        listen(listener, 1);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        std::thread serving(BareServer, listener, std::cref(files));
        int client = socket(AF_INET, SOCK_STREAM, 0);
        connect(client, reinterpret_cast<sockaddr*>(&address), size);
        Context context(SSL_CTX_new(TLS_client_method()));
        Tls tls(SSL_new(context.get()));
        SSL_set_fd(tls.get(), client);
        if (SSL_connect(tls.get()) == 1) BareSend(tls.get());
        serving.join();
        close(client);
        close(listener);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kTotal));
}

BENCHMARK(BareOpenSSL)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, SecureUp, Manner{true, false, true})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, SecureUpAllAtOnce, Manner{true, false, true, kAllBlocks})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, SecureDown, Manner{true, false, false})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, PlainUp, Manner{false, false, true})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, LinesUp, Manner{false, true, true})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Socket, LinesDown, Manner{false, true, false})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorix
