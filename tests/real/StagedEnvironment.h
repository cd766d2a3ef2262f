// The system's own sockets and loop, with the reads, the names and the clock in the hands of the test. What
// is made under it ends before it does.
#pragma once

#include <algorithm>
#include <map>
#include <memory>

#include "quorix/platform/posix/PosixEnvironment.h"

namespace quorix::real {

class StagedEnvironment : public PosixEnvironment {
public:
    std::size_t readLimit = SIZE_MAX;  // bytes that one read brings at most
    std::int32_t haste = 1;            // how many times faster time goes by, for timers set from now on
    // What look-ups find; a name that is not here is looked up by the system, a service is that of any
    // domain.
    std::map<std::string, std::vector<Address>> addresses;
    std::vector<ServiceTarget> service;

    Transfer Receive(SocketId socket, char* buffer, std::size_t capacity) override {
        return PosixEnvironment::Receive(socket, buffer, std::min(capacity, readLimit));
    }
    TimerId SetTimer(std::int32_t milliseconds, TimerTick tick) override {
        return PosixEnvironment::SetTimer(milliseconds / haste, std::move(tick));
    }
    std::int64_t Milliseconds() override { return PosixEnvironment::Milliseconds() * haste; }

    LookUpId LookUpAddresses(const std::string& host, AddressesFound found) override {
        auto staged = addresses.find(host);
        if (staged == addresses.end()) return PosixEnvironment::LookUpAddresses(host, std::move(found));
        return Later([found, list = staged->second] { found(list); });
    }
    LookUpId LookUpService(const std::string& /*service*/, const std::string& /*domain*/,
                           ServiceFound found) override {
        return Later([found, list = service] { found(list); });
    }
    void CancelLookUp(LookUpId lookUp) override {
        lookUp < 0 ? KillTimer(static_cast<TimerId>(-lookUp)) : PosixEnvironment::CancelLookUp(lookUp);
    }

private:
    // The system's look-ups have numbers above 0.
    LookUpId Later(const std::function<void()>& answer) {
        auto timer = std::make_shared<TimerId>();
        *timer = SetTimer(0, [this, timer, answer] {
            KillTimer(*timer);
            answer();
        });
        return -static_cast<LookUpId>(*timer);
    }

    Use use_{*this};
};

}  // namespace quorix::real
