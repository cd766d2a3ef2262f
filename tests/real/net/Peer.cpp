#include "tests/real/net/Peer.h"

#include <chrono>
#include <stdexcept>
#include <thread>

#include "tests/real/Loopback.h"

namespace quorix::real {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;

ProcessSetup Setup(const testkit::TemporaryFolder& folder, std::vector<std::string> command) {
    ProcessSetup setup;
    setup.command = std::move(command);
    setup.folder = folder.Path().string();
    setup.log = (folder.Path() / "peer.log").string();
    return setup;
}

}  // namespace

Peer::Peer(const testkit::TemporaryFolder& folder, int port, std::vector<std::string> command)
    : port_(port), process_(Setup(folder, std::move(command))) {
    auto end = std::chrono::steady_clock::now() + kPatience;
    while (!Accepts(port_)) {
        if (!process_.Running() || std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("A peer does not serve its port:\n" + folder.Read("peer.log"));
        }
        std::this_thread::sleep_for(10ms);
    }
}

}  // namespace quorix::real
