// A real server on loopback, for tests that must hold against more than our own idea of a server.
//
// It serves the domain "localhost", takes registrations in-band, and asks for no encryption. Its data is in a
// temporary folder that ends with the object.
//
// Threads: start and use a server on the main thread; the system stops it when that thread ends.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/real/Process.h"

namespace quorix::real {

// Certificate chain and private key, PEM, for a listener that speaks TLS from the first byte.
struct Certificate {
    std::filesystem::path chain;
    std::filesystem::path key;
};

class RealServer {
public:
    virtual ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    // Returns when the server answers a query; throws std::runtime_error, with what the server wrote,
    // when it ends or 120 s pass before. Nothing happens when it runs already.
    void Start();

    // Ends the server without a word to its clients. Started again, it has the same port, and the same
    // accounts but for ejabberd, which keeps new ones in memory for seconds.
    void Kill();

    // Asks the server to end, so that it may tell its clients; it is killed when it is started again.
    void ShutDown();

    // The server stands still, and its connections with it; the system goes on taking new ones in its name.
    void Freeze() const;
    void Thaw() const;

    // Before the first start: serves without jabber:iq:auth. Not for jabberd2.
    void LeaveOutTheLogin() { hasLogin_ = false; }

    // Returns when the server has forgotten the sessions of clients that are gone.
    virtual void AwaitLogouts() {}

    int Port() const { return port_; }
    int TlsPort() const { return tls_port_; }  // 0 when made without a certificate

protected:
    // `user` is the account that Debian's package made for the server.
    RealServer(std::string user, const Certificate* certificate);

    // Writes what the server reads. Called once.
    virtual void Configure() = 0;
    // Starts the programs of the server.
    virtual void Launch() = 0;

    static std::string Contents(const std::filesystem::path& file);  // "" when there is no such file
    std::string File(const std::string& name) const { return (folder_ / name).string(); }
    void Write(const std::string& name, const std::string& text) const;
    void Run(std::vector<std::string> command, std::map<std::string, std::string> environment = {});
    void Await(const std::string& what, const std::function<bool()>& reached);
    const Certificate& OwnCertificate() const { return certificate_; }
    bool HasLogin() const { return hasLogin_; }

private:
    [[noreturn]] void Fail(const std::string& what) const;
    std::vector<std::filesystem::path> Logs() const;
    void GiveToUser() const;

    std::string user_;
    std::filesystem::path folder_;
    Certificate certificate_;
    int port_;
    int tls_port_;
    bool hasLogin_ = true;
    bool configured_ = false;
    std::vector<std::unique_ptr<Process>> processes_;
    std::vector<std::unique_ptr<Process>> ending_;
};

// Each not started yet. jabberd2 takes no certificate.
std::unique_ptr<RealServer> MakeEjabberd(const Certificate* certificate);
std::unique_ptr<RealServer> MakeProsody(const Certificate* certificate);
std::unique_ptr<RealServer> MakeJabberd2(const Certificate* certificate);

}  // namespace quorix::real
