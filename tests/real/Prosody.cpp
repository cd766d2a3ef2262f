#include "tests/real/RealServer.h"

namespace quorix::real {
namespace {

constexpr const char* kSettings = R"(
modules_enabled = {
    "disco", "lastactivity", "offline", "ping", "presence", "private", "register_ibr", "roster",
    "time", "user_account_management", "vcard", "version"
}
modules_disabled = { "s2s", "tls" }
authentication = "internal_plain"
storage = "internal"
allow_registration = true
allow_unencrypted_plain_auth = true
c2s_require_encryption = false
c2s_stanza_size_limit = 10000000
c2s_unauthed_stanza_size_limit = 10000000
interfaces = { "127.0.0.1", "::1" }
)";

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

class Prosody : public RealServer {
public:
    explicit Prosody(const Certificate* certificate) : RealServer("prosody", certificate) {}

private:
    void Configure() override { Write("prosody.cfg.lua", Global() + kSettings + Host()); }

    std::string Host() const {
        return std::string("VirtualHost \"localhost\"\n") +
               (HasLogin() ? "modules_enabled = { \"legacyauth\" }\n" : "") +
               "Component \"conference.localhost\" \"muc\"\n";
    }

    std::string Global() const {
        std::string settings = "data_path = " + Quoted(File("data")) +
                               "\npidfile = " + Quoted(File("prosody.pid")) +
                               "\nlog = { info = " + Quoted(File("prosody.log")) + " }" + "\nc2s_ports = { " +
                               std::to_string(Port()) + " }";
        if (TlsPort() == 0) return settings;
        return settings + "\nc2s_direct_tls_ports = { " + std::to_string(TlsPort()) + " }" +
               "\nssl = { certificate = " + Quoted(OwnCertificate().chain) +
               ", key = " + Quoted(OwnCertificate().key) + " }";
    }

    void Launch() override { Run({"prosody", "-F", "--config", File("prosody.cfg.lua")}); }
};

}  // namespace

std::unique_ptr<RealServer> MakeProsody(const Certificate* certificate) {
    return std::make_unique<Prosody>(certificate);
}

}  // namespace quorix::real
