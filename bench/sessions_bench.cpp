// Many sessions on one thread, over loopback: what a message, and a Disconnect, costs among idle ones; and
// what timers and sends suffer while a server floods one of them. Times are the processor time of the
// sessions' thread alone.
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <utility>
#include <vector>

#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/Timer.h"
#include "quorix/session/cSession.h"

namespace quorix {
namespace {

constexpr std::size_t kMessagesABlock = 500;
constexpr std::size_t kFloodBlocks = 5000;  // 500 MB
constexpr std::int32_t kBeat = 100;         // milliseconds

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// 203 bytes: the blocks of 2000 in which a socket reads begin anywhere in it, as with real stanzas.
std::string Message() {
    std::string message =
        "<message type='chat' to='juliet@example.org/balcony' from='romeo@example.net/orchard'>"
        "<subject>s</subject><body></body></message>";
    message.insert(message.find("</body>"), std::string(203 - message.size(), 'x'));
    return message;
}

// The server is a process of its own, since both ends of so many connections are too many descriptors for
// one. It does what it is told by single letters, and ends with its master.
class Server {
public:
    Server() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        listen(listener_, 4096);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = static_cast<std::int16_t>(ntohs(address.sin_port));
        std::array<int, 2> line{};
        socketpair(AF_UNIX, SOCK_STREAM, 0, line.data());
        child_ = fork();
        line_ = line[child_ == 0 ? 1 : 0];
        close(line[child_ == 0 ? 0 : 1]);
        if (child_ == 0) Obey();
    }
    ~Server() {
        close(line_);
        close(listener_);
        waitpid(child_, nullptr, 0);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::int16_t Port() const { return port_; }

    void TakeNext() { Tell('a'); }
    void TakeFirstAnew() { Tell('r'); }
    void Flood() { Tell('f'); }
    void LoseAllAndTakeThemAgain() { Tell('x'); }
    void SendToTheLast() {
        Tell('m');
        char sent = 0;
        recv(line_, &sent, 1, 0);
    }

    // Seconds from the flood's beginning until something was heard.
    double HeardAfter() {
        double seconds = -1;
        recv(line_, &seconds, sizeof seconds, 0);
        return seconds;
    }

private:
    void Tell(char what) { send(line_, &what, 1, MSG_NOSIGNAL); }

    [[noreturn]] void Obey() {
        char what = 0;
        while (recv(line_, &what, 1, 0) == 1) {
            if (what == 'a') ends_.push_back(Serve());
            if (what == 'r') close(std::exchange(ends_.front(), Serve()));
            if (what == 'f') SendFlood();
            if (what == 'x') {
                for (int end : ends_) close(end);
                for (int& end : ends_) end = Serve();
            }
            if (what != 'm') continue;
            std::string message = Message();
            send(ends_.back(), message.data(), message.size(), MSG_NOSIGNAL);
            Tell('!');
        }
        _exit(0);
    }

    // Takes a connection through its login, and returns it.
    int Serve() const {
        int visitor = accept(listener_, nullptr, nullptr);
        std::array<char, 4000> heard;
        for (std::string_view answer : {"<stream:stream id='1'>", "<iq type='result' id='kv_login'/>"}) {
            if (recv(visitor, heard.data(), heard.size(), 0) <= 0) break;
            send(visitor, answer.data(), answer.size(), MSG_NOSIGNAL);
        }
        return visitor;
    }

    void SendFlood() const {
        auto start = std::chrono::steady_clock::now();
        double seconds = -1;
        std::string block;
        for (std::size_t i = 0; i < kMessagesABlock; ++i) block += Message();
        for (std::size_t i = 0; i < kFloodBlocks; ++i) {
            send(ends_[0], block.data(), block.size(), MSG_NOSIGNAL);
            char heard = 0;
            if (seconds >= 0 || recv(ends_[0], &heard, 1, MSG_DONTWAIT) <= 0) continue;
            seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        }
        send(line_, &seconds, sizeof seconds, MSG_NOSIGNAL);
    }

    int listener_ = socket(AF_INET, SOCK_STREAM, 0);
    std::int16_t port_ = 0;
    int line_ = -1;
    pid_t child_ = 0;
    std::vector<int> ends_;
};

class Counter : public SessionEvents {
public:
    void OnAuthorized() override {
        if (++logins >= awaitedLogins) MessageLoop::Quit();
    }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        characters += message->Body().size();
        if (++messages == awaited) MessageLoop::Quit();
    }
    std::size_t characters = 0;
    std::size_t messages = 0;
    std::size_t logins = 0;
    std::size_t awaitedLogins = 0;
    std::size_t awaited = 0;
};

// Sessions that are logged in.
struct Crowd {
    explicit Crowd(std::size_t size, eMode theMode = KV_Classic) : mode(theMode) {
        while (sessions.size() < size) {
            server.TakeNext();
            sessions.push_back(LogIn());
        }
    }

