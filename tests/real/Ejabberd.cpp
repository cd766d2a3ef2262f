#include "tests/real/Loopback.h"
#include "tests/real/RealServer.h"

namespace quorix::real {
namespace {

constexpr const char* kSettings = R"(
hosts: [localhost]
loglevel: warning
auth_method: internal
auth_password_format: plain
acme: {auto: false}
registration_timeout: infinity
acl:
  loopback: {ip: [127.0.0.0/8, "::1"]}
access_rules:
  everybody: {allow: all}
  loopback: {allow: loopback}
shaper_rules:
  max_user_offline_messages: 1000
modules:
  mod_disco: {}
  mod_last: {}
  mod_muc:
    access: everybody
    access_create: everybody
    access_persistent: everybody
  mod_offline: {access_max_user_messages: max_user_offline_messages}
  mod_private: {}
  mod_register:
    access: everybody
    ip_access: loopback
    password_strength: 0
  mod_roster: {versioning: false}
  mod_time: {}
  mod_vcard: {search: true}
  mod_version: {show_os: false}
)";

std::string Listener(const std::string& address, int port, const std::string& more = "") {
    return "  - {port: " + std::to_string(port) + ", ip: \"" + address +
           "\", module: ejabberd_c2s, access: everybody, shaper: none" + more + "}\n";
}

class Ejabberd : public RealServer {
public:
    explicit Ejabberd(const Certificate* certificate) : RealServer("ejabberd", certificate) {}

private:
    void Configure() override {
        std::string settings = kSettings;
        if (HasLogin()) settings += "  mod_legacy_auth: {}\n";
        settings += "listen:\n" + Listener("127.0.0.1", Port());
        if (HasIp6()) settings += Listener("::1", Port());
        if (TlsPort() != 0) {
            settings += Listener("127.0.0.1", TlsPort(), ", tls: true");
            settings += "certfiles: [" + OwnCertificate().chain.string() + ", " +
                        OwnCertificate().key.string() + "]\n";
        }
        Write("ejabberd.yml", settings);
    }

    // A node without a name talks to no other, and leaves no port mapper behind.
    void Launch() override {
        Run({"erl", "-noinput", "-start_epmd", "false", "-mnesia", "dir", "\"" + File("mnesia") + "\"", "-s",
             "ejabberd"},
            {{"ERL_LIBS", QUORIX_ERLANG_LIBRARIES},
             {"EJABBERD_CONFIG_PATH", File("ejabberd.yml")},
             {"EJABBERD_LOG_PATH", File("ejabberd.log")},
             {"ERL_CRASH_DUMP", "/dev/null"}});
    }
};

}  // namespace

std::unique_ptr<RealServer> MakeEjabberd(const Certificate* certificate) {
    return std::make_unique<Ejabberd>(certificate);
}

}  // namespace quorix::real
