// A program that serves a loopback port of its own.
#pragma once

#include <stdexcept>

#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/Process.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {

class Peer : public Process {
public:
    // Returns when the port accepts connections, or std::runtime_error with what the program printed.
    Peer(const testkit::TemporaryFolder& folder, int port, std::vector<std::string> command)
        : Process({std::move(command), {}, folder.Path().string(), folder.Path() / "peer.log"}), port_(port) {
        if (!RunUntil([&] { return Accepts(port_) || !Running(); }) || !Running()) {
            throw std::runtime_error("A peer does not serve its port:\n" + folder.Read("peer.log"));
        }
    }

    int Port() const { return port_; }

private:
    int port_;
};

}  // namespace quorix::real
