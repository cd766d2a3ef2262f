// The system's own sockets and loop, with the reads and the clock in the hands of the test. What is made
// under it ends before it does.
#pragma once

#include <algorithm>

#include "quorix/platform/posix/PosixEnvironment.h"

namespace quorix::real {

class StagedEnvironment : public PosixEnvironment {
public:
    std::size_t readLimit = SIZE_MAX;  // bytes that one read brings at most
    std::int32_t haste = 1;            // how many times faster time goes by, for timers set from now on

    Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) override {
        return PosixEnvironment::Receive(socket, buffer, std::min(capacity, readLimit));
    }
    TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) override {
        return PosixEnvironment::SetTimer(milliseconds / haste, std::move(tick));
    }
    std::int64_t Milliseconds() override { return PosixEnvironment::Milliseconds() * haste; }

private:
    Use use_{*this};
};

}  // namespace quorix::real
