#include "apps/console/ServiceDesk.h"

#include <algorithm>
#include <ctime>

#include "apps/console/Console.h"
#include "quorix/base/Jid.h"
#include "quorix/base/WireText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix::console {

namespace {

String Clock(const char* format, const std::tm& time) {
    char text[40];
    std::strftime(text, sizeof text, format, &time);
    return WireFromBytes(text);
}

String Tag(StringView name, StringView text) { return Concat({u"<", name, u">", text, u"</", name, u">"}); }

// A search as it goes out: in the manner of the data form when the service has sent one.
String SearchBody(const Values& values, bool asForm) {
    String body;
    for (const auto& [name, value] : values) {
        body += asForm ? Concat({u"<field var='", Wire(name), u"'>", Tag(u"value", Wire(value)), u"</field>"})
                       : Tag(name, Wire(value));
    }
    return asForm ? Concat({u"<x xmlns='jabber:x:data' type='submit'>", body, u"</x>"}) : body;
}

}  // namespace

Values ParseValues(StringView text) {
    Values values;
    while (!text.empty()) {
        std::size_t end = std::min(text.find(u';'), text.size());
        StringView pair = text.substr(0, end);
        std::size_t equals = std::min(pair.find(u'='), pair.size());
        String name(Trim(pair.substr(0, equals)));
        if (!name.empty()) values.emplace_back(name, Trim(pair.substr(std::min(equals + 1, pair.size()))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return values;
}

cSession& ServiceDesk::Session() { return console_.Session(); }
void ServiceDesk::Print(std::initializer_list<StringView> parts) { console_.Print(Concat(parts)); }

// -- The account --

void ServiceDesk::ChangePassword(StringView password) {
    newPassword_ = password;
    Session().ChangePassword(Wire(password));
}

void ServiceDesk::OnChangedPassword() {
    Session().Password(newPassword_);
    Print({u"Password changed."});
}

void ServiceDesk::OnAccountRemoved(StringView /*FromJid*/, StringView /*ID*/) {
    Print({u"Account removed."});
    console_.Quit();
}

// -- Agents --

void ServiceDesk::OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& /*XMLElement*/) {
    Print({u"agent ", Readable(Agent->JID()), u" \"", Readable(Agent->Name()), u"\"",
           Agent->CanRegister() ? u" register" : u"", Agent->CanSearch() ? u" search" : u"",
           Agent->IsGroupChat() ? u" rooms" : u"", Agent->IsTransport() ? u" gateway" : u""});
}

void ServiceDesk::OnAgentEnd() { Print({u"agents: ", ToString(Session().Agents().Count())}); }

void ServiceDesk::OnGatewayInfo(const NodePtr& /*XMLElement*/, StringView Desc) {
    Print({u"gateway asks for: ", Readable(Desc)});
}

void ServiceDesk::Register(StringView agentJid, Values values) {
    registration_ = {String(agentJid), std::move(values)};
    Session().GetAgentRegister(agentJid, Session().GetNextID());
}

// The form has been put into the agent's fields by now.
void ServiceDesk::ContinueRegistration(StringView from) {
    if (registration_.jid.empty() || registration_.jid != from) return;
    Pending wanted = std::exchange(registration_, {});
    std::int16_t position = Session().FindAgent(from);
    if (position == 0) return Print({u"! Unknown agent; /agents fetches the list."});
    std::shared_ptr<cAgentItem> agent = Session().Agents().Item(position);
    for (const auto& [name, value] : wanted.values) {
        if (agent->FindField(name) == 0) agent->AddField(name, {});
        agent->SetField(name, Wire(value));
    }
    for (const auto& field : agent->Fields()) {
        bool isSecret = field->Name() == u"password" || field->Name() == u"key";
        Print({u"  ", Readable(field->Name()), u" = ", isSecret ? u"***" : Readable(field->Value())});
    }
    if (!wanted.values.empty()) agent->Update();
}

// -- Searching --

void ServiceDesk::Search(StringView jid, Values values) {
    search_ = {String(jid), std::move(values)};
    Session().SendXML(Concat({u"<iq type='get' id='", Session().GetNextID(), u"' to='", Wire(jid),
                              u"'><query xmlns='jabber:iq:search'/></iq>"}));
}

void ServiceDesk::OnSearchFields(const std::shared_ptr<cSearchFields>& /*SearchFields*/) {
    if (search_.values.empty()) {
        ShowForm();
    } else {
        SubmitSearch();
    }
}

void ServiceDesk::ShowForm() {
    for (const auto& field : *Session().SearchFields()) {
        Print({u"  ", Readable(field->FieldName()), u" ", Readable(field->FieldData())});
    }
    for (const auto& field : Session().SearchXData()->Fields()) {
        Print({u"  ", Readable(field->Var()), u" (", Readable(field->Label()), u")"});
    }
}

void ServiceDesk::SubmitSearch() {
    bool asForm = Session().SearchXData()->Fields().Count() > 0;
    Pending search = std::exchange(search_, {});
    Session().SendXML(
        Concat({u"<iq type='set' id='", Session().GetNextID(), u"' to='", Wire(search.jid),
                u"'><query xmlns='jabber:iq:search'>", SearchBody(search.values, asForm), u"</query></iq>"}));
}

void ServiceDesk::OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) {
    for (const auto& hit : *Searchresults) {
        String line = Concat({u"found ", Readable(hit->SearchItem())});
        for (const auto& field : *hit->Fields()) {
            if (!field->FieldData().empty()) line += Concat({u" | ", Readable(field->FieldData())});
        }
        Print({line});
    }
}

// -- Business cards --

void ServiceDesk::OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                                const NodePtr& /*XMLElement*/) {
    Print({u"card of ", FromJid.empty() ? String(u"yourself") : Readable(FromJid)});
    const std::pair<StringView, String> lines[] = {
        {u"FullName", Vcard->FullName()},
        {u"NickName", Vcard->NickName()},
        {u"Email", Vcard->Email()},
        {u"WebPage", Vcard->WebPage()},
        {u"BirthDate", Vcard->BirthDate()},
        {u"HomePhone", Vcard->HomePhone()},
        {u"HomeCity", Vcard->HomeCity()},
        {u"OrgName", Vcard->OrgName()},
        {u"Description", Vcard->Description()},
    };
    for (const auto& [name, value] : lines) {
        if (!value.empty()) Print({u"  ", name, u" = ", value});
    }
}

