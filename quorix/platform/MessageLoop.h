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
};

}  // namespace quorix
