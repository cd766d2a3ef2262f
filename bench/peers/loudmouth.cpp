#include <loudmouth/loudmouth.h>

#include "bench/peers/Tally.h"

namespace {

struct Client {
    peers::Task task;
    peers::Tally tally{};
    bool isUp = false;
};

std::size_t Size(const char* text) { return text != nullptr ? std::strlen(text) : 0; }

const char* ChildText(LmMessageNode* node, const char* name) {
    LmMessageNode* child = lm_message_node_get_child(node, name);
    return child != nullptr ? lm_message_node_get_value(child) : nullptr;
}

LmHandlerResult OnMessage(LmMessageHandler*, LmConnection*, LmMessage* message, gpointer data) {
    auto& tally = static_cast<Client*>(data)->tally;
    LmMessageNode* root = lm_message_get_node(message);
    const char* body = ChildText(root, "body");
    tally.Message(Size(lm_message_node_get_attribute(root, "from")), Size(body),
                  lm_message_get_sub_type(message) == LM_MESSAGE_SUB_TYPE_CHAT);
    if (body != nullptr && std::strcmp(body, "END") == 0) tally.End();
    return LM_HANDLER_RESULT_REMOVE_MESSAGE;
}

LmHandlerResult OnPresence(LmMessageHandler*, LmConnection*, LmMessage* message, gpointer data) {
    LmMessageNode* root = lm_message_get_node(message);
    const char* show = ChildText(root, "show");
    static_cast<Client*>(data)->tally.Presence(Size(lm_message_node_get_attribute(root, "from")),
                                               show != nullptr && std::strcmp(show, "away") == 0);
    return LM_HANDLER_RESULT_REMOVE_MESSAGE;
}

LmHandlerResult OnIq(LmMessageHandler*, LmConnection*, LmMessage* message, gpointer data) {
    LmMessageNode* query = lm_message_node_get_child(lm_message_get_node(message), "query");
    LmMessageNode* item = query != nullptr ? lm_message_node_get_child(query, "item") : nullptr;
    if (item == nullptr) return LM_HANDLER_RESULT_ALLOW_MORE_HANDLERS;
    const char* subscription = lm_message_node_get_attribute(item, "subscription");
    static_cast<Client*>(data)->tally.Contact(Size(lm_message_node_get_attribute(item, "jid")) > 0 &&
                                              Size(lm_message_node_get_attribute(item, "name")) > 0 &&
                                              subscription != nullptr &&
                                              std::strcmp(subscription, "both") == 0);
    return LM_HANDLER_RESULT_REMOVE_MESSAGE;
}

void OnLogin(LmConnection* connection, gboolean isGood, gpointer data) {
    if (!isGood) std::exit(1);
    auto& client = *static_cast<Client*>(data);
    client.isUp = true;
    client.tally.Begin();
    if (client.task.receives) lm_connection_send_raw(connection, "<presence/>", nullptr);
}

void OnOpen(LmConnection* connection, gboolean isGood, gpointer data) {
    if (!isGood) std::exit(1);
    lm_connection_authenticate(connection, "user", "pass", "bench", OnLogin, data, nullptr, nullptr);
}

void OnEnd(LmConnection*, LmDisconnectReason, gpointer) { std::exit(1); }

void Register(LmConnection* connection, LmHandleMessageFunction handle, LmMessageType type, Client& client) {
    LmMessageHandler* handler = lm_message_handler_new(handle, &client, nullptr);
    lm_connection_register_message_handler(connection, handler, type, LM_HANDLER_PRIORITY_NORMAL);
    lm_message_handler_unref(handler);
}

void Send(Client& client, LmConnection* connection) {
    for (int i = 0; i < client.task.count; ++i) {
        LmMessage* message = lm_message_new_with_sub_type(peers::Addressee(i).c_str(),
                                                          LM_MESSAGE_TYPE_MESSAGE, LM_MESSAGE_SUB_TYPE_CHAT);
        lm_message_node_add_child(lm_message_get_node(message), "body", peers::Body(i).c_str());
        lm_connection_send(connection, message, nullptr);
        lm_message_unref(message);
        if (i % 64 != 63) continue;
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    Client client{peers::Task(argc, argv)};
    LmConnection* connection = lm_connection_new("127.0.0.1");
    lm_connection_set_port(connection, static_cast<guint>(client.task.port));
    lm_connection_set_jid(connection, "user@localhost");
    lm_connection_set_keep_alive_rate(connection, 0);
    lm_connection_set_disconnect_function(connection, OnEnd, nullptr, nullptr);
    Register(connection, OnMessage, LM_MESSAGE_TYPE_MESSAGE, client);
    Register(connection, OnPresence, LM_MESSAGE_TYPE_PRESENCE, client);
    Register(connection, OnIq, LM_MESSAGE_TYPE_IQ, client);
    if (!lm_connection_open(connection, OnOpen, &client, nullptr, nullptr)) return 1;
    while (!client.isUp) g_main_context_iteration(nullptr, TRUE);
    if (!client.task.receives) Send(client, connection);
    while (true) g_main_context_iteration(nullptr, TRUE);
}
