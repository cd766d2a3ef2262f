#include "apps/demo/ServiceTour.h"

#include "apps/demo/Demo.h"

namespace quorix::demo {

namespace {

constexpr StringView kNickname = u"Romeo";

}  // namespace

void ServiceTour::OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& /*XMLElement*/) {
    Say(Concat({u"agent       ", Agent->JID(), u": ", Agent->Name()}));
    if (Agent->CanSearch()) directory_ = Agent;
    if (Agent->IsGroupChat()) conference_ = Agent->JID();
}

void ServiceTour::OnAgentEnd() {
    if (directory_) directory_->GetSearchFields();
}

void ServiceTour::OnSearchFields(const std::shared_ptr<cSearchFields>& SearchFields) {
    for (const auto& field : *SearchFields) {
        Say(Concat({u"search      the form has ", field->FieldName(), u" ", field->FieldData()}));
        field->FieldData(field->FieldName() == u"last" ? u"Capulet" : u"");
    }
    Say(u"search      asked for last = Capulet");
    directory_->Search();
}

void ServiceTour::OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) {
    for (const auto& hit : *Searchresults) Say(Concat({u"search      found ", hit->SearchItem()}));
    PublishCard();
}

void ServiceTour::PublishCard() {
    auto card = std::make_shared<cVcard>();
    card->FullName(u"Romeo Montague");
    card->HomeCity(u"Vérone");
    Say(u"card        published: Romeo Montague, Vérone");
    session_.UpdateVcard(card);
}

void ServiceTour::OnIQResult(const NodePtr& /*XMLElement*/, StringView /*FromJid*/) {
    session_.SendVCardRequest(session_.MyJid());
}

void ServiceTour::OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                                const NodePtr& /*XMLElement*/) {
    Say(Concat({u"card        received from ", FromJid, u": ", Vcard->FullName(), u", ", Vcard->HomeCity()}));
    session_.BrowseChatServer(conference_, u"1");
}

void ServiceTour::OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                           const NodePtr& /*XMLElement*/) {
    Say(Concat({u"room        ", Room->JID(), u": ", Room->RoomName()}));
    room_ = Room;
    room_->NickName(kNickname);
    Say(Concat({u"room        entering as ", kNickname}));
    session_.SendGroupChatRequest(room_, true);
}

bool ServiceTour::IsUs(const cPresenceItem& presence) const {
    return room_ && presence.JID() == room_->JID() && presence.Resource() == kNickname;
}

void ServiceTour::OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable,
                             StringView /*ShowType*/, std::int32_t /*ItemType*/,
                             const NodePtr& /*XMLElement*/) {
    if (!IsUs(*PresenceItem)) return;
    Say(bAvailable ? u"room        entered" : u"room        left");
    if (bAvailable) {
        session_.BrowseChatRoom(room_->JID(), u"2");
    } else {
        done_();
    }
}

void ServiceTour::OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView /*FromJid*/,
                                  const NodePtr& /*XMLElement*/) {
    Say(Concat({u"room        there is ", BrowseItem->Name()}));
    if (BrowseItem->Name() == kNickname) session_.SendGroupChatRequest(room_, false);
}

}  // namespace quorix::demo
