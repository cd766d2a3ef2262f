// The hidden windows through which Windows delivers what happens to sockets: one for each socket object,
// subclassed, so that notifications and connect timers arrive on the thread that made it.
//
// Everything but the count of windows belongs to the calling thread.
#pragma once

// Winsock 1.1 declares what the older system library exports; its successor's header must not come first.
#include <winsock.h>

#include "quorix/platform/Environment.h"

namespace quorix::windows {

// The message that WSAAsyncSelect posts: wParam is the socket, lParam the event and the error.
inline constexpr UINT kSocketMessage = 2000;

// Starts the sockets with the first window of the process; `complain` is called when that fails.
HiddenWindow OpenHiddenWindow(void (*complain)());

// Gives the window its own procedure back and destroys it. The last one of the process stops the sockets.
void CloseHiddenWindow(HiddenWindow& window);

// Whose notifications and timer ticks of `socket` are; anything about a socket that nobody owns is dropped.
void OwnSocket(SocketId socket, HWND window, SocketSink& sink);

// Posts a notification to read for the socket; the end of its stream waits behind it.
void NotifyReadAgain(SocketId socket);

// Forgets the owner, and what the queue still holds for `socket`: its number may come again at once. Nothing
// may be posted for it any more: the system does so at any moment until the socket is closed or deselected.
void DisownSocket(SocketId socket);

}  // namespace quorix::windows
