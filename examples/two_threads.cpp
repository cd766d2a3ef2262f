// Two threads, each with a session and a loop of its own. Neither touches the other's session: what one has for the
// other goes through the other's loop, here as a function that GLib calls there.
#include <glib.h>

#include <functional>
#include <future>
#include <thread>

#include "examples/Example.h"

using namespace example;

// Calls `work` in the thread that runs `context`.
void Post(GMainContext* context, std::function<void()> work) {
    auto* passed = new std::function<void()>(std::move(work));
    const auto call = [](gpointer given) -> gboolean {
        (*static_cast<std::function<void()>*>(given))();
        return G_SOURCE_REMOVE;
    };
    g_main_context_invoke_full(context, G_PRIORITY_DEFAULT, call, passed,
                               [](gpointer given) { delete static_cast<std::function<void()>*>(given); });
}

class Speaker : public SessionEvents {
public:
    Speaker(StringView name, std::function<void(const String&)> heard) : name_(name), heard_(std::move(heard)) {}
    void OnMessage(const std::shared_ptr<cMessage>& message) override { heard_(message->Body()); }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({name_, u": ", why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({name_, u": ", why}); }

private:
    const String name_;
    const std::function<void(const String&)> heard_;
};

// The other thread: writes to itself, and hands what it hears to the main thread.
void Work(const std::vector<String>& arguments, GMainContext* main, std::promise<GMainContext*> started) {
    struct Writer : Speaker {
        using Speaker::Speaker;
        void OnAuthorized() override { session->CreateMessage(jid, MSG_Chat, u"from the thread", u"")->SendMessage(); }
        cSession* session = nullptr;
        String jid;
    };
    const auto session = SessionOf(arguments, u"worker");
    const auto writer = std::make_shared<Writer>(u"worker", [main](const String& text) {
        Post(main, [text] { Say({u"the main thread was handed: ", text}), Finish(0); });
    });
    writer->session = session.get();
    writer->jid = session->MyJid() + u"/worker";
    session->Advise(writer);
    session->Connect();
    started.set_value(g_main_context_ref_thread_default());
    Run(30);
    session->Disconnect();
}

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD");
    const auto session = SessionOf(arguments, u"main");
    session->Advise(std::make_shared<Speaker>(u"main", [](const String&) {}));
    session->Connect();
    std::promise<GMainContext*> started;
    std::future<GMainContext*> start = started.get_future();
    std::thread worker(Work, arguments, g_main_context_default(), std::move(started));
    GMainContext* context = start.get();
    const int code = Run(30);
    Post(context, [] { Finish(0); });
    worker.join();
    g_main_context_unref(context);
    return code;
}
