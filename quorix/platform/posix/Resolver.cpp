#include "quorix/platform/posix/Resolver.h"

#include <utility>

#include "quorix/platform/posix/SystemAddress.h"

namespace quorix {

namespace {

template <auto Free>
struct Freeing {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

template <class T>
using Object = std::unique_ptr<T, Freeing<g_object_unref>>;

std::vector<Address> TakeAddresses(GList* found) {
    std::vector<Address> addresses;
    for (GList* next = found; next != nullptr; next = next->next) {
        Object<GSocketAddress> address(g_inet_socket_address_new(G_INET_ADDRESS(next->data), 0));
        SystemAddress native;
        if (g_socket_address_to_native(address.get(), &native.storage, sizeof native.storage, nullptr)) {
            addresses.push_back(FromSystem(native.Get()));
        }
    }
    g_resolver_free_addresses(found);
    return addresses;
}

std::vector<ServiceTarget> TakeTargets(GList* found) {
    std::vector<ServiceTarget> targets;
    for (GList* next = found; next != nullptr; next = next->next) {
        auto* target = static_cast<GSrvTarget*>(next->data);
        targets.push_back({g_srv_target_get_hostname(target), g_srv_target_get_port(target)});
    }
    g_resolver_free_targets(found);
    return targets;
}

}  // namespace

struct Resolver::Request {
    Request(Resolver& resolver, LookUpId lookUp) : owner(&resolver), id(lookUp) {}

    // Who asked, unless cancelled.
    Resolver* owner;
    LookUpId id;
    Object<GCancellable> cancellable{g_cancellable_new()};
    Object<GResolver> gio{g_resolver_get_default()};
    AddressesFound addressesFound;
    ServiceFound serviceFound;
};

Resolver::~Resolver() {
    while (!requests_.empty()) Cancel(requests_.begin()->first);
}

Resolver::Request* Resolver::NewRequest() {
    ++last_;
    return requests_[last_] = new Request(*this, last_);
}

LookUpId Resolver::LookUpAddresses(const std::string& host, AddressesFound found) {
    Request* request = NewRequest();
    request->addressesFound = std::move(found);
    g_resolver_lookup_by_name_async(request->gio.get(), host.c_str(), request->cancellable.get(), OnAddresses,
                                    request);
    return request->id;
}

LookUpId Resolver::LookUpService(const std::string& service, const std::string& domain, ServiceFound found) {
    Request* request = NewRequest();
    request->serviceFound = std::move(found);
    g_resolver_lookup_service_async(request->gio.get(), service.c_str(), "tcp", domain.c_str(),
                                    request->cancellable.get(), OnService, request);
    return request->id;
}

void Resolver::Cancel(LookUpId lookUp) {
    auto found = requests_.find(lookUp);
    if (found == requests_.end()) return;
    Request* request = found->second;
    requests_.erase(found);
    request->owner = nullptr;
    g_cancellable_cancel(request->cancellable.get());
}

void Resolver::OnAddresses(GObject*, GAsyncResult* result, gpointer data) {
    std::unique_ptr<Request> request(static_cast<Request*>(data));
    GList* found = g_resolver_lookup_by_name_finish(request->gio.get(), result, nullptr);
    std::vector<Address> addresses = TakeAddresses(found);
    if (request->owner == nullptr) return;
    request->owner->requests_.erase(request->id);
    request->addressesFound(std::move(addresses));
}

void Resolver::OnService(GObject*, GAsyncResult* result, gpointer data) {
    std::unique_ptr<Request> request(static_cast<Request*>(data));
    GList* found = g_resolver_lookup_service_finish(request->gio.get(), result, nullptr);
    std::vector<ServiceTarget> targets = TakeTargets(found);
    if (request->owner == nullptr) return;
    request->owner->requests_.erase(request->id);
    request->serviceFound(std::move(targets));
}

}  // namespace quorix
