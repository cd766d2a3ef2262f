#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "tests/real/Loopback.h"
#include "tests/real/RealServer.h"

namespace quorix::real {
namespace {

constexpr const char* kPackaged = "/etc/jabberd2/";
constexpr std::chrono::milliseconds kWordTravels{50};
constexpr const char* kTables = "/usr/share/doc/jabberd2/db-setup.sqlite.gz";

using Changes = std::vector<std::pair<std::string, std::string>>;

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

std::string PortElement(int port) { return "<port>" + std::to_string(port) + "</port>"; }

// Three programs: the router, and the session manager and the clients' side, which both speak to it.
class Jabberd2 : public RealServer {
public:
    Jabberd2() : RealServer("jabber", nullptr), router_port_(FreePort()) {}

    // It names a session after the number of its socket. A new connection that has the number of one which is
    // gone would be taken for it, and ended, when the session manager's word of that end arrives.
    void AwaitLogouts() override {
        Await("the end of the sessions", [this] {
            const std::string log = Contents(File("sm.log"));
            return Count(log, "session started") == Count(log, "session ended");
        });
        std::this_thread::sleep_for(kWordTravels);
    }

private:
    void Configure() override {
        const std::pair<std::string, std::string> loopback = {"<ip>0.0.0.0</ip>", "<ip>127.0.0.1</ip>"};
        const Changes accounts = {{"localhost.localdomain", "localhost"},
                                  {"/var/lib/jabberd2/sqlite.db", File("accounts.db")}};
        WriteOwn("router", {loopback, {"/etc/jabberd2/router-users.xml", File("router-users.xml")}});
        Write("router-users.xml", Contents(std::string(kPackaged) + "router-users.xml"));
        Write("router-filter.xml", "<rules/>");
        WriteOwn("sm", accounts);
        WriteOwn("c2s", {accounts[0],
                         accounts[1],
                         loopback,
                         {"<port>5222</port>", PortElement(Port())},
                         {"<stanzasize>65535</stanzasize>", "<stanzasize>0</stanzasize>"}});
        const std::string tables =
            "zcat " + std::string(kTables) + " | sqlite3 '" + File("accounts.db") + "' >/dev/null";
        if (std::system(tables.c_str()) != 0) throw std::runtime_error("Failed: " + tables);
    }

    // A packaged file, changed where this server differs from it. One that no longer has a text would leave
    // the server on the machine's own files and ports.
    void WriteOwn(const std::string& program, Changes changes) const {
        changes.insert(changes.end(), {{"/var/run/jabberd2/" + program + ".pid", File(program + ".pid")},
                                       {"/var/log/jabberd2/" + program + ".log", File(program + ".log")},
                                       {"<port>5347</port>", PortElement(router_port_)}});
        std::string text = Contents(kPackaged + program + ".xml");
        for (const auto& [old, now] : changes) {
            auto at = text.find(old);
            if (at == std::string::npos) throw std::runtime_error(program + ".xml has no " + old);
            for (; at != std::string::npos; at = text.find(old, at + now.size()))
                text.replace(at, old.size(), now);
        }
        Write(program + ".xml", text);
    }

    void Launch() override {
        RunProgram("router");
        Await("the router", [this] { return Accepts(router_port_); });
        RunProgram("sm");
        Await("the session manager",
              [this] { return Contents(File("sm.log")).find("ready for sessions") != std::string::npos; });
        RunProgram("c2s");
    }

    void RunProgram(const std::string& name) {
        Run({"/usr/sbin/jabberd2-" + name, "-c", File(name + ".xml")});
    }

    int router_port_;
};

}  // namespace

std::unique_ptr<RealServer> MakeJabberd2(const Certificate* /*none*/) { return std::make_unique<Jabberd2>(); }

}  // namespace quorix::real
