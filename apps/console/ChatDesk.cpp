#include "apps/console/ChatDesk.h"

#include "apps/console/Console.h"
#include "apps/console/StanzaError.h"
#include "apps/console/Text.h"
#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

std::string_view TypeName(eMsgType type) {
    switch (type) {
        case MSG_Chat: return "chat";
        case MSG_GroupChat: return "groupchat";
        case MSG_Headline: return "headline";
        default: return "normal";
    }
}

// When the server has kept the message back; servers of today say so in another form than the session reads.
String SentAt(const cMessage& message) {
    if (!message.Stamp().empty()) return message.Stamp();
    const String xml = message.xml();
    if (xml.find(u"urn:xmpp:delay") == String::npos) return {};
    cXML_Node node;
    node.xml(xml);
    return node.getNode(u"/*/delay[@xmlns='urn:xmpp:delay']").Attribute(u"stamp");
}

// What else a message says than its text, in one pair of brackets.
String Remarks(const Fields& fields) {
    String remarks;
    for (const Field& field : fields) {
        const auto* text = std::get_if<std::string>(&field.value);
        if (text == nullptr || text->empty()) continue;
        remarks +=
            Concat({remarks.empty() ? u" (" : u"; ", TextFromUtf8(field.name), u": ", TextFromUtf8(*text)});
    }
    return remarks.empty() ? remarks : remarks + u")";
}

// People are known by their bare address; in a room everybody is a resource.
String SenderName(const String& from, eMsgType type) {
    return type == MSG_GroupChat && !GetResource(from).empty() ? from : RemoveResource(from);
}

}  // namespace

// -- Going out --

std::shared_ptr<cMessage> ChatDesk::NewMessage(StringView jid) {
    auto message = Session().CreateMessage(Encoded(Session(), jid), MSG_Chat, {}, {});
    message->AddEvent(KV_Displayed);
    message->AddEvent(KV_Composing);
    return message;
}

// A room sends everything back, so it is not shown before.
void ChatDesk::Send(StringView jid, StringView text) {
    const Chat* chat = chats_.Find(jid);
    if (chat != nullptr && chat->isRoom && GetResource(jid).empty()) {
        Session().CreateMessage(Encoded(Session(), jid), MSG_GroupChat, text, {})->SendMessage();
        return;
    }
    auto message = NewMessage(jid);
    message->Body(text);
    message->SendMessage();
    Show("sent", {{"to", jid}, {"text", text}});
}

void ChatDesk::Typing(StringView jid, bool stopped) {
    const Chat* chat = chats_.Find(jid);
    if (chat == nullptr || chat->lastFrom.empty())
        return Fail(u"Nothing to answer", u"no message from there");
    Session().SendEvent(chat->lastFrom, KV_Composing, chat->lastId, stopped);
}

// -- Coming in --

void ChatDesk::OnMessage(const std::shared_ptr<cMessage>& Message) {
    const String from = Text(Message->FromJid());
    if (!Message->Body().empty() || !Message->Subject().empty()) return ShowMessage(*Message, from);
    Chat* chat = chats_.Find(from);
    if (chat == nullptr || !chat->typing || Message->getEvent(KV_Composing)) return;
    chat->typing = false;
    Show("stopped", {{"from", RemoveResource(from)}});
}

void ChatDesk::ShowMessage(cMessage& message, const String& from) {
    const eMsgType type = message.MSG_Type();
    Chat& chat = chats_.Received(from);
    chat.isRoom = chat.isRoom || type == MSG_GroupChat;
    chat.lastFrom = message.FromJid();
    chat.lastId = message.ID();
    const Fields remarks{{"subject", message.Subject()},
                         {"sent", SentAt(message)},
                         {"link", Text(message.URL())},
                         {"description", Text(message.desc())},
                         {"markup", message.XHTML()}};
    Fields fields{{"from", SenderName(from, type)},
                  {"text", message.Body()},
                  {"_more", Remarks(remarks)},
                  {"jid", from},
                  {"type", std::string(TypeName(type))},
                  {"id", Text(message.ID())},
                  {"copies", message.HasCC()}};
    fields.insert(fields.end(), remarks.begin(), remarks.end());
    Show("message", fields);
}

// A message with text asks for reports, one without is a report.
void ChatDesk::OnMessageEvent(bool NoBody, std::int32_t EventKind, StringView FromJid) {
    if (NoBody) return ShowReport(EventKind, FromJid);
    const Chat* chat = chats_.Find(Text(FromJid));
    if (EventKind == KV_Displayed && chat != nullptr)
        Session().SendEvent(FromJid, KV_Displayed, chat->lastId);
}

void ChatDesk::ShowReport(std::int32_t eventKind, StringView fromJid) {
    const String from = RemoveResource(Text(fromJid));
    if (eventKind == KV_Composing && !std::exchange(chats_.With(from).typing, true))
        Show("typing", {{"from", from}});
    if (eventKind == KV_Displayed) Show("displayed", {{"from", from}});
    if (eventKind == KV_Delivered) Show("delivered", {{"from", from}});
    if (eventKind == KV_Offline) Show("stored", {{"from", from}});
}

void ChatDesk::OnError(const NodePtr& XMLElement, StringView FromJid, std::int16_t /*eErrorCode*/,
                       StringView /*ErrorDescription*/) {
    if (!XMLElement || !XMLElement->Root().Is(u"message")) return;
    const String from = FromJid.empty() ? String(u"its recipient") : Text(FromJid);
    Owner().Refused(Concat({u"Your message did not reach ", from}), XMLElement);
}

void ChatDesk::OnDisConnected() { chats_.NobodyTypes(); }

}  // namespace quorix::console
