// What a feature sees of its session: the send path, the identity of the account, the events, and the two
// look-ups that presence needs of the services.
#pragma once

#include <functional>
#include <memory>

#include "quorix/base/Enumerations.h"
#include "quorix/base/String.h"
#include "quorix/base/TextRules.h"
#include "quorix/link/SessionEvents.h"

namespace quorix {

// How the login is to be made, and what the server has offered for it.
struct LoginFacts {
    eAuthType authType = KV_AutoAuth;
    String sessionID;
    bool digest = false;
    std::int32_t sequence = 0;
    String token;
};

struct Stanza;
struct StanzaError;

class SessionLink {
public:
    virtual ~SessionLink() = default;

    // How values become text of the stream, and back.
    virtual const TextRules& Text() const = 0;

    // What an answer of type "error" says went wrong.
    virtual StanzaError ErrorOf(const Stanza& stanza) const = 0;

    virtual void SendXML(StringView xml) = 0;
    // Lets pending events run, where the session's mode has it so.
    virtual void LetOthersRun() = 0;
    virtual bool IsConnected() const = 0;  // the socket is up, logged in or not
    virtual String GetNextID() = 0;

    virtual String ServerAddress() const = 0;
    virtual String username() const = 0;
    virtual String Password() const = 0;
    virtual String Resource() const = 0;
    virtual String MyJid() const = 0;
    virtual LoginFacts Login() const { return {}; }

    virtual eItemType FindItemType(StringView jid) = 0;  // wire text

    // True when `jid` is a known room in which `nickname` is the local user; the room is then forgotten. Both
    // are wire text.
    virtual bool LeaveRoom(StringView jid, StringView nickname) = 0;

    // Calls `raise` for each sink, in the order of their arrival. What a sink throws stops nothing.
    virtual void ForEachSink(const std::function<void(SessionEvents&)>& raise) = 0;

    template <class... Parameters, class... Arguments>
    void Raise(void (SessionEvents::*event)(Parameters...), const Arguments&... arguments) {
        auto raise = [&](SessionEvents& sink) { (sink.*event)(arguments...); };
        ForEachSink(std::ref(raise));
    }
};

class cSession;

// What an application's session is to a feature, null for null. The two live and end together.
std::shared_ptr<SessionLink> LinkOf(const std::shared_ptr<cSession>& session);

// The session behind a record's weak reference. Error 91 when it is gone or was never set.
std::shared_ptr<SessionLink> RequireSession(const std::weak_ptr<SessionLink>& session);

// The rules of the session behind a record's weak reference, ClassicText when it has none.
const TextRules& TextOf(const std::weak_ptr<SessionLink>& session);

}  // namespace quorix
