/// \class quorix::cMessage
/// One message, read and written in place: the object is the stanza.
///
/// cSession::CreateMessage makes one to send; OnMessage hands over those that arrive, over the node that is
/// theirs. Addresses, ids, threads, links and the whole element are wire text in KV_Classic, text in
/// KV_Modern. Values are stored as given; nothing is validated. Writing to a message whose node the
/// application has emptied raises error 91.
///
/// Ownership: a message shares its node; it does not keep its session alive.
/// Threads: one session and all its records belong to the thread that created the session.
#pragma once

#include <cstdint>
#include <memory>

#include "quorix/base/Enumerations.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

class cRosterItem;
class cXML_Node;
class SessionLink;

constexpr std::uint32_t BitOf(eEvent event) { return 1U << static_cast<std::uint32_t>(event); }

class QUORIX_API cMessage {
public:
    /// A new message: the next id, no recipient, no type, from the local user's full address.
    static std::shared_ptr<cMessage> Create(const std::shared_ptr<SessionLink>& session);

    cMessage(const std::shared_ptr<SessionLink>& session, std::shared_ptr<cXML_Node> node);
    ~cMessage();
    cMessage(cMessage&&) noexcept;

    String ID() const;
    void ID(StringView value);
    String ToJID() const;
    void ToJID(StringView value);

    /// Reads as the bare address in lower case, "/", and the resource as sent; the "/" is always there. Split
    /// it with cSession::RemoveResource and GetResource.
    String FromJid() const;
    void FromJid(StringView value);

    /// A missing type reads as MSG_Normal. Writing MSG_UnKnown, or any value outside the list, does nothing.
    eMsgType MSG_Type() const;
    void MSG_Type(eMsgType value);

    /// Text. Writing "" does nothing. In KV_Classic a text with a character of U+8000 or above arrives with
    /// "?" for each character above 255.
    String Body() const;
    void Body(StringView value);
    bool HasBody() const;  ///< Body is not empty
    String Subject() const;
    void Subject(StringView value);

    /// Writing appends a further element; the first one is read.
    String Thread() const;
    void Thread(StringView value);

    /// The whole element.
    String xml() const;

    /// Sends the message, and a copy to each address of AddCC and AddBCC once there is at least one AddCC.
    /// Error 91 without a session.
    void SendMessage() const;

    // -- Events (jabber:x:event, XEP-0022) --

    /// Asks the recipient to report `event`. KV_Cancelled and values outside the list do nothing.
    void AddEvent(eEvent event);
    /// Whether the message asks for `event` or, sent as a report, is about it.
    bool getEvent(eEvent event) const;
    /// All of them at once, as bits.
    std::uint32_t Events() const;

    // -- Formatted text --

    /// The content of an XHTML body (XEP-0071), as markup in text. Reads "" when it holds one of the openings
    /// that FilterCriticalXHTML bars. Markup that is not well-formed is not written; writing again appends a
    /// further body, and the first one is read.
    String XHTML() const;
    void XHTML(StringView value);

    /// Whether XHTML hides markup with <script, <object, <form, <php, <img, <iframe or <applet, in any case
    /// and also when encoded with entities. Names with a prefix pass, attributes and addresses are not looked
    /// at: show the markup of strangers in a viewer that runs nothing. True at first.
    bool FilterCriticalXHTML() const;
    void FilterCriticalXHTML(bool value);

    /// Rich text (jabber:x:rtf). Written as text, read as wire text in KV_Classic. Writing again appends; the
    /// first is read.
    String TextRtf() const;
    void TextRtf(StringView value);

    // -- What else a message can carry --

    /// When it was stored for an absent recipient, as "yyyymmddThh:mm:ss" in UTC (jabber:x:delay, XEP-0091).
    String Stamp() const;
    /// A link and its description (jabber:x:oob, XEP-0066).
    String URL() const;
    String desc() const;

    /// Encloses a contact (jabber:x:roster, XEP-0093), once for each address, ASCII case aside. Error 91 for
    /// null.
    void AddRoster(const std::shared_ptr<cRosterItem>& item);

    /// Names a further recipient (jabber:x:envelope). One that is listed already, ASCII case aside, is not
    /// listed again. The message itself goes out with the whole list, AddBCC's included; see
    /// docs/messaging.md.
    void AddCC(StringView jid);
    void AddBCC(StringView jid);
    bool HasCC() const;

private:
    struct QUORIX_LOCAL Content;

    explicit cMessage(std::unique_ptr<Content> content);

    std::unique_ptr<Content> content_;
};

/// A message with these values, as cSession::CreateMessage returns it. `body` and `subject` are text.
std::shared_ptr<cMessage> CreateMessage(const std::shared_ptr<SessionLink>& session, StringView toJid,
                                        eMsgType type, StringView body, StringView subject);

}  // namespace quorix
