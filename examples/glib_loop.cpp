// A session in a GLib program: it runs in the loop that the program has already. The same holds for whatever runs
// GLib's loop.
#include <glib.h>

#include "examples/Example.h"

using namespace example;

class Printer : public SessionEvents {
public:
    Printer(cSession& session, GMainLoop* loop) : session_(session), loop_(loop) {}

    void OnAuthorized() override { session_.SendMyPresence(); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        Say({message->FromJid(), u": ", message->Body()});
        if (message->Body() == u"bye") g_main_loop_quit(loop_);
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    cSession& session_;
    GMainLoop* loop_;
};

int main(int count, char** values) {
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    const auto session = SessionOf(Arguments(count, values, "HOST PORT USER PASSWORD"), u"glib");
    session->Advise(std::make_shared<Printer>(*session, loop));
    session->Connect();
    g_main_loop_run(loop);
    session->Disconnect();
    g_main_loop_unref(loop);
}
