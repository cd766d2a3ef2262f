// The server's services: agents and gateways, searching, business cards.
#pragma once

#include <vector>

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
    void OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) override;
    void OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                       const NodePtr& XMLElement) override;
    void OnIQ(const NodePtr& XMLElement) override;
    void OnIQError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                   StringView ErrorDescription) override;

private:
    // A question that has not been answered yet: for a form or, when it was submitted, for what came of that.
    struct Open {
        void (ServiceDesk::*answered)(const Open& question, const NodePtr& answer);
        String id;
        String jid;
        Values values;
    };
    void ContinueSearch(const Open& question, const NodePtr& answer);
    void EndSearch(const Open& question, const NodePtr& answer);
    void ContinueRegistration(const Open& question, const NodePtr& answer);
    void ShowForm();

    std::vector<Open> open_;
    bool isRefused_ = false;  // the answer at hand
};

// The lines of a business card that are shown and can be published.
struct CardLine {
    std::string_view name;
    String (cVcard::*get)() const;
    void (cVcard::*set)(StringView);
};
std::span<const CardLine> CardLines();

}  // namespace quorix::console
