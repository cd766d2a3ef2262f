/// \class quorix::cPresenceItem
/// What is known of one contact at one place: where, in which mood, and how willing to be reached there.
///
/// Ownership: the session's presence table shares its entries with the application, which may keep and change
/// them; an entry is updated in place, so what is kept changes with the contact.
/// Threads: one session and all its records belong to the thread that created the session.
#pragma once

#include <memory>

#include "quorix/base/Enumerations.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/im/WatchedRecord.h"

namespace quorix {

class cSession;
class SessionLink;

/// The text of the `show` element; "" for KV_None and for any other value.
QUORIX_API StringView ShowText(std::int32_t show);

class QUORIX_API cPresenceItem : public WatchedRecord {
public:
    /// The bare address in lower case, and the resource as sent. Both setters take wire text, both getters
    /// return text. Nothing is validated.
    String JID() const { return jid_; }
    void JID(StringView value);
    String Resource() const { return resource_; }
    void Resource(StringView value);

    /// Text.
    String Status() const { return status_; }
    void Status(StringView value) { status_ = value; }

    /// Kept in 16 bits: error 6 for what does not fit.
    eShowType ShowType() const { return static_cast<eShowType>(showType_); }
    void ShowType(eShowType value);

    /// -32768 to 32767; the greatest one names the contact's primary resource, a negative one never does.
    std::int16_t Priority() const { return priority_; }
    void Priority(std::int16_t value) { Assign(priority_, value); }

    void SetSession(const std::shared_ptr<cSession>& session);
    void SetSession(const std::shared_ptr<SessionLink>& session);

private:
    String jid_;
    String resource_;
    String status_;
    std::int16_t showType_ = KV_None;
    std::int16_t priority_ = 0;
    std::weak_ptr<SessionLink> session_;
};

}  // namespace quorix
