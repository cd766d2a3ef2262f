// The services' side of the console: prints what they bring, answers what others ask about this client, and
// carries out the commands that need an answer first.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "apps/console/Text.h"
#include "quorix/session/cSession.h"

namespace quorix::console {

class Console;

// "NAME=VALUE; NAME=VALUE": names and values without the blanks around them.
using Values = std::vector<std::pair<String, String>>;
Values ParseValues(StringView text);

class ServiceDesk : public SessionEvents {
public:
    explicit ServiceDesk(Console& console) : console_(console) {}

    // The new password is used from the server's consent on.
    void ChangePassword(StringView password);

    // With values: fetches the form, fills it, sends it. Without: shows the form.
    void Search(StringView jid, Values values);
    void Register(StringView agentJid, Values values);

    void Join(StringView roomJid, StringView nickname);
    void Leave(StringView roomJid);
    // The room of that JID that was joined here, or an error on the console and null.
    std::shared_ptr<cGroupChat> Room(StringView roomJid);

    void OnChangedPassword() override;
    void OnAccountRemoved(StringView FromJid, StringView ID) override;
    void OnAgentItem(const std::shared_ptr<cAgentItem>& Agent, const NodePtr& XMLElement) override;
    void OnAgentEnd() override;
    void OnGatewayInfo(const NodePtr& XMLElement, StringView Desc) override;
    void OnSearchFields(const std::shared_ptr<cSearchFields>& SearchFields) override;
    void OnSearchResults(const std::shared_ptr<cSearchResults>& Searchresults) override;
    void OnVCardResult(const std::shared_ptr<cVcard>& Vcard, StringView FromJid,
                       const NodePtr& XMLElement) override;
    void OnChatServerBrowseResult(const std::shared_ptr<cGroupChat>& Room,
                                  const NodePtr& XMLElement) override;
    void OnChatRoomBrowseResult(StringView FromJid, const NodePtr& XMLElement) override;
    void OnGroupChatItem(const std::shared_ptr<cBrowseItem>& BrowseItem, StringView FromJid,
                         const NodePtr& XMLElement) override;
    void OnGCInvite10(StringView RoomJid, StringView FromJid, StringView Body, StringView Subject,
                      const NodePtr& XMLElement) override;
    void OnVersionRequest(StringView FromJid, StringView ID) override;
    void OnVersionResult(StringView FromJid, StringView AppName, StringView AppVer, StringView OS) override;
    void OnTimeRequest(StringView FromJid, StringView ID) override;
    void OnTimeResult(StringView FromJid, StringView UTC, StringView Local_DateTime) override;
    void OnGetLastRequest(StringView FromJid, StringView ID) override;
    void OnLastSeenResult(const NodePtr& XMLElement, StringView FromJid, std::int32_t Seconds) override;
    void OnOOBRequest(StringView FromJid, StringView desc, StringView URL) override;
    void OnOOBResult(StringView FromJid, bool bSuccess) override;
    void OnIQ(const NodePtr& XMLElement) override;

private:
    struct Pending {
        String jid;
        Values values;
    };

    cSession& Session();
    void Print(std::initializer_list<StringView> parts);
    void ShowForm();
    void SubmitSearch();
    void ShowPrivate(const XmlNode& query);
    void ContinueRegistration(StringView from);

    Console& console_;
    String newPassword_;
    Pending search_;
    Pending registration_;
    std::vector<std::shared_ptr<cGroupChat>> rooms_;
};

}  // namespace quorix::console
