#include "quorix/platform/windows/HiddenWindows.h"

#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace quorix::windows {
namespace {

struct Owner {
    HWND window;
    SocketSink* sink;
    bool readAgain = false;    // a notification to read is posted, for bytes that the reader holds
    u_long unreadAtClose = 0;  // bytes that were unread when the end was last put off
};

thread_local std::map<SocketId, Owner> owners;
thread_local std::map<HWND, WNDPROC> previousProcedures;

std::mutex countMutex;
std::int16_t windowCount = 0;

bool Owned(SocketId socket) { return owners.find(socket) != owners.end(); }

// Whether there is more to read before the end. A reader that takes nothing does not put it off for ever.
bool EndHasToWait(SocketId socket) {
    Owner& owner = owners.at(socket);
    if (owner.readAgain) return true;
    u_long unread = 0;
    if (ioctlsocket(static_cast<SOCKET>(socket), FIONREAD, &unread) != 0) return false;
    return unread > 0 && unread != std::exchange(owner.unreadAtClose, unread);
}

void Post(SocketId socket, LPARAM what) {
    PostMessageA(owners.at(socket).window, kSocketMessage, static_cast<WPARAM>(socket), what);
}

// The end of the stream is reported only after its last byte, whatever order the system chose, and a reader
// does not take all of them at once.
void OnNotification(SocketId socket, LPARAM what) {
    std::int32_t event = WSAGETSELECTEVENT(what);
    if (event < SOCK_Read || event > SOCK_Close || !Owned(socket)) return;
    if (event == SOCK_Close && EndHasToWait(socket)) {
        Post(socket, what);
        event = SOCK_Read;
    }
    if (event == SOCK_Read) owners.at(socket).readAgain = false;
    owners.at(socket).sink->OnSocketEvent(socket, event, WSAGETSELECTERROR(what));
}

void OnTimer(HWND window, SocketId socket) {
    ::KillTimer(window, static_cast<UINT_PTR>(socket));
    auto owner = owners.find(socket);
    if (owner != owners.end()) owner->second.sink->OnSocketTimer(socket);
}

// Handles what is ours; false for the rest.
bool Handle(HWND window, UINT message, SocketId socket, LPARAM what) {
    if (message != WM_TIMER && message != kSocketMessage) return false;
    try {
        message == WM_TIMER ? OnTimer(window, socket) : OnNotification(socket, what);
    } catch (...) {
        // The caller is the system, which knows no exceptions.
    }
    return true;
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (wParam == 0) return 0;
    if (Handle(window, message, static_cast<SocketId>(wParam), lParam)) return 0;
    auto previous = previousProcedures.find(window);
    if (previous == previousProcedures.end()) return 0;
    return CallWindowProcA(previous->second, window, message, wParam, lParam);
}

void CountWindow(void (*complain)()) {
    bool started = true;
    {
        std::lock_guard lock(countMutex);
        WSADATA data;
        if (windowCount == 0) started = WSAStartup(0x0101, &data) == 0;
        ++windowCount;
    }
    if (!started) complain();
}

void UncountWindow() {
    std::lock_guard lock(countMutex);
    if (--windowCount == 0) WSACleanup();
}

void DropQueued(HWND window, SocketId socket, UINT message) {
    std::vector<MSG> others;
    MSG queued;
    while (PeekMessageA(&queued, window, message, message, PM_REMOVE)) {
        if (static_cast<SocketId>(queued.wParam) != socket) others.push_back(queued);
    }
    for (const MSG& other : others) PostMessageA(other.hwnd, other.message, other.wParam, other.lParam);
}

}  // namespace

HiddenWindow OpenHiddenWindow(void (*complain)()) {
    CountWindow(complain);
    HWND handle = CreateWindowExA(0, "static", "tst", 0x00CF0000, 5, 1, 200, 100, nullptr, nullptr,
                                  GetModuleHandleA(nullptr), nullptr);
    if (handle == nullptr) return {};
    const LONG_PTR previous =
        SetWindowLongPtrA(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowProcedure));
    previousProcedures[handle] = reinterpret_cast<WNDPROC>(previous);
    return {reinterpret_cast<std::intptr_t>(handle), previous};
}

void CloseHiddenWindow(HiddenWindow& window) {
    HWND handle = reinterpret_cast<HWND>(window.handle);
    if (handle == nullptr) return;
    SetWindowLongPtrA(handle, GWLP_WNDPROC, static_cast<LONG_PTR>(window.previousProcedure));
    previousProcedures.erase(handle);
    DestroyWindow(handle);
    window = {};
    UncountWindow();
}

void OwnSocket(SocketId socket, HWND window, SocketSink& sink) { owners[socket] = {window, &sink}; }

void NotifyReadAgain(SocketId socket) {
    if (!Owned(socket) || std::exchange(owners.at(socket).readAgain, true)) return;
    Post(socket, WSAMAKESELECTREPLY(SOCK_Read, SOCKERR_None));
}

void DisownSocket(SocketId socket) {
    auto owner = owners.find(socket);
    if (owner == owners.end()) return;
    const HWND window = owner->second.window;
    owners.erase(owner);
    ::KillTimer(window, static_cast<UINT_PTR>(socket));
    DropQueued(window, socket, kSocketMessage);
    DropQueued(window, socket, WM_TIMER);
}

}  // namespace quorix::windows
