#include <CLI/CLI.hpp>

#include "apps/console/CommandLine.h"
#include "apps/console/Folders.h"
#include "apps/console/Proxy.h"

namespace quorix::console {

namespace {

// A file with a section for each account: values outside sections hold for all of them, those of the account
// that is meant win.
class AccountConfig : public CLI::ConfigTOML {
public:
    explicit AccountConfig(const CLI::App& app) : app_(app) {}

    std::vector<CLI::ConfigItem> from_config(std::istream& input) const override {
        const std::vector<CLI::ConfigItem> all = CLI::ConfigTOML::from_config(input);
        const std::string account = Account(all);
        std::vector<CLI::ConfigItem> found = In(account, all);
        for (const CLI::ConfigItem& item : In("", all)) {
            auto isSame = [&](const CLI::ConfigItem& known) { return known.name == item.name; };
            const bool isTaken = std::any_of(found.begin(), found.end(), isSame);
            if (!isTaken && item.name != "account") found.push_back(item);
        }
        return found;
    }

private:
    std::string Account(const std::vector<CLI::ConfigItem>& all) const {
        const auto& given = app_.get_option("account")->results();
        if (!given.empty()) return given.front();
        for (const CLI::ConfigItem& item : all) {
            if (item.parents.empty() && item.name == "account" && !item.inputs.empty())
                return item.inputs.front();
        }
        return "";
    }

    static std::vector<CLI::ConfigItem> In(const std::string& section,
                                           const std::vector<CLI::ConfigItem>& all) {
        std::vector<CLI::ConfigItem> found;
        for (CLI::ConfigItem item : all) {
            const bool isMark = item.name == "++" || item.name == "--";  // of a section's beginning and end
            const bool isHere = section.empty() ? item.parents.empty() : item.parents == std::vector{section};
            item.parents.clear();
            if (isHere && !isMark) found.push_back(item);
        }
        return found;
    }

    const CLI::App& app_;
};

std::string CheckProxy(const std::string& text) { return ParseProxy(text) ? "" : "no address of a proxy"; }

void DeclareAccount(CLI::App& app, Options& options) {
    app.add_option("account,-a,--account", options.account,
                   "USER@SERVER[/RESOURCE], or the name of an account in the configuration");
    app.add_option("--jid", options.jid, "the account's address, in the configuration")->group("");
    app.add_option("--user", options.user, "the name before the @, when no ACCOUNT is given");
    app.add_option("--server", options.server,
                   "the server; its host when it is not the account's own domain");
    app.add_option("--port", options.port, "its port; 0 looks it up");
    app.add_option("--resource", options.resource, "names this connection; one of its own when not given");
    app.add_option("--password", options.password, "the password; others on this machine can see it here")
        ->envname("QUORIX_PASSWORD");
    app.add_option("--password-file", options.passwordFile, "a file whose first line is the password");
    app.add_flag("--new", options.newUser, "creates the account first");
}

void DeclareConnection(CLI::App& app, Options& options) {
    app.add_flag("--tls", options.tls, "runs the whole connection over TLS");
    app.add_option("--ca", options.ca, "PEM file of the certificates to trust instead of the system's");
    app.add_option("--pin", options.pin, "SHA-256 fingerprint of the certificate to accept, and of no other");
    app.add_flag("--insecure", options.insecure, "goes on with a server that is not trusted, without asking");
    app.add_flag("--plain", options.plain, "lets the password itself go out, also without TLS");
    app.add_option("--proxy", options.proxy, "socks5://[USER:PASSWORD@]HOST:PORT or http://HOST:PORT")
        ->check(CheckProxy);
    app.add_flag("--remote-dns", options.remoteDns, "lets a SOCKS5 proxy look up the server");
    app.add_option("--timeout", options.timeout, "seconds until the login must have succeeded, 0 for ever")
        ->check(CLI::Range(0, 32767));
    app.add_option("--reconnect", options.reconnect,
                   "seconds until it connects again after a loss, 0 for never")
        ->check(CLI::Range(0, 3600));
    app.add_flag("--classic", options.classic, "behaves as clients did twenty years ago, traps included");
}

void DeclareOutput(CLI::App& app, Options& options) {
    app.add_option("--exec", options.script, "reads the commands from this file")->check(CLI::ExistingFile);
    app.add_flag("--yes", options.yes, "answers yes to every question before a command");
    app.add_flag("--json", options.json, "one event a line, as JSON");
    app.add_flag("--xml", options.xml, "shows the traffic, with secrets masked");
    app.add_flag("--time{always},--no-time{never}", options.times, "a time before each line, or none");
    app.add_option("--color", options.color, "always, never or auto")
        ->check(CLI::IsMember({"always", "never", "auto"}));
    app.add_flag("--bell", options.bell, "rings when a message comes");
}

void DeclareTasks(CLI::App& app, Options& options) {
    CLI::App* send = app.add_subcommand("send", "sends one message and ends");
    send->add_option("jid", options.recipient, "who gets it")->required();
    send->add_option("text", options.text, "what it says; - reads it from standard input")->required();
    send->callback([&options] { options.task = Options::Task::send; });
    CLI::App* listen = app.add_subcommand("listen", "prints what comes, and reads no commands");
    listen->add_option("--count", options.count, "ends after so many messages")->check(CLI::PositiveNumber);
    listen->add_option("--for", options.duration, "ends after so many seconds")
        ->check(CLI::Range(1, 1000000));
    listen->callback([&options] { options.task = Options::Task::listen; });
    for (CLI::App* task : {send, listen}) task->fallthrough();
}

}  // namespace

void Declare(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "quorix-console " QUORIX_VERSION);
    app.set_config("--config", ConfigFile(), "the configuration file");
    app.config_formatter(std::make_shared<AccountConfig>(app));
    DeclareAccount(app, options);
    DeclareConnection(app, options);
    DeclareOutput(app, options);
    DeclareTasks(app, options);
    app.require_subcommand(0, 1);
}

}  // namespace quorix::console
