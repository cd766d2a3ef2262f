#include "apps/console/InputWatch.h"

#include <glib-unix.h>
#include <unistd.h>

#include <utility>

namespace quorix::console {

void InputWatch::Resume() {
    constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
    auto ready = [](gint /*fd*/, GIOCondition /*condition*/, gpointer watch) -> gboolean {
        static_cast<InputWatch*>(watch)->onReadable_();
        return G_SOURCE_CONTINUE;
    };
    if (source_ == 0) source_ = g_unix_fd_add(STDIN_FILENO, kReadable, ready, this);
}

void InputWatch::Pause() {
    if (source_ != 0) g_source_remove(std::exchange(source_, 0U));
}

}  // namespace quorix::console