    std::shared_ptr<cSession> LogIn() {
        auto session = cSession::Create();
        session->Mode(mode);
        session->ReconnectInterval(2);
        session->Advise(counter);
        session->ServerAddress(u"127.0.0.1");
        session->Port(server.Port());
        session->username(u"u");
        session->Resource(u"r");
        session->AuthType(KV_PlainAuth);
        session->Connect();
        MessageLoop::Run();
        return session;
    }

    void Await(std::size_t messages) const {
        counter->awaited = counter->messages + messages;
        MessageLoop::Run();
    }

    eMode mode;
    Server server;
    std::shared_ptr<Counter> counter = std::make_shared<Counter>();
    std::vector<std::shared_ptr<cSession>> sessions;
};

// To one session among `state.range(0)`.
void MessageAmongIdleSessions(benchmark::State& state) {
    Crowd crowd(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        crowd.server.SendToTheLast();
        double start = ThreadSeconds();
        crowd.Await(1);
        state.SetIterationTime(ThreadSeconds() - start);
    }
}

void DisconnectAmongIdleSessions(benchmark::State& state) {
    Crowd crowd(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        double start = ThreadSeconds();
        crowd.sessions.front()->Disconnect();
        state.SetIterationTime(ThreadSeconds() - start);
        crowd.server.TakeFirstAnew();
        crowd.sessions.front()->Connect();
        MessageLoop::Run();
    }
}

// The longest processor time between two beats of a timer, beyond the beat itself, and the time after which
// the server reads what was sent at the first beat.
void TimerDuringAFlood(benchmark::State& state) {
    for (auto _ : state) {
        Crowd crowd(1);
        double last = ThreadSeconds();
        double longest = 0;
        int beats = 0;
        Timer timer;
        timer.Start(kBeat, [&] {
            if (beats++ == 0) crowd.sessions[0]->SendXML(u"<presence/>");
            double now = ThreadSeconds();
            longest = std::max(longest, now - std::exchange(last, now));
        });
        crowd.server.Flood();
        crowd.Await(kFloodBlocks * kMessagesABlock);
        state.counters["late_ms"] = std::max(longest * 1000 - kBeat, 0.0);
        state.counters["heard_after_s"] = crowd.server.HeardAfter();
        state.counters["beats"] = beats;
    }
}

// Every connection is lost at once: until the last session is logged in again, by itself.
void AllComeBack(benchmark::State& state) {
    Crowd crowd(static_cast<std::size_t>(state.range(0)), KV_Modern);
    for (auto _ : state) {
        crowd.counter->awaitedLogins = crowd.counter->logins + crowd.sessions.size();
        crowd.server.LoseAllAndTakeThemAgain();
        MessageLoop::Run();
        auto isActive = [](const auto& session) { return session->Active(); };
        bool all = std::all_of(crowd.sessions.begin(), crowd.sessions.end(), isActive);
        if (!all || crowd.counter->logins != crowd.counter->awaitedLogins)
            state.SkipWithError("lost or twice");
    }
}

BENCHMARK(MessageAmongIdleSessions)->Arg(1)->Arg(100)->Arg(10000)->UseManualTime()->Iterations(20000);
BENCHMARK(DisconnectAmongIdleSessions)->Arg(1)->Arg(100)->Arg(10000)->UseManualTime()->Iterations(500);
BENCHMARK(AllComeBack)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(TimerDuringAFlood)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorix
