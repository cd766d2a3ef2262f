/// \class quorix::MessageLoop
/// The thread's message loop, for an application that has none of its own.
///
/// On Linux this is the thread's default GLib main context, on Windows the thread's message queue: an
/// application that already runs a GLib, GTK or Qt loop, or pumps messages, needs nothing of this.
#pragma once

#include "quorix/base/Export.h"

namespace quorix {

class QUORIX_API MessageLoop {
public:
    /// Delivers events until Quit is called, from inside one of them.
    static void Run();
    static void Quit();

    /// Delivers what is pending and returns.
    static void DoEvents();

    /// For a loop that waits for descriptors (poll, asyncio, libuv, asio): this one of the thread's is
    /// readable when there is something to do, and Dispatch does it. It stays the library's own; it is not to
    /// be read or closed. Once asked for, it stands for everything on the thread's main context. -1 on
    /// Windows, where a loop delivers messages anyway.
    static int Descriptor();
    /// Delivers some of what is pending and returns; the descriptor stays readable while there is more.
    static void Dispatch();
};

}  // namespace quorix
