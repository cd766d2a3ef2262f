#include <strophe.h>

#include "bench/peers/Tally.h"

namespace {

struct Client {
    peers::Task task;
    peers::Tally tally{};
    xmpp_ctx_t* context = nullptr;
    bool isUp = false;
};

std::size_t Size(const char* text) { return text != nullptr ? std::strlen(text) : 0; }

int OnMessage(xmpp_conn_t*, xmpp_stanza_t* stanza, void* data) {
    auto& client = *static_cast<Client*>(data);
    const char* type = xmpp_stanza_get_type(stanza);
    char* body = xmpp_message_get_body(stanza);
    bool isChat = type != nullptr && std::strcmp(type, "chat") == 0;
    client.tally.Message(Size(xmpp_stanza_get_from(stanza)), Size(body), isChat);
    if (body != nullptr && std::strcmp(body, "END") == 0) client.tally.End();
    xmpp_free(client.context, body);
    return 1;
}

int OnPresence(xmpp_conn_t*, xmpp_stanza_t* stanza, void* data) {
    auto& client = *static_cast<Client*>(data);
    xmpp_stanza_t* show = xmpp_stanza_get_child_by_name(stanza, "show");
    char* text = show != nullptr ? xmpp_stanza_get_text(show) : nullptr;
    bool isAway = text != nullptr && std::strcmp(text, "away") == 0;
    client.tally.Presence(Size(xmpp_stanza_get_from(stanza)), isAway);
    if (text != nullptr) xmpp_free(client.context, text);
    return 1;
}

int OnRoster(xmpp_conn_t*, xmpp_stanza_t* stanza, void* data) {
    xmpp_stanza_t* query = xmpp_stanza_get_child_by_name(stanza, "query");
    xmpp_stanza_t* item = query != nullptr ? xmpp_stanza_get_child_by_name(query, "item") : nullptr;
    if (item == nullptr) return 1;
    const char* subscription = xmpp_stanza_get_attribute(item, "subscription");
    bool isWhole = Size(xmpp_stanza_get_attribute(item, "jid")) > 0 &&
                   Size(xmpp_stanza_get_attribute(item, "name")) > 0 && subscription != nullptr &&
                   std::strcmp(subscription, "both") == 0;
    static_cast<Client*>(data)->tally.Contact(isWhole);
    return 1;
}

void OnConnection(xmpp_conn_t* connection, xmpp_conn_event_t event, int, xmpp_stream_error_t*, void* data) {
    if (event != XMPP_CONN_CONNECT) std::exit(1);
    auto& client = *static_cast<Client*>(data);
    xmpp_handler_add(connection, OnMessage, nullptr, "message", nullptr, data);
    xmpp_handler_add(connection, OnPresence, nullptr, "presence", nullptr, data);
    xmpp_handler_add(connection, OnRoster, "jabber:iq:roster", "iq", "set", data);
    client.isUp = true;
    client.tally.Begin();
    if (client.task.receives) xmpp_send_raw_string(connection, "<presence/>");
}

void Send(Client& client, xmpp_conn_t* connection) {
    for (int i = 0; i < client.task.count; ++i) {
        xmpp_stanza_t* message =
            xmpp_message_new(client.context, "chat", peers::Addressee(i).c_str(), nullptr);
        xmpp_message_set_body(message, peers::Body(i).c_str());
        xmpp_send(connection, message);
        xmpp_stanza_release(message);
        if (i % 256 != 255) continue;
        while (xmpp_conn_send_queue_len(connection) > 0) xmpp_run_once(client.context, 0);
    }
}

}  // namespace

int main(int argc, char** argv) {
    Client client{peers::Task(argc, argv)};
    xmpp_initialize();
    client.context = xmpp_ctx_new(nullptr, nullptr);
    xmpp_conn_t* connection = xmpp_conn_new(client.context);
    xmpp_conn_set_flags(connection, XMPP_CONN_FLAG_DISABLE_TLS | XMPP_CONN_FLAG_LEGACY_AUTH);
    xmpp_conn_set_jid(connection, "user@localhost/bench");
    xmpp_conn_set_pass(connection, "pass");
    auto port = static_cast<unsigned short>(client.task.port);
    xmpp_connect_client(connection, "127.0.0.1", port, OnConnection, &client);
    while (!client.isUp) xmpp_run_once(client.context, 1);
    if (!client.task.receives) Send(client, connection);
    xmpp_run(client.context);
}