// -- Rooms --

void ServiceDesk::Join(StringView roomJid, StringView nickname) {
    auto room = std::make_shared<cGroupChat>();
    room->JID(roomJid);
    room->NickName(nickname);
    Session().SendGroupChatRequest(room, true);
    std::erase_if(rooms_, [&](const auto& known) { return known->JID() == roomJid; });
    rooms_.push_back(room);
}

std::shared_ptr<cGroupChat> ServiceDesk::Room(StringView roomJid) {
    auto found =
        std::find_if(rooms_.begin(), rooms_.end(), [&](const auto& room) { return room->JID() == roomJid; });
    if (found != rooms_.end()) return *found;
    Print({u"! You are not in ", roomJid});
    return nullptr;
}

void ServiceDesk::Leave(StringView roomJid) {
    std::shared_ptr<cGroupChat> room = Room(roomJid);
    if (!room) return;
    Session().SendGroupChatRequest(room, false);
    std::erase(rooms_, room);
}

void ServiceDesk::OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                           const NodePtr& /*XMLElement*/) {
    if (!Room) return Print({u"no rooms"});
    Print({u"room ", Readable(Room->JID()), u" \"", Readable(Room->RoomName()), u"\"",
           Room->ServerType() == KV_Private ? u" private" : u""});
}

void ServiceDesk::OnChatRoomBrowseResult(StringView FromJid, const NodePtr& /*XMLElement*/) {
    Print({u"in ", Readable(FromJid), u":"});
}

void ServiceDesk::OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView /*FromJid*/,
                                  const NodePtr& /*XMLElement*/) {
    Print({u"  ", Readable(BrowseItem->Name()), u" <", Readable(BrowseItem->JID()), u">"});
}

void ServiceDesk::OnGCInvite10(StringView RoomJid, StringView FromJid, StringView /*Body*/,
                               StringView /*Subject*/, const NodePtr& /*XMLElement*/) {
    Print({Readable(FromJid), u" invites you to ", Readable(RoomJid)});
}

// -- Questions and answers --

void ServiceDesk::OnVersionRequest(StringView FromJid, StringView /*ID*/) {
    Session().SendVersionResponse(FromJid, u"Quorix console", u"0.1", u"");
}

void ServiceDesk::OnTimeRequest(StringView FromJid, StringView /*ID*/) {
    std::time_t now = std::time(nullptr);
    std::tm utc{};
    std::tm local{};
    gmtime_r(&now, &utc);
    localtime_r(&now, &local);
    Session().SendTimeResponse(FromJid, Clock("%Y%m%dT%H:%M:%S", utc), Clock("%Z", local),
                               Clock("%d.%m.%Y %H:%M", local));
}

void ServiceDesk::OnGetLastRequest(StringView FromJid, StringView /*ID*/) {
    Session().SendGetLastResponse(FromJid, u"0");
}

void ServiceDesk::OnVersionResult(StringView FromJid, StringView AppName, StringView AppVer, StringView OS) {
    Print({Readable(FromJid), u" runs ", Readable(AppName), u" ", Readable(AppVer), u" ", Readable(OS)});
}

void ServiceDesk::OnTimeResult(StringView FromJid, StringView UTC, StringView Local_DateTime) {
    Print({u"time at ", Readable(FromJid), u": ", Readable(Local_DateTime), u" (", Readable(UTC), u" UTC)"});
}

void ServiceDesk::OnLastSeenResult(const NodePtr& /*XMLElement*/, StringView FromJid, std::int32_t Seconds) {
    Print({Readable(FromJid), u" has been idle for ", ToString(Seconds), u" s"});
}

void ServiceDesk::OnOOBRequest(StringView FromJid, StringView desc, StringView URL) {
    Print({Readable(FromJid), u" offers ", Readable(URL), u" (", Readable(desc), u")"});
}

void ServiceDesk::OnOOBResult(StringView FromJid, bool bSuccess) {
    Print({Readable(FromJid), bSuccess ? u" has fetched the offer" : u" did not take the offer"});
}

// Replies that have no event of their own.
void ServiceDesk::OnIQ(const NodePtr& XMLElement) {
    XmlNode query = XMLElement->Root().FirstElement();
    if (!XMLElement->Root().AttributeIs(u"type", u"result")) return;
    if (query.AttributeIs(u"xmlns", u"jabber:iq:private")) ShowPrivate(query);
    if (query.AttributeIs(u"xmlns", u"jabber:iq:register")) {
        ContinueRegistration(XMLElement->Root().Attribute(u"from"));
    }
}

void ServiceDesk::ShowPrivate(const XmlNode& query) {
    Print({u"stored: ", Readable(query.FirstElement().Xml())});
}

}  // namespace quorix::console
