// The server's services: agents and gateways, searching, business cards.
#pragma once

#include "apps/console/Desk.h"
#include "apps/console/Parameters.h"

namespace quorix::console {

class ServiceDesk : public Desk {
public:
    using Desk::Desk;

    // With values: fetches the form, fills it, sends it. Without: shows the form.
    void Search(StringView jid, Values values);
    void Register(StringView agentJid, Values values);

    void OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& XMLElement) override;
    void OnAgentEnd() override;
    void OnGatewayInfo(const NodePtr& XMLElement, StringView Desc) override;
    void OnSearchFields(const std::shared_ptr<cSearchFields>& SearchFields) override;
    void OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) override;
    void OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                       const NodePtr& XMLElement) override;
    void OnIQ(const NodePtr& XMLElement) override;

private:
    struct Pending {
        String jid;
        Values values;
    };
    void ShowForm();
    void SubmitSearch();
    void ContinueRegistration(StringView from);

    Pending search_;
    String searchId_;  // of the one that was sent
    Pending registration_;
};

// The lines of a business card that are shown and can be published.
struct CardLine {
    std::string_view name;
    String (cVcard::*get)() const;
    void (cVcard::*set)(StringView);
};
std::span<const CardLine> CardLines();

}  // namespace quorix::console
