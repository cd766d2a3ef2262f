// A session in a GTK program: a window with what others write and a line to answer the last of them.
#include <gtk/gtk.h>

#include "examples/Example.h"

using namespace example;

class Window : public SessionEvents {
public:
    Window(cSession& session, GtkApplication* application)
        : session_(session), window_(gtk_application_window_new(application)) {
        GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
        gtk_box_append(GTK_BOX(box), messages_);
        gtk_box_append(GTK_BOX(box), entry_);
        gtk_window_set_child(GTK_WINDOW(window_), box);
        const auto answer = [](GtkEntry*, gpointer self) { static_cast<Window*>(self)->Answer(); };
        g_signal_connect(entry_, "activate", G_CALLBACK(+answer), this);
        gtk_window_present(GTK_WINDOW(window_));
    }

    void OnAuthorized() override { session_.SendMyPresence(); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        partner_ = message->FromJid();
        Show(Concat({partner_, u": ", message->Body()}));
        if (message->Body() == u"bye") gtk_window_destroy(GTK_WINDOW(window_));
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Show(why); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Show(why); }

private:
    void Show(StringView text) {
        Say({text});
        gtk_label_set_text(GTK_LABEL(messages_), Utf8FromText(text).c_str());
    }
    void Answer() {
        const String text = TextFromUtf8(gtk_editable_get_text(GTK_EDITABLE(entry_)));
        if (session_.Active()) session_.CreateMessage(partner_, MSG_Chat, text, u"")->SendMessage();
        gtk_editable_set_text(GTK_EDITABLE(entry_), "");
    }

    cSession& session_;
    GtkWidget* window_;
    GtkWidget* messages_ = gtk_label_new("");
    GtkWidget* entry_ = gtk_entry_new();
    String partner_;
};

int main(int count, char** values) {
    const auto session = SessionOf(Arguments(count, values, "HOST PORT USER PASSWORD"), u"gtk");
    GtkApplication* application = gtk_application_new("org.example.quorix", G_APPLICATION_NON_UNIQUE);
    const auto start = [](GtkApplication* its, cSession* user) {
        user->Advise(std::make_shared<Window>(*user, its));
        user->Connect();
    };
    g_signal_connect(application, "activate", G_CALLBACK(+start), session.get());
    const int code = g_application_run(G_APPLICATION(application), 0, nullptr);
    session->Disconnect();
    g_object_unref(application);
    return code;
}
