// Writes down the events of the services, one line each, in UTF-8.
#pragma once

#include <string>
#include <vector>

#include "quorix/base/WireText.h"
#include "quorix/link/SessionEvents.h"
#include "quorix/services/cAgentItem.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cVcard.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix::tests {

class ServiceLog : public SessionEvents {
public:
    std::vector<std::string> lines;
    std::vector<std::string> Take() { return std::exchange(lines, {}); }

    void OnAgentBegin() override { Write({u"AgentBegin"}); }
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr& node) override {
        Write({u"AgentItem ", agent->JID(), u" ", node->GetNamespace()});
        agents.push_back(agent);
    }
    void OnAgentEnd() override { Write({u"AgentEnd"}); }
    void OnVCardResult(const std::shared_ptr<cVcard>& card, StringView from, const NodePtr& node) override {
        Write({u"VCardResult ", from, u" ", node->GetNamespace()});
        vcard = card;
    }
    void OnGetLastRequest(StringView from, StringView id) override {
        Write({u"GetLastRequest ", from, u" ", id});
    }
    void OnLastSeenResult(const NodePtr& node, StringView from, std::int32_t seconds) override {
        Write({u"LastSeenResult ", node->GetNamespace(), u" ", from, u" ", ToString(seconds)});
    }
    void OnTimeRequest(StringView from, StringView id) override { Write({u"TimeRequest ", from, u" ", id}); }
    void OnTimeResult(StringView from, StringView utc, StringView display) override {
        Write({u"TimeResult ", from, u" ", utc, u" ", display});
    }
    void OnVersionRequest(StringView from, StringView id) override {
        Write({u"VersionRequest ", from, u" ", id});
    }
    void OnVersionResult(StringView from, StringView name, StringView version, StringView os) override {
        Write({u"VersionResult ", from, u" ", name, u" ", version, u" ", os});
    }
    void OnGroupChat(const std::shared_ptr<cGroupChat>& chat, StringView from, const NodePtr& node) override {
        Write({u"GroupChat ", from, u" ", node->GetNamespace()});
        room = chat;
    }
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& item, StringView from,
                         const NodePtr& node) override {
        Write({u"GroupChatItem ", from, u" ", item->JID(), u" ", item->Name(), u" ", item->SubType(), u" ",
               node->GetNamespace()});
    }
    void OnSearchFields(const std::shared_ptr<cSearchFields>& fields) override {
        Write({u"SearchFields ", ToString(fields->Count())});
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& results) override {
        Write({u"SearchResults ", ToString(results->Count())});
    }
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& found, const NodePtr& node) override {
        Write({u"ChatServerBrowseResult ", found ? found->JID() : String(u"(none)"), u" ",
               node->GetNamespace()});
        room = found;
    }
    void OnChatRoomBrowseResult(StringView from, const NodePtr& node) override {
        Write({u"ChatRoomBrowseResult ", from, u" ", node->GetNamespace()});
    }
    void OnOOBRequest(StringView from, StringView desc, StringView url) override {
        Write({u"OOBRequest ", from, u" ", desc, u" ", url});
    }
    void OnOOBResult(StringView from, bool success) override {
        Write({u"OOBResult ", from, success ? u" fetched" : u" failed"});
    }
    void OnGatewayInfo(const NodePtr& node, StringView desc) override {
        Write({u"GatewayInfo ", node->GetNamespace(), u" ", desc});
    }

    std::vector<std::shared_ptr<cAgentItem>> agents;
    std::shared_ptr<cVcard> vcard;
    std::shared_ptr<cGroupChat> room;

private:
    void Write(std::initializer_list<StringView> parts) { lines.push_back(Utf8FromText(Concat(parts))); }
};

using Lines = std::vector<std::string>;

}  // namespace quorix::tests
