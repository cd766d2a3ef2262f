#include "apps/console/CommandLine.h"

#include <fmt/format.h>
#include <glib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "apps/console/Parameters.h"
#include "apps/console/Password.h"
#include "apps/console/Reference.h"
#include "apps/console/Wrap.h"
#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

constexpr int kHelpColumn = 30;  // where CLI11 begins its explanations

// "USER@SERVER/RESOURCE" fills what is not given by itself. With an address, --server is only where to
// connect.
void ApplyAddress(Options& options) {
    const String jid = TextFromUtf8(options.jid.empty() ? options.account : options.jid);
    const std::size_t at = jid.find(u'@');
    if (at == String::npos) return;
    if (!IsJid(jid)) throw std::runtime_error(Utf8FromText(jid) + " is no address of an account");
    const String bare = RemoveResource(jid);
    options.user = Utf8FromText(bare.substr(0, at));
    if (options.server.empty()) options.server = Utf8FromText(bare.substr(at + 1));
    options.domain = Utf8FromText(bare.substr(at + 1));
    const String resource = GetResource(jid);
    if (options.resource.empty() && !resource.empty()) options.resource = Utf8FromText(resource);
}

// Two consoles of one user do not throw each other out.
std::string OwnResource() { return fmt::format("console-{:04x}", g_random_int_range(0, 0x10000)); }

void Complete(Options& options) {
    ApplyAddress(options);
    if (options.domain.empty()) options.domain = options.server;
    if (options.user.empty() || options.domain.empty()) {
        throw std::runtime_error(options.account.empty()
                                     ? "which account? quorix-console USER@SERVER (--help tells more)"
                                     : "there is no account " + options.account + " in the configuration");
    }
    if (options.resource.empty()) options.resource = OwnResource();
    const std::string account = options.user + "@" + options.domain;
    if (!options.passwordFile.empty()) options.password = PasswordFromFile(options.passwordFile);
    if (options.password.empty()) options.password = AskPassword(account).value_or("");
    if (options.password.empty()) {
        throw std::runtime_error("no password: QUORIX_PASSWORD, --password-file or a terminal to ask on");
    }
}

void UseScript(const Options& options) {
    if (options.script.empty()) return;
    if (std::freopen(options.script.c_str(), "r", stdin) == nullptr) {
        throw std::runtime_error("cannot read " + options.script);
    }
}

void ReadText(Options& options) {
    if (options.task == Options::Task::send && !IsJid(TextFromUtf8(options.recipient))) {
        throw std::runtime_error(options.recipient + " is no address");
    }
    if (options.text != "-") return;
    options.text.assign(std::istreambuf_iterator<char>(std::cin), {});
}

// 0 when it is no terminal.
int ColumnsOf(int descriptor) {
    winsize size{};
    return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void PrintHelp(const std::string& help) {
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        fmt::print("{}\n", Wrap(line, ColumnsOf(STDOUT_FILENO), kHelpColumn));
    }
}

void WarnOfPassword(const CLI::App& app, int argc, char** argv) {
    const auto isPassword = [](std::string_view word) {
        return word == "--password" || word.starts_with("--password=");
    };
    if (std::none_of(argv, argv + argc, isPassword) || isatty(STDERR_FILENO) == 0) return;
    const std::string text =
        app.get_name() + ": a password on the command line can be seen by others on this machine.";
    fmt::print(stderr, "{}\n", Wrap(text, ColumnsOf(STDERR_FILENO), 4));
}

}  // namespace

CommandLineResult ReadCommandLine(int argc, char** argv) {
    Options options;
    CLI::App app{"A Jabber client for the console, for servers that offer the jabber:iq:auth login.",
                 "quorix-console"};
    Declare(app, options);
    app.footer(ExitCodeHelp());
    std::string reference;
    app.add_option("--reference", reference, "prints markdown, bash or zsh")->group("");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        PrintHelp(app.help());
        return {};
    } catch (const CLI::ParseError& error) {
        return {{}, app.exit(error) == 0 ? ExitCode::success : ExitCode::usage};
    }
    if (!reference.empty()) {
        fmt::print("{}", Reference(app, reference));
        return {};
    }
    WarnOfPassword(app, argc, argv);
    ReadText(options);
    Complete(options);
    UseScript(options);
    return {options};
}

}  // namespace quorix::console
