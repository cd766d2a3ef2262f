// Looks names up on the system's pool of threads. The answers come to a window that nobody sees, and so
// through the message queue of the thread that asked. Everything else belongs to that thread.
#pragma once

#include <memory>
#include <unordered_map>

#include "quorix/platform/Environment.h"

namespace quorix::windows {

class Resolver {
public:
    Resolver() = default;
    ~Resolver();
    Resolver(const Resolver&) = delete;
    Resolver& operator=(const Resolver&) = delete;

    LookUpId LookUpAddresses(const std::string& host, AddressesFound found);
    LookUpId LookUpService(const std::string& service, const std::string& domain, ServiceFound found);
    void Cancel(LookUpId lookUp) { requests_.erase(lookUp); }

    // Hands over the answer of a look-up, unless it was cancelled.
    void Answer(LookUpId lookUp);

private:
    // Shared with the pool's thread, which fills in the answer and touches it no more.
    struct Request;
    struct Task;

    LookUpId Ask(std::shared_ptr<Request> request);
    bool OpenWindow();

    std::unordered_map<LookUpId, std::shared_ptr<Request>> requests_;
    std::intptr_t window_ = 0;
    LookUpId last_ = 0;
};

}  // namespace quorix::windows
