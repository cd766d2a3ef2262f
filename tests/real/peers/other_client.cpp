// A client on a library that is not ours: writes down every value that it reads, one a line, and says back
// what it is told.
//
//     quorix_other_client JID PORT
//
// Its input is a line with the password, and one with the status to be in.
#include <strophe.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

struct Client {
    xmpp_ctx_t* context;
    std::string status;
};

void Write(xmpp_stanza_t* stanza) {
    if (xmpp_stanza_is_text(stanza) != 0) std::cout << xmpp_stanza_get_text_ptr(stanza) << "\n";
    std::vector<const char*> attributes(2 *
                                        static_cast<std::size_t>(xmpp_stanza_get_attribute_count(stanza)));
    xmpp_stanza_get_attributes(stanza, attributes.data(), static_cast<int>(attributes.size()));
    for (std::size_t i = 1; i < attributes.size(); i += 2) std::cout << attributes[i] << "\n";
    xmpp_stanza_t* child = xmpp_stanza_get_children(stanza);
    for (; child != nullptr; child = xmpp_stanza_get_next(child)) Write(child);
}

void SayBack(xmpp_conn_t* connection, xmpp_stanza_t* stanza) {
    xmpp_stanza_t* answer = xmpp_stanza_copy(stanza);
    xmpp_stanza_set_to(answer, xmpp_stanza_get_from(stanza));
    xmpp_stanza_del_attribute(answer, "from");
    xmpp_send(connection, answer);
    xmpp_stanza_release(answer);
}

int OnStanza(xmpp_conn_t* connection, xmpp_stanza_t* stanza, void* /*data*/) {
    Write(stanza);
    std::cout << std::flush;
    if (xmpp_stanza_get_child_by_name(stanza, "body") != nullptr) SayBack(connection, stanza);
    return 1;
}

void OnConnection(xmpp_conn_t* connection, xmpp_conn_event_t event, int, xmpp_stream_error_t*, void* data) {
    if (event != XMPP_CONN_CONNECT) std::exit(1);
    auto& client = *static_cast<Client*>(data);
    xmpp_handler_add(connection, OnStanza, nullptr, nullptr, nullptr, data);
    xmpp_send_raw_string(connection, "<iq type='get' id='r'><query xmlns='jabber:iq:roster'/></iq>");
    xmpp_send_raw_string(connection, "<iq type='get' id='v'><vCard xmlns='vcard-temp'/></iq>");
    xmpp_stanza_t* presence = xmpp_presence_new(client.context);
    xmpp_stanza_t* status = xmpp_stanza_new(client.context);
    xmpp_stanza_t* text = xmpp_stanza_new(client.context);
    xmpp_stanza_set_text(text, client.status.c_str());
    xmpp_stanza_set_name(status, "status");
    xmpp_stanza_add_child_ex(status, text, 0);
    xmpp_stanza_add_child_ex(presence, status, 0);
    xmpp_send(connection, presence);
    xmpp_stanza_release(presence);
}

}  // namespace

int main(int /*count*/, char** arguments) {
    xmpp_initialize();
    Client client{xmpp_ctx_new(nullptr, nullptr), {}};
    std::string password;
    std::getline(std::cin, password);
    std::getline(std::cin, client.status);
    xmpp_conn_t* connection = xmpp_conn_new(client.context);
    xmpp_conn_set_flags(connection, XMPP_CONN_FLAG_DISABLE_TLS | XMPP_CONN_FLAG_LEGACY_AUTH);
    xmpp_conn_set_jid(connection, arguments[1]);
    xmpp_conn_set_pass(connection, password.c_str());
    const auto port = static_cast<unsigned short>(std::atoi(arguments[2]));
    xmpp_connect_client(connection, "127.0.0.1", port, OnConnection, &client);
    xmpp_run(client.context);
}
