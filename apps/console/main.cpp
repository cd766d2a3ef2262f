// The console client.
#include <CLI/CLI.hpp>

#include "apps/console/Console.h"

int main(int argc, char** argv) {
    quorix::console::Options options;
    CLI::App app{"A Jabber client for the console, for servers that offer the jabber:iq:auth login."};
    app.add_option("--server", options.server, "host name and domain of the server")->required();
    app.add_option("--port", options.port, "port of the server")->capture_default_str();
    app.add_option("--user", options.user, "the name before the @")->required();
    app.add_option("--password", options.password, "the password")->required();
    app.add_option("--resource", options.resource, "names this connection")->capture_default_str();
    app.add_flag("--new", options.newUser, "creates the account first");
    app.add_flag("--xml", options.xml, "shows the traffic, with passwords and digests masked");
    CLI11_PARSE(app, argc, argv);
    return std::make_shared<quorix::console::Console>(options)->Run();
}
