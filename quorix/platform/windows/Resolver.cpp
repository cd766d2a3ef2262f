#include "quorix/platform/windows/Resolver.h"

#include <winsock2.h>
#include <ws2tcpip.h>
// Behind the sockets.
#include <windns.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/platform/windows/SystemAddress.h"

namespace quorix::windows {
namespace {

constexpr UINT kAnswerMessage = WM_USER + 1;

std::wstring Wide(const std::string& utf8) {
    const String text = TextFromUtf8(utf8);
    return {text.begin(), text.end()};
}

std::vector<Address> AddressesOf(const std::wstring& host) {
    WSADATA data;
    if (WSAStartup(0x0101, &data) != 0) return {};
    addrinfoW hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfoW* found = nullptr;
    std::vector<Address> addresses;
    if (GetAddrInfoW(host.c_str(), nullptr, &hints, &found) == 0) {
        for (const addrinfoW* next = found; next != nullptr; next = next->ai_next) {
            if (next->ai_family == AF_INET || next->ai_family == AF_INET6) {
                addresses.push_back(FromSystem(next->ai_addr));
            }
        }
        FreeAddrInfoW(found);
    }
    WSACleanup();
    return addresses;
}

// By priority, the heavier first among equals. A lone "." says that there is no such service.
std::vector<ServiceTarget> TargetsOf(const std::wstring& name) {
    DNS_RECORDW* found = nullptr;
    if (DnsQuery_W(name.c_str(), DNS_TYPE_SRV, DNS_QUERY_STANDARD, nullptr,
                   reinterpret_cast<PDNS_RECORD*>(&found), nullptr) != 0) {
        return {};
    }
    std::vector<const DNS_SRV_DATAW*> records;
    for (const DNS_RECORDW* next = found; next != nullptr; next = next->pNext) {
        if (next->wType == DNS_TYPE_SRV) records.push_back(&next->Data.SRV);
    }
    std::stable_sort(records.begin(), records.end(), [](const auto* a, const auto* b) {
        return std::tuple(a->wPriority, -int(a->wWeight)) < std::tuple(b->wPriority, -int(b->wWeight));
    });
    std::vector<ServiceTarget> targets;
    for (const DNS_SRV_DATAW* record : records) {
        const auto* target = reinterpret_cast<const char16_t*>(record->pNameTarget);
        if (StringView(target) != u".") targets.push_back({Utf8FromText(target), record->wPort});
    }
    DnsRecordListFree(reinterpret_cast<PDNS_RECORD>(found), DnsFreeRecordList);
    return targets;
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kAnswerMessage) return DefWindowProcA(window, message, wParam, lParam);
    auto* resolver = reinterpret_cast<Resolver*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    try {
        if (resolver != nullptr) resolver->Answer(static_cast<LookUpId>(wParam));
    } catch (...) {
        // The caller is the system, which knows no exceptions.
    }
    return 0;
}

// The library must stay while a thread of the pool runs in it.
HMODULE KeepLibrary() {
    HMODULE library = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const char*>(&WindowProcedure), &library);
    return library;
}

}  // namespace

struct Resolver::Request {
    std::wstring name;
    AddressesFound addressesFound;  // of a host, or else
    ServiceFound serviceFound;      // of a service
    std::vector<Address> addresses;
    std::vector<ServiceTarget> targets;
};

struct Resolver::Task {
    static void CALLBACK Run(PTP_CALLBACK_INSTANCE instance, void* context) {
        const std::unique_ptr<Task> task(static_cast<Task*>(context));
        FreeLibraryWhenCallbackReturns(instance, task->library);
        Request& request = *task->request;
        if (request.addressesFound) {
            request.addresses = AddressesOf(request.name);
        } else {
            request.targets = TargetsOf(request.name);
        }
        PostMessageA(task->window, kAnswerMessage, static_cast<WPARAM>(task->id), 0);
    }

    std::shared_ptr<Request> request;
    HWND window;
    LookUpId id;
    HMODULE library;
};

Resolver::~Resolver() {
    if (window_ == 0) return;
    SetWindowLongPtrA(reinterpret_cast<HWND>(window_), GWLP_USERDATA, 0);
    DestroyWindow(reinterpret_cast<HWND>(window_));
}

bool Resolver::OpenWindow() {
    if (window_ != 0) return true;
    HWND window = CreateWindowExA(0, "static", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  GetModuleHandleA(nullptr), nullptr);
    if (window == nullptr) return false;
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowProcedure));
    window_ = reinterpret_cast<std::intptr_t>(window);
    return true;
}

LookUpId Resolver::LookUpAddresses(const std::string& host, AddressesFound found) {
    auto request = std::make_shared<Request>();
    request->name = Wide(host);
    request->addressesFound = std::move(found);
    return Ask(std::move(request));
}

LookUpId Resolver::LookUpService(const std::string& service, const std::string& domain, ServiceFound found) {
    auto request = std::make_shared<Request>();
    request->name = Wide("_" + service + "._tcp." + domain);
    request->serviceFound = std::move(found);
    return Ask(std::move(request));
}

// Where no thread can be had, the answer is that nothing was found.
LookUpId Resolver::Ask(std::shared_ptr<Request> request) {
    if (!OpenWindow()) return 0;
    requests_[++last_] = request;
    HWND window = reinterpret_cast<HWND>(window_);
    auto* task = new Task{std::move(request), window, last_, KeepLibrary()};
    if (TrySubmitThreadpoolCallback(&Task::Run, task, nullptr) == 0) {
        FreeLibrary(task->library);
        delete task;
        PostMessageA(window, kAnswerMessage, static_cast<WPARAM>(last_), 0);
    }
    return last_;
}

void Resolver::Answer(LookUpId lookUp) {
    auto found = requests_.find(lookUp);
    if (found == requests_.end()) return;
    const std::shared_ptr<Request> request = std::move(found->second);
    requests_.erase(found);
    if (request->addressesFound) {
        request->addressesFound(std::move(request->addresses));
    } else {
        request->serviceFound(std::move(request->targets));
    }
}

}  // namespace quorix::windows
