#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "tests/real/Kinds.h"
#include "tests/real/Loopback.h"

namespace quorix::real {
namespace {

constexpr const char* kPackaged = "/etc/jabberd2/";
constexpr std::chrono::milliseconds kWordTravels{50};
constexpr const char* kTables = "/usr/share/doc/jabberd2/db-setup.sqlite.gz";

// "" when there is no such file.
std::string Contents(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

// A packaged file, changed where this server differs from it.
class Settings {
public:
    explicit Settings(const std::string& name) : name_(name), text_(Contents(kPackaged + name)) {}

    // A packaged file that no longer has the text would leave the server on the machine's own files and
    // ports.
    Settings& Replace(const std::string& old, const std::string& now) {
        auto at = text_.find(old);
        if (at == std::string::npos) throw std::runtime_error(name_ + " has no " + old);
        for (; at != std::string::npos; at = text_.find(old, at + now.size()))
            text_.replace(at, old.size(), now);
        return *this;
    }

    const std::string& Text() const { return text_; }

private:
    std::string name_;
    std::string text_;
};

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
        Write("router.xml", Own("router")
                                .Replace("<ip>0.0.0.0</ip>", "<ip>127.0.0.1</ip>")
                                .Replace("/etc/jabberd2/router-users.xml", File("router-users.xml"))
                                .Text());
        Write("router-users.xml", Contents(std::string(kPackaged) + "router-users.xml"));
        Write("router-filter.xml", "<rules/>");
        Write("sm.xml", Own("sm")
                            .Replace("localhost.localdomain", "localhost")
                            .Replace("/var/lib/jabberd2/sqlite.db", File("accounts.db"))
                            .Text());
        Write("c2s.xml", Own("c2s")
                             .Replace("localhost.localdomain", "localhost")
                             .Replace("/var/lib/jabberd2/sqlite.db", File("accounts.db"))
                             .Replace("<ip>0.0.0.0</ip>", "<ip>127.0.0.1</ip>")
                             .Replace("<port>5222</port>", PortElement(Port()))
                             .Replace("<stanzasize>65535</stanzasize>", "<stanzasize>0</stanzasize>")
                             .Text());
        const std::string tables =
            "zcat " + std::string(kTables) + " | sqlite3 '" + File("accounts.db") + "' >/dev/null";
        if (std::system(tables.c_str()) != 0) throw std::runtime_error("Failed: " + tables);
    }

    // What every program of the server is told alike.
    Settings Own(const std::string& program) const {
        return Settings(program + ".xml")
            .Replace("/var/run/jabberd2/" + program + ".pid", File(program + ".pid"))
            .Replace("/var/log/jabberd2/" + program + ".log", File(program + ".log"))
            .Replace("<port>5347</port>", PortElement(router_port_));
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

std::unique_ptr<RealServer> MakeJabberd2() { return std::make_unique<Jabberd2>(); }

}  // namespace quorix::real
