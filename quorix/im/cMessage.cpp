#include "quorix/im/cMessage.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "quorix/base/AutomationError.h"
#include "quorix/base/Jid.h"
#include "quorix/im/AddressList.h"
#include "quorix/im/MessageDraft.h"
#include "quorix/im/Xhtml.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/link/SessionLink.h"
#include "quorix/xml/AskRoot.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

constexpr StringView kEnvelope = u"jabber:x:envelope";
constexpr std::array<StringView, 4> kTypeNames = {u"normal", u"chat", u"headline", u"groupchat"};
constexpr std::array<StringView, 4> kEventNames = {u"offline", u"composing", u"displayed", u"delivered"};

// "" outside the list.
template <std::size_t N>
StringView NameOf(const std::array<StringView, N>& names, std::int32_t value) {
    bool isListed = value >= 0 && value < static_cast<std::int32_t>(N);
    return isListed ? names[static_cast<std::size_t>(value)] : StringView();
}

XmlNode AppendRecipient(XmlNode list, StringView kind, StringView jid) {
    XmlNode entry = list.AppendElement(kind);
    entry.SetAttribute(u"jid", jid);
    return entry;
}

}  // namespace

struct cMessage::Content {
    Content(const std::shared_ptr<SessionLink>& theSession, MessageDraft theDraft)
        : draft(std::move(theDraft)), session(theSession), text(theSession->Text()) {}
    Content(const std::shared_ptr<SessionLink>& theSession, NodePtr theNode)
        : node(std::move(theNode)),
          session(theSession),
          text(theSession ? theSession->Text() : ClassicText()) {}

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

