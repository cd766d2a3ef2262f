// A session in a Qt program. Where Qt runs GLib's loop, as it does on the usual systems (QT_NO_GLIB is not set), the
// session needs nothing more.
#include <QCoreApplication>
#include <QString>
#include <QTextStream>

#include "examples/Example.h"

using namespace example;

inline QString ToQt(StringView text) { return QString::fromUtf16(text.data(), static_cast<int>(text.size())); }

class Printer : public SessionEvents {
public:
    explicit Printer(cSession& session) : session_(session) {}

    void OnAuthorized() override { session_.SendMyPresence(); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        QTextStream(stdout) << ToQt(message->FromJid()) << ": " << ToQt(message->Body()) << Qt::endl;
        if (message->Body() == u"bye") QCoreApplication::quit();
    }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    cSession& session_;
};

int main(int count, char** values) {
    const QCoreApplication application(count, values);
    const auto session = SessionOf(Arguments(count, values, "HOST PORT USER PASSWORD"), u"qt");
    session->Advise(std::make_shared<Printer>(*session));
    session->Connect();
    const int code = QCoreApplication::exec();
    session->Disconnect();
    return code;
}
