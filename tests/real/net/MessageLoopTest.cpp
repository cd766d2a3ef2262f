// The loop of a thread that has none of its own serves whatever hangs on the thread's main context.
#include <glib-unix.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/Timer.h"

namespace quorix {
namespace {

int served = 0;

gboolean Serve(gpointer which) {
    served |= GPOINTER_TO_INT(which);
    if (served == 7) MessageLoop::Quit();
    return G_SOURCE_REMOVE;
}
gboolean ServeDescriptor(gint, GIOCondition, gpointer) { return Serve(GINT_TO_POINTER(2)); }

TEST(MessageLoop, ServesTheSourcesOfOthersThatComeWhileItWaits) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    std::thread other;
    Timer begin;
    begin.Start(10, [&] {
        begin.Stop();
        g_idle_add(Serve, GINT_TO_POINTER(1));
        g_unix_fd_add(ends[0], G_IO_IN, ServeDescriptor, nullptr);
        other = std::thread([&] {
            EXPECT_EQ(write(ends[1], "x", 1), 1);
            g_usleep(50000);
            g_idle_add(Serve, GINT_TO_POINTER(4));
        });
    });
    Timer tooLate;
    tooLate.Start(10000, [] { MessageLoop::Quit(); });
    MessageLoop::Run();
    other.join();
    for (int end : ends) close(end);
    EXPECT_EQ(served, 7);
}

}  // namespace
}  // namespace quorix
