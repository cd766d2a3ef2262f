// The part of the demonstration that visits the server's services, one after the other.
#pragma once

#include <functional>

#include "quorix/session/cSession.h"

namespace quorix::demo {

// Each answer leads to the next request; `done` is called after the last.
class ServiceTour : public SessionEvents {
public:
    ServiceTour(cSession& session, std::function<void()> done) : session_(session), done_(std::move(done)) {}

    void Begin() { session_.FetchAgents(); }

    void OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& XMLElement) override;
    void OnAgentEnd() override;
    void OnSearchFields(const std::shared_ptr<cSearchFields>& SearchFields) override;
    void OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) override;
    void OnIQResult(const NodePtr& XMLElement, StringView FromJid) override;
    void OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                       const NodePtr& XMLElement) override;
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                  const NodePtr& XMLElement) override;
    void OnPresence(const std::shared_ptr<cPresenceItem>& PresenceItem, bool bAvailable, StringView ShowType,
                    std::int32_t ItemType, const NodePtr& XMLElement) override;
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView FromJid,
                         const NodePtr& XMLElement) override;

private:
    void PublishCard();
    bool IsUs(const cPresenceItem& presence) const;

    cSession& session_;
    std::function<void()> done_;
    std::shared_ptr<cAgentItem> directory_;
    String conference_;
    std::shared_ptr<cGroupChat> room_;
};

}  // namespace quorix::demo
