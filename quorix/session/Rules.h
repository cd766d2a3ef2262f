// The two modes of a session, and everything that differs between them.
//
// A session holds the rules of its mode and asks them; nothing outside these rules asks for the mode itself.
#pragma once

#include <memory>

#include "quorix/base/Enumerations.h"
#include "quorix/base/TextRules.h"
#include "quorix/link/StanzaError.h"
#include "quorix/session/Line.h"
#include "quorix/session/StreamReader.h"

namespace quorix {

// Rules hold no state of a session; both objects live for ever and serve all threads.
class SessionRules {
public:
    virtual ~SessionRules() = default;

    virtual eMode Mode() const = 0;
    virtual const TextRules& Text() const = 0;

    // How the stream is read; see StreamReader.h.
    virtual std::unique_ptr<StreamReader> NewReader(const std::int32_t& maxStanzaSize) const = 0;

    // How the session comes to its connection and keeps it.
    virtual std::shared_ptr<Line> NewLine(SessionCore& session) const = 0;

    virtual StanzaError ErrorOf(const Stanza& stanza) const = 0;

    // Whether a refused login or account ends the session, with OnError; else OnIQError tells of it.
    virtual bool RefusalEnds() const = 0;

    // Whether an answer that has ended the session still raises OnIQ.
    virtual bool ReportsAfterEnd() const = 0;

    // Whether the password itself may go out, over TLS or not. `isChosen`: the application has asked for that
    // form.
    virtual bool MayTellPassword(bool isSecure, bool isChosen) const = 0;

    // Behind a presence: runs what is pending on the message loop, or nothing. Among thousands of sessions
    // each would run the next one's, one inside the other.
    virtual void LetOthersRun() const = 0;

    // What a sender gets while the session is not connected: nothing, or error 10057.
    virtual void RefuseToSend() const = 0;
};

// Error 6 for a value that is no mode.
const SessionRules& RulesOf(eMode mode);

}  // namespace quorix
