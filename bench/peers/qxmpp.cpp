#include <QXmppClient.h>
#include <QXmppConfiguration.h>
#include <QXmppMessage.h>
#include <QXmppPresence.h>
#include <QXmppRosterManager.h>

#include <QCoreApplication>
#include <QTimer>

#include "bench/peers/Tally.h"

namespace {

std::size_t Utf8Size(const QString& text) {
    int size = text.size();
    for (QChar c : text) size += (c.unicode() >= 0x80 ? 1 : 0) + (c.unicode() >= 0x800 ? 1 : 0);
    return static_cast<std::size_t>(size);
}

void Read(QXmppClient& client, peers::Tally& tally) {
    QObject::connect(&client, &QXmppClient::messageReceived, [&](const QXmppMessage& message) {
        const QString body = message.body();
        tally.Message(Utf8Size(message.from()), Utf8Size(body), message.type() == QXmppMessage::Chat);
        if (body == QLatin1String("END")) tally.End();
    });
    QObject::connect(&client, &QXmppClient::presenceReceived, [&](const QXmppPresence& presence) {
        tally.Presence(Utf8Size(presence.from()), presence.availableStatusType() == QXmppPresence::Away);
    });
    auto* roster = client.findExtension<QXmppRosterManager>();
    auto contact = [&tally, roster](const QString& jid) {
        const auto entry = roster->getRosterEntry(jid);
        tally.Contact(!entry.name().isEmpty() && entry.subscriptionType() == QXmppRosterIq::Item::Both);
    };
    QObject::connect(roster, &QXmppRosterManager::itemAdded, contact);
    QObject::connect(roster, &QXmppRosterManager::itemChanged, contact);
}

QXmppConfiguration Configuration(int port) {
    QXmppConfiguration configuration;
    configuration.setJid(QStringLiteral("user@localhost"));
    configuration.setResource(QStringLiteral("bench"));
    configuration.setPassword(QStringLiteral("pass"));
    configuration.setHost(QStringLiteral("127.0.0.1"));
    configuration.setPort(port);
    configuration.setStreamSecurityMode(QXmppConfiguration::TLSDisabled);
    configuration.setUseSASLAuthentication(false);
    configuration.setUseNonSASLAuthentication(true);
    configuration.setAutoReconnectionEnabled(false);
    configuration.setKeepAliveInterval(0);
    return configuration;
}

}  // namespace

int main(int argc, char** argv) {
    const peers::Task task(argc, argv);
    QCoreApplication application(argc, argv);
    QXmppClient client;
    peers::Tally tally;
    Read(client, tally);
    QTimer turn;
    int sent = 0;
    QObject::connect(&turn, &QTimer::timeout, [&] {
        for (int i = 0; i < 64 && sent < task.count; ++i, ++sent) {
            QXmppMessage message(QString(), QString::fromStdString(peers::Addressee(sent)),
                                 QString::fromStdString(peers::Body(sent)));
            message.setType(QXmppMessage::Chat);
            client.sendPacket(message);
        }
        if (sent == task.count) turn.stop();
    });
    QObject::connect(&client, &QXmppClient::connected, [&] {
        tally.Begin();
        if (!task.receives) turn.start(0);
    });
    QObject::connect(&client, &QXmppClient::disconnected, [] { std::exit(1); });
    client.connectToServer(Configuration(task.port));
    return QCoreApplication::exec();
}
