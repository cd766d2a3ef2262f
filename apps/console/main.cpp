// The console client.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "apps/console/Console.h"
#include "apps/console/Proxy.h"

int main(int argc, char** argv) try {
    quorix::console::Options options;
    CLI::App app{"A Jabber client for the console, for servers that offer the jabber:iq:auth login."};
    app.add_option("--server", options.server, "host name and domain of the server")->required();
    app.add_option("--port", options.port, "port of the server")->capture_default_str();
    app.add_option("--user", options.user, "the name before the @")->required();
    app.add_option("--password", options.password, "the password")->required();
    app.add_option("--resource", options.resource, "names this connection")->capture_default_str();
    app.add_flag("--tls", options.tls, "runs the whole connection over TLS");
    app.add_option("--ca", options.ca, "PEM file of the certificates to trust")->capture_default_str();
    app.add_flag("--insecure", options.insecure, "goes on with a server that is not trusted, without asking");
    app.add_option("--proxy", options.proxy, "socks5://[USER:PASSWORD@]HOST:PORT or http://HOST:PORT")
        ->check([](const std::string& text) {
            return quorix::console::ParseProxy(text) ? std::string() : std::string("no address of a proxy");
        });
    app.add_flag("--remote-dns", options.remoteDns, "lets a SOCKS5 proxy look up the server");
    app.add_flag("--new", options.newUser, "creates the account first");
    app.add_flag("--xml", options.xml, "shows the traffic, with passwords and digests masked");
    CLI11_PARSE(app, argc, argv);
    return std::make_shared<quorix::console::Console>(options)->Run();
} catch (const std::exception& error) {
    std::fputs(error.what(), stderr);
    return EXIT_FAILURE;
}
