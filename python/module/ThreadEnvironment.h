// The system's environment for a thread of Python's. Others run while it waits, as only the classic mode
// does.
#pragma once

#include "python/module/Reference.h"
#include "quorix/platform/posix/PosixEnvironment.h"

namespace quorix::python {

class ThreadEnvironment : public PosixEnvironment {
public:
    std::int32_t WaitReadable(SocketId socket, std::int32_t milliseconds) override {
        return Unlocked([&] { return PosixEnvironment::WaitReadable(socket, milliseconds); });
    }
    std::int32_t WaitWritable(SocketId socket, std::int32_t milliseconds) override {
        return Unlocked([&] { return PosixEnvironment::WaitWritable(socket, milliseconds); });
    }
    std::optional<std::uint32_t> Resolve(const std::string& host) override {
        return Unlocked([&] { return PosixEnvironment::Resolve(host); });
    }
};

}  // namespace quorix::python
