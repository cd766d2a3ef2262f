// Looks names up through GIO, which asks the system on threads of its own and answers through the main loop.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <unordered_map>

#include "quorix/platform/Environment.h"

namespace quorix {

class Resolver {
public:
    Resolver() = default;
    ~Resolver();
    Resolver(const Resolver&) = delete;
    Resolver& operator=(const Resolver&) = delete;

    LookUpId LookUpAddresses(const std::string& host, AddressesFound found);
    LookUpId LookUpService(const std::string& service, const std::string& domain, ServiceFound found);
    void Cancel(LookUpId lookUp);

private:
    // Lives until GIO has answered, which it does after a cancellation too.
    struct Request;

    Request* NewRequest();
    static void OnAddresses(GObject* source, GAsyncResult* result, gpointer request);
    static void OnService(GObject* source, GAsyncResult* result, gpointer request);

    std::unordered_map<LookUpId, Request*> requests_;
    LookUpId last_ = 0;
};

}  // namespace quorix
