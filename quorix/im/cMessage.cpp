#include "quorix/im/cMessage.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "quorix/base/Jid.h"
#include "quorix/im/Xhtml.h"
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

std::shared_ptr<cMessage> cMessage::Create(const std::shared_ptr<SessionLink>& session) {
    MessageDraft draft;
    draft.id = session->GetNextID();
    draft.from = Concat({session->MyJid(), u"/", session->Text().ToNode(session->Resource())});
    return std::shared_ptr<cMessage>(new cMessage(session, std::move(draft)));
}

cMessage::cMessage(const std::shared_ptr<SessionLink>& session, MessageDraft draft)
    : draft_(std::move(draft)), text_(session->Text()), session_(session) {}

cMessage::cMessage(const std::shared_ptr<SessionLink>& session, NodePtr node)
    : node_(std::move(node)), text_(session ? session->Text() : ClassicText()), session_(session) {}

const NodePtr& cMessage::Node() const {
    if (draft_) {
        node_ = std::make_shared<cXML_Node>();
        node_->xml(draft_->Xml(text_));
        draft_.reset();
    }
    return node_;
}

String cMessage::Attribute(const Field& field) const {
    if (draft_) return WithoutForbidden(*draft_.*field.value);
    return AskRoot([&](const auto& root) { return root.Attribute(field.name); });
}

void cMessage::Attribute(const Field& field, StringView value) {
    if (!draft_) return Root().SetAttribute(field.name, value);
    *draft_.*field.value = value;
}

String cMessage::ChildText(const Field& field) const {
    if (draft_) return text_.Read(text_.ToNode(*draft_.*field.value));
    return text_.Read(AskRoot([&](const auto& root) { return root.Child(field.name).Text(); }));
}

void cMessage::ChildText(const Field& field, StringView value) {
    if (value.empty()) return;
    if (draft_) {
        *draft_.*field.value = value;
        draft_->subjectFirst |= draft_->body.empty();
        return;
    }
    XmlNode child = Root().Child(field.name);
    if (!child) child = Root().AppendElement(field.name);
    child.Text(text_.ToNode(value));
}

// Reading never makes nothing of something.
bool cMessage::HasBody() const {
    if (draft_) return !Body().empty();
    return AskRoot([](const auto& root) { return root.Child(kBody.name).HasText(); });
}

String cMessage::xml() const { return draft_ ? draft_->Xml(text_) : node_->xml(); }

String cMessage::FromJid() const {
    String from = Attribute(kFrom);
    std::size_t bare = std::min(from.find(u'/'), from.size());
    FoldToLower(from, bare);
    if (bare == from.size()) from += u'/';
    return from;
}

String cMessage::Thread() const {
    return AskRoot([](const auto& root) { return root.Child(u"thread").Text(); });
}

eMsgType cMessage::MSG_Type() const {
    String name = Attribute(kType);
    if (name.empty()) return MSG_Normal;
    for (std::int32_t type = MSG_Normal; type < MSG_UnKnown; ++type) {
        if (name == NameOf(kTypeNames, type)) return static_cast<eMsgType>(type);
    }
    return MSG_UnKnown;
}

void cMessage::MSG_Type(eMsgType value) {
    StringView name = NameOf(kTypeNames, value);
    if (!name.empty()) Attribute(kType, name);
}

void cMessage::SendMessage() const {
    std::shared_ptr<SessionLink> session = RequireSession(session_);
    if (!HasCC()) return session->SendXML(xml());
    const Recipients recipients = ListedRecipients();  // before a handler sees the message and may change it
    session->SendXML(xml());
    for (const String& jid : recipients.all) session->SendXML(CopyFor(session, jid, recipients)->xml());
}

cMessage::Recipients cMessage::ListedRecipients() const {
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

std::shared_ptr<cMessage> cMessage::CopyFor(const std::shared_ptr<SessionLink>& session, StringView jid,
                                            const Recipients& recipients) const {
    std::shared_ptr<cMessage> copy = CreateMessage(session, jid, MSG_Type(), Body(), Subject());
    XmlNode list = copy->AppendExtension(kEnvelope);
    for (const String& visible : recipients.visible) {
        XmlNode entry = AppendRecipient(list, u"cc", visible);
        if (visible == ToJID()) entry.Text(u"Original Recipient");
    }
    return copy;
}

void cMessage::AddEvent(eEvent event) {
    StringView name = NameOf(kEventNames, event);
    if (!name.empty()) NeedExtension(u"jabber:x:event").AppendElement(name);
}

bool cMessage::getEvent(eEvent event) const {
    return !NameOf(kEventNames, event).empty() && (Events() & BitOf(event)) != 0;
}

std::uint32_t cMessage::Events() const {
    return AskRoot([](const auto& root) {
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
    String html = AskRoot([](const auto& root) { return FindElement(root, u"html", kXhtml).Xml(); });
    String markup = text_.Read(BodyMarkup(html));
    return filterCriticalXHTML_ && HoldsCriticalMarkup(markup) ? String() : markup;
}

void cMessage::XHTML(StringView value) {
    auto body = XmlDocument::Create();
    if (!body->Load(Concat({u"<body>", text_.ToNode(value), u"</body>"}))) return;
    XmlNode html = Root().AppendElement(u"html");
    html.SetAttribute(u"xmlns", kXhtml);
    html.AppendChild(body->Root());
}

String cMessage::TextRtf() const { return TagIn(u"jabber:x:rtf", u"richtext"); }

void cMessage::TextRtf(StringView value) {
    AppendExtension(u"jabber:x:rtf").AppendElement(u"richtext").Text(text_.ToNode(value));
}

String cMessage::Stamp() const {
    return AskRoot(
        [](const auto& root) { return FindExtension(root, u"jabber:x:delay").Attribute(u"stamp"); });
}
String cMessage::URL() const { return TagIn(u"jabber:x:oob", u"url"); }
String cMessage::desc() const { return TagIn(u"jabber:x:oob", u"desc"); }

void cMessage::AddRoster(const std::shared_ptr<cRosterItem>& item) {
    if (!item) throw AutomationError(ERR_ObjectNotSet);
    XmlNode entry = contacts_.Append(ListOf(contacts_, u"jabber:x:roster"), u"item", item->JID());
    if (entry) entry.SetAttribute(u"name", text_.ToNode(item->NickName()));
}

void cMessage::AddCopy(StringView kind, StringView jid) {
    recipients_.Append(ListOf(recipients_, kEnvelope), kind, jid);
}

XmlNode cMessage::Extension(StringView xmlns) const { return FindExtension(Root(), xmlns); }

XmlNode cMessage::AppendExtension(StringView xmlns) {
    XmlNode extension = Root().AppendElement(u"x");
    extension.SetAttribute(u"xmlns", xmlns);
    return extension;
}

// Looking for the element would walk all lists before it.
XmlNode cMessage::ListOf(const AddressList& list, StringView xmlns) {
    XmlNode known = list.List();
    return known && known.Parent() == Root() ? known : NeedExtension(xmlns);
}

XmlNode cMessage::NeedExtension(StringView xmlns) {
    XmlNode extension = Extension(xmlns);
    return extension ? extension : AppendExtension(xmlns);
}

String cMessage::TagIn(StringView xmlns, StringView tag) const {
    return AskRoot([&](const auto& root) { return FindTagBelow(FindExtension(root, xmlns), tag).Text(); });
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
