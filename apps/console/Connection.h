// The line to the server: opens it, judges the certificate, tells why it ended, and what comes next.
#pragma once

#include "apps/console/Desk.h"
#include "apps/console/ExitCode.h"
#include "apps/console/Options.h"
#include "apps/console/Trust.h"

namespace quorix::console {

class Connection : public Desk {
public:
    Connection(Console& console, const Options& options);

    void Open();
    // Creates an account on the same server, and goes on with it.
    void OpenNew(StringView user, StringView password);

    bool IsOnline() const { return online_; }
    // "online", "connecting" and so on, with the verdict on the certificate.
    std::string State() const;

    void OnAuthorized() override;
    void OnNewUserCreated() override;
    void OnDisConnected() override;
    void OnError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                 StringView ErrorDescription) override;
    void OnSocketError(const NodePtr& XMLElement, StringView Description, std::int16_t Code) override;
    void OnIQError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                   StringView ErrorDescription) override;
    void OnIncomingXML(StringView XML) override;
    void OnOutgoingXML(StringView XML) override;

private:
    void Apply();
    void ApplyHost();
    void ApplyProxy();
    void StartDeadline();
    void StopDeadline();
    void End(ExitCode code, const String& what, StringView reason);
    void GiveUp(StringView reason);
    void Distrust();
    void OpenSoon(bool remembered);

    Options options_;
    Trust trust_;
    String reason_;  // why the connection ends, as far as is known
    unsigned deadline_ = 0;
    bool online_ = false;
    bool wasOnline_ = false;
    bool isEndExpected_ = false;   // it is the console's own doing
    bool accountCreated_ = false;  // the connection ends now, and the login follows
    bool isRefused_ = false;
    bool isSilence_ = false;
    bool newUser_ = false;
};

}  // namespace quorix::console
