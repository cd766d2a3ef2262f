#include "quorix/services/Browse.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "quorix/link/StanzaText.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

constexpr StringView kServerPrefix = u"gcsrv_";
constexpr StringView kRoomPrefix = u"gcroom_";

void Browse(SessionLink& link, StringView jid, StringView prefix, StringView id) {
    link.SendXML(
        Compose(link.Text(), {u"<iq type='get' to='", Quoted(jid, Put::Encoded), u"' id='", Quoted(prefix),
                              Quoted(id), u"'><item xmlns='jabber:iq:browse'/></iq>"}));
}

template <class Accept>
std::vector<ParsedNode> ChildrenWhere(const ParsedNode& parent, Accept accept) {
    std::vector<ParsedNode> children;
    for (ParsedNode child = parent.FirstElement(); child; child = child.NextElement()) {
        if (accept(child)) children.push_back(child);
    }
    return children;
}

ParsedNode ConferenceOf(const Stanza& stanza) {
    std::vector<ParsedNode> found = Outermost(stanza.root, u"conference");
    return found.empty() ? ParsedNode() : found.front();
}

// Servers mark the items with the namespace; where none does, the ones with an address count.
std::vector<ParsedNode> RoomElements(const ParsedNode& conference) {
    auto itemsWith = [&](StringView attribute) {
        return ChildrenWhere(conference, [=](const ParsedNode& child) {
            return child.Is(u"item") && child.HasAttribute(attribute);
        });
    };
    std::vector<ParsedNode> marked = itemsWith(u"xmlns");
    return marked.empty() ? itemsWith(u"jid") : marked;
}

std::shared_ptr<cGroupChat> ReadRoom(const ParsedNode& element, StringView server) {
    auto room = std::make_shared<cGroupChat>();
    room->Server(server);
    room->JID(element.Attribute(u"jid"));
    room->RoomName(element.Attribute(u"name"));
    room->ServerType(element.AttributeIs(u"type", u"private") ? KV_Private : KV_Public);
    return room;
}

void HandleServer(SessionLink& link, const Stanza& stanza) {
    std::vector<std::shared_ptr<cGroupChat>> rooms;
    for (const ParsedNode& element : RoomElements(ConferenceOf(stanza))) {
        rooms.push_back(ReadRoom(element, stanza.From()));
    }
    if (rooms.empty()) rooms.emplace_back();
    for (const auto& room : rooms) link.Raise(&SessionEvents::OnChatServerBrowseResult, room, stanza.Node());
}

struct Entry {
    std::shared_ptr<cBrowseItem> item;
    NodePtr node;
};

Entry ReadEntry(const Stanza& stanza, const ParsedNode& element) {
    Entry entry{std::make_shared<cBrowseItem>(), stanza.NodeOf(element)};
    String type = element.Attribute(u"type");
    entry.item->JID(element.Attribute(u"jid"));
    entry.item->Name(element.Attribute(u"name"));
    entry.item->SubType(type.empty() ? element.Attribute(u"category") : type);
    return entry;
}

bool IsEntry(const ParsedNode& element) {
    return (element.Is(u"user") || element.Is(u"item")) && element.HasAttribute(u"jid");
}

void HandleRoom(SessionLink& link, const Stanza& stanza) {
    std::vector<Entry> entries;
    for (const ParsedNode& element : ChildrenWhere(ConferenceOf(stanza), IsEntry)) {
        entries.push_back(ReadEntry(stanza, element));
    }
    link.Raise(&SessionEvents::OnChatRoomBrowseResult, stanza.From(), stanza.Node());
    for (const Entry& entry : entries) {
        link.Raise(&SessionEvents::OnGroupChatItem, entry.item, stanza.From(), entry.node);
    }
}

}  // namespace

void BrowseChatServer(SessionLink& link, StringView jid, StringView id) {
    Browse(link, jid, kServerPrefix, id);
}

void BrowseChatRoom(SessionLink& link, StringView jid, StringView id) { Browse(link, jid, kRoomPrefix, id); }

void HandleBrowse(SessionLink& link, const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    if (StartsWith(stanza.Id(), kServerPrefix)) HandleServer(link, stanza);
    if (StartsWith(stanza.Id(), kRoomPrefix)) HandleRoom(link, stanza);
}

}  // namespace quorix
