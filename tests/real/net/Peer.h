// A program that serves a loopback port of its own.
#pragma once

#include <string>
#include <vector>

#include "testkit/TemporaryFolder.h"
#include "tests/real/Process.h"

namespace quorix::real {

class Peer {
public:
    // Returns when the port accepts connections, or std::runtime_error with what the program printed.
    Peer(const testkit::TemporaryFolder& folder, int port, std::vector<std::string> command);

    int Port() const { return port_; }
    void Signal(int number) const { process_.Signal(number); }

private:
    int port_;
    Process process_;
};

}  // namespace quorix::real
