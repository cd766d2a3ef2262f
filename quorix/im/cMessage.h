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

#include <memory>
#include <optional>
#include <vector>

#include "quorix/base/Enumerations.h"
#include "quorix/base/String.h"
#include "quorix/im/AddressList.h"
#include "quorix/im/MessageDraft.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/link/SessionLink.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

constexpr std::uint32_t BitOf(eEvent event) { return 1U << static_cast<std::uint32_t>(event); }

class cMessage {
public:
    /// A new message: the next id, no recipient, no type, from the local user's full address.
    static std::shared_ptr<cMessage> Create(const std::shared_ptr<SessionLink>& session);

    cMessage(const std::shared_ptr<SessionLink>& session, NodePtr node);

    String ID() const { return Attribute(kID); }
    void ID(StringView value) { Attribute(kID, value); }
    String ToJID() const { return Attribute(kTo); }
    void ToJID(StringView value) { Attribute(kTo, value); }

    /// Reads as the bare address in lower case, "/", and the resource as sent; the "/" is always there. Split
    /// it with cSession::RemoveResource and GetResource.
    String FromJid() const;
    void FromJid(StringView value) { Attribute(kFrom, value); }

    /// A missing type reads as MSG_Normal. Writing MSG_UnKnown, or any value outside the list, does nothing.
    eMsgType MSG_Type() const;
    void MSG_Type(eMsgType value);

    /// Text. Writing "" does nothing. In KV_Classic a text with a character of U+8000 or above arrives with
    /// "?" for each character above 255.
    String Body() const { return ChildText(kBody); }
    void Body(StringView value) { ChildText(kBody, value); }
    bool HasBody() const;  ///< Body is not empty
    String Subject() const { return ChildText(kSubject); }
    void Subject(StringView value) { ChildText(kSubject, value); }

    /// Writing appends a further element; the first one is read.
    String Thread() const;
    void Thread(StringView value) { Root().AppendElement(u"thread").Text(value); }

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
    bool FilterCriticalXHTML() const { return filterCriticalXHTML_; }
    void FilterCriticalXHTML(bool value) { filterCriticalXHTML_ = value; }

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
    void AddCC(StringView jid) { AddCopy(u"cc", jid); }
    void AddBCC(StringView jid) { AddCopy(u"bcc", jid); }
    bool HasCC() const { return !draft_ && node_->TagExists(u"cc"); }

private:
    struct Recipients {
        std::vector<String> all;      // of both kinds, in the order of the list
        std::vector<String> visible;  // those that every copy names
    };

    // A value by its name in the element, and in a draft.
    struct Field {
        StringView name;
        String MessageDraft::*value;
    };
    static constexpr Field kID{u"id", &MessageDraft::id};
    static constexpr Field kType{u"type", &MessageDraft::type};
    static constexpr Field kTo{u"to", &MessageDraft::to};
    static constexpr Field kFrom{u"from", &MessageDraft::from};
    static constexpr Field kBody{u"body", &MessageDraft::body};
    static constexpr Field kSubject{u"subject", &MessageDraft::subject};

    cMessage(const std::shared_ptr<SessionLink>& session, MessageDraft draft);

    // The node, which is made of the draft when it is asked for.
    const NodePtr& Node() const;
    XmlNode Root() const { return Node()->Root(); }  // to be written to
    template <class Read>
    auto AskRoot(Read read) const {
        return Node()->AskRoot(read);
    }

    String Attribute(const Field& field) const;
    void Attribute(const Field& field, StringView value);
    String ChildText(const Field& field) const;
    void ChildText(const Field& field, StringView value);
    XmlNode Extension(StringView xmlns) const;
    XmlNode AppendExtension(StringView xmlns);
    XmlNode NeedExtension(StringView xmlns);
    XmlNode ListOf(const AddressList& list, StringView xmlns);
    String TagIn(StringView xmlns, StringView tag) const;
    void AddCopy(StringView kind, StringView jid);
    Recipients ListedRecipients() const;
    std::shared_ptr<cMessage> CopyFor(const std::shared_ptr<SessionLink>& session, StringView jid,
                                      const Recipients& recipients) const;

    mutable std::optional<MessageDraft> draft_;  // either this or the node
    mutable NodePtr node_;
    const TextRules& text_;  // those of the session when the message was made
    std::weak_ptr<SessionLink> session_;
    AddressList contacts_;    // that AddRoster lists
    AddressList recipients_;  // that AddCC and AddBCC list
    bool filterCriticalXHTML_ = true;
};

/// A message with these values, as cSession::CreateMessage returns it. `body` and `subject` are text.
std::shared_ptr<cMessage> CreateMessage(const std::shared_ptr<SessionLink>& session, StringView toJid,
                                        eMsgType type, StringView body, StringView subject);

}  // namespace quorix