    // The node, which is made of the draft when it is asked for.
    const NodePtr& Node() const;
    XmlNode Root() const { return Node()->Root(); }  // to be written to
    template <class Read>
    auto Ask(Read read) const {
        return AskRoot(*Node(), read);
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
    // For the recipient `jid`.
    static std::shared_ptr<cMessage> CopyOf(const cMessage& message,
                                            const std::shared_ptr<SessionLink>& session, StringView jid,
                                            const Recipients& recipients);

    bool HasCC() const { return !draft && node->TagExists(u"cc"); }
    String Xml() const { return draft ? draft->Xml(text) : node->xml(); }

    mutable std::optional<MessageDraft> draft;  // either this or the node
    mutable NodePtr node;
    std::weak_ptr<SessionLink> session;
    const TextRules& text;   // those of the session when the message was made
    AddressList rosterList;  // that AddRoster fills
    AddressList copyList;    // that AddCC and AddBCC fill
    bool filterCriticalXHTML = true;
};

std::shared_ptr<cMessage> cMessage::Create(const std::shared_ptr<SessionLink>& session) {
    MessageDraft draft;
    draft.id = session->GetNextID();
    draft.from = Concat({session->MyJid(), u"/", session->Text().ToNode(session->Resource())});
    auto content = std::make_unique<Content>(session, std::move(draft));
    return std::shared_ptr<cMessage>(new cMessage(std::move(content)));
}

cMessage::cMessage(std::unique_ptr<Content> content) : content_(std::move(content)) {}

cMessage::cMessage(const std::shared_ptr<SessionLink>& session, NodePtr node)
    : content_(std::make_unique<Content>(session, std::move(node))) {}

cMessage::~cMessage() = default;
cMessage::cMessage(cMessage&&) noexcept = default;

const NodePtr& cMessage::Content::Node() const {
    if (draft) {
        node = std::make_shared<cXML_Node>();
        node->xml(draft->Xml(text));
        draft.reset();
    }
    return node;
}

String cMessage::Content::Attribute(const Field& field) const {
    if (draft) return WithoutForbidden(*draft.*field.value);
    return Ask([&](const auto& root) { return root.Attribute(field.name); });
}

void cMessage::Content::Attribute(const Field& field, StringView value) {
    if (!draft) return Root().SetAttribute(field.name, value);
    *draft.*field.value = value;
}

String cMessage::Content::ChildText(const Field& field) const {
    if (draft) return text.Read(text.ToNode(*draft.*field.value));
    return text.Read(Ask([&](const auto& root) { return root.Child(field.name).Text(); }));
}

void cMessage::Content::ChildText(const Field& field, StringView value) {
    if (value.empty()) return;
    if (draft) {
        *draft.*field.value = value;
        draft->subjectFirst |= draft->body.empty();
        return;
    }
    XmlNode child = Root().Child(field.name);
    if (!child) child = Root().AppendElement(field.name);
    child.Text(text.ToNode(value));
}

String cMessage::ID() const { return content_->Attribute(Content::kID); }
void cMessage::ID(StringView value) { content_->Attribute(Content::kID, value); }
String cMessage::ToJID() const { return content_->Attribute(Content::kTo); }
void cMessage::ToJID(StringView value) { content_->Attribute(Content::kTo, value); }
void cMessage::FromJid(StringView value) { content_->Attribute(Content::kFrom, value); }
String cMessage::Body() const { return content_->ChildText(Content::kBody); }
void cMessage::Body(StringView value) { content_->ChildText(Content::kBody, value); }
String cMessage::Subject() const { return content_->ChildText(Content::kSubject); }
void cMessage::Subject(StringView value) { content_->ChildText(Content::kSubject, value); }
void cMessage::Thread(StringView value) { content_->Root().AppendElement(u"thread").Text(value); }
bool cMessage::FilterCriticalXHTML() const { return content_->filterCriticalXHTML; }
void cMessage::FilterCriticalXHTML(bool value) { content_->filterCriticalXHTML = value; }
void cMessage::AddCC(StringView jid) { content_->AddCopy(u"cc", jid); }
void cMessage::AddBCC(StringView jid) { content_->AddCopy(u"bcc", jid); }
bool cMessage::HasCC() const { return content_->HasCC(); }
String cMessage::xml() const { return content_->Xml(); }

// Reading never makes nothing of something.
bool cMessage::HasBody() const {
    if (content_->draft) return !Body().empty();
    return content_->Ask([](const auto& root) { return root.Child(Content::kBody.name).HasText(); });
}

String cMessage::FromJid() const {
    String from = content_->Attribute(Content::kFrom);
    std::size_t bare = std::min(from.find(u'/'), from.size());
    FoldToLower(from, bare);
    if (bare == from.size()) from += u'/';
    return from;
}

String cMessage::Thread() const {
    return content_->Ask([](const auto& root) { return root.Child(u"thread").Text(); });
}

eMsgType cMessage::MSG_Type() const {
    String name = content_->Attribute(Content::kType);
    if (name.empty()) return MSG_Normal;
    for (std::int32_t type = MSG_Normal; type < MSG_UnKnown; ++type) {
        if (name == NameOf(kTypeNames, type)) return static_cast<eMsgType>(type);
    }
    return MSG_UnKnown;
}

void cMessage::MSG_Type(eMsgType value) {
    StringView name = NameOf(kTypeNames, value);
    if (!name.empty()) content_->Attribute(Content::kType, name);
}

void cMessage::SendMessage() const {
    std::shared_ptr<SessionLink> session = RequireSession(content_->session);
    if (!content_->HasCC()) return session->SendXML(xml());
    // Before a handler sees the message and may change it.
    const Content::Recipients recipients = content_->ListedRecipients();
    session->SendXML(xml());
    for (const String& jid : recipients.all) {
        session->SendXML(Content::CopyOf(*this, session, jid, recipients)->xml());
    }
}

cMessage::Content::Recipients cMessage::Content::ListedRecipients() const {
    Recipients recipients;
    std::set<String> seen;
    XmlNode list = Extension(kEnvelope);
    for (XmlNode entry = list.FirstElement(); entry; entry = entry.NextElement()) {
        if (!entry.Is(u"cc") && !entry.Is(u"bcc")) continue;
        recipients.all.push_back(entry.Attribute(u"jid"));
        bool isNew = entry.Is(u"cc") && seen.insert(ToLower(recipients.all.back())).second;
        if (isNew) recipients.visible.push_back(recipients.all.back());
    }
    return recipients;
}

std::shared_ptr<cMessage> cMessage::Content::CopyOf(const cMessage& message,
                                                    const std::shared_ptr<SessionLink>& session,
                                                    StringView jid, const Recipients& recipients) {
    std::shared_ptr<cMessage> copy =
        CreateMessage(session, jid, message.MSG_Type(), message.Body(), message.Subject());
    XmlNode list = copy->content_->AppendExtension(kEnvelope);
    for (const String& visible : recipients.visible) {
        XmlNode entry = AppendRecipient(list, u"cc", visible);
        if (visible == message.ToJID()) entry.Text(u"Original Recipient");
    }
    return copy;
}

void cMessage::AddEvent(eEvent event) {
    StringView name = NameOf(kEventNames, event);
    if (!name.empty()) content_->NeedExtension(u"jabber:x:event").AppendElement(name);
}

bool cMessage::getEvent(eEvent event) const {
    return !NameOf(kEventNames, event).empty() && (Events() & BitOf(event)) != 0;
}

std::uint32_t cMessage::Events() const {
    return content_->Ask([](const auto& root) {
        std::uint32_t events = 0;
        auto child = FindExtension(root, u"jabber:x:event").FirstElement();
        for (; child; child = child.NextElement()) {
            for (eEvent event : {KV_Offline, KV_Composing, KV_Displayed, KV_Delivered}) {
                if (child.Is(NameOf(kEventNames, event))) events |= BitOf(event);
            }
        }
        return events;
    });
}

String cMessage::XHTML() const {
    String html = content_->Ask([](const auto& root) { return FindElement(root, u"html", kXhtml).Xml(); });
    String markup = content_->text.Read(BodyMarkup(html));
    return content_->filterCriticalXHTML && HoldsCriticalMarkup(markup) ? String() : markup;
}

void cMessage::XHTML(StringView value) {
    auto body = XmlDocument::Create();
    if (!body->Load(Concat({u"<body>", content_->text.ToNode(value), u"</body>"}))) return;
    XmlNode html = content_->Root().AppendElement(u"html");
    html.SetAttribute(u"xmlns", kXhtml);
    html.AppendChild(body->Root());
}

String cMessage::TextRtf() const { return content_->TagIn(u"jabber:x:rtf", u"richtext"); }

void cMessage::TextRtf(StringView value) {
    content_->AppendExtension(u"jabber:x:rtf").AppendElement(u"richtext").Text(content_->text.ToNode(value));
}

String cMessage::Stamp() const {
    return content_->Ask(
        [](const auto& root) { return FindExtension(root, u"jabber:x:delay").Attribute(u"stamp"); });
}
String cMessage::URL() const { return content_->TagIn(u"jabber:x:oob", u"url"); }
String cMessage::desc() const { return content_->TagIn(u"jabber:x:oob", u"desc"); }

void cMessage::AddRoster(const std::shared_ptr<cRosterItem>& item) {
    if (!item) throw AutomationError(ERR_ObjectNotSet);
    XmlNode list = content_->ListOf(content_->rosterList, u"jabber:x:roster");
    XmlNode entry = content_->rosterList.Append(list, u"item", item->JID());
    if (entry) entry.SetAttribute(u"name", content_->text.ToNode(item->NickName()));
}

void cMessage::Content::AddCopy(StringView kind, StringView jid) {
    copyList.Append(ListOf(copyList, kEnvelope), kind, jid);
}

XmlNode cMessage::Content::Extension(StringView xmlns) const { return FindExtension(Root(), xmlns); }

XmlNode cMessage::Content::AppendExtension(StringView xmlns) {
    XmlNode extension = Root().AppendElement(u"x");
    extension.SetAttribute(u"xmlns", xmlns);
    return extension;
}

// Looking for the element would walk all lists before it.
XmlNode cMessage::Content::ListOf(const AddressList& list, StringView xmlns) {
    XmlNode known = list.List();
    return known && known.Parent() == Root() ? known : NeedExtension(xmlns);
}

XmlNode cMessage::Content::NeedExtension(StringView xmlns) {
    XmlNode extension = Extension(xmlns);
    return extension ? extension : AppendExtension(xmlns);
}

String cMessage::Content::TagIn(StringView xmlns, StringView tag) const {
    return Ask([&](const auto& root) { return FindTagBelow(FindExtension(root, xmlns), tag).Text(); });
}

std::shared_ptr<cMessage> CreateMessage(const std::shared_ptr<SessionLink>& session, StringView toJid,
                                        eMsgType type, StringView body, StringView subject) {
    std::shared_ptr<cMessage> message = cMessage::Create(session);
    message->ToJID(toJid);
    message->MSG_Type(type);
    message->Body(body);
    message->Subject(subject);
    return message;
}

}  // namespace quorix
