#include "tests/real/Client.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <thread>

#include "quorix/platform/MessageLoop.h"

namespace quorix::real {

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kPause{2};

}  // namespace

Client::Client(const RealServer& server, StringView username, StringView resource) {
    session_->Advise(events_);
    session_->ServerAddress(u"localhost");
    session_->Port(static_cast<std::int16_t>(server.Port()));
    session_->username(username);
    session_->Password(u"secret");
    session_->Resource(resource);
}

Client::~Client() {
    session_->Disconnect();
    MessageLoop::DoEvents();
}

bool Client::CreateAccount() {
    session_->Connect(true);
    return Await([&] { return session_->Active() && events_->Count("OnAuthorized") > 0; });
}

bool Client::LogIn() {
    session_->Connect();
    return Await([&] { return session_->Active(); });
}

// Asks the condition no more once it has held: it may have changed something.
bool Client::Await(const std::function<bool()>& condition) const {
    auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            std::cerr << "Waited in vain. Events so far:\n";
            for (const std::string& line : events_->lines) std::cerr << "  " << line << "\n";
            return false;
        }
        MessageLoop::DoEvents();
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

bool Client::AwaitEvent(const std::string& event, std::size_t count) const {
    return Await([&] { return events_->Count(event) >= count; });
}

bool Client::AwaitLine(const std::string& line) const {
    const Lines& lines = events_->lines;
    return Await([&] { return std::find(lines.begin(), lines.end(), line) != lines.end(); });
}

bool Client::Sent(const std::string& text) const {
    const Lines& sent = events_->outgoing;
    return std::any_of(sent.begin(), sent.end(),
                       [&](const std::string& xml) { return xml.find(text) != std::string::npos; });
}

}  // namespace quorix::real
