// Questions: answers those of others about this client, and shows the answers to our own.
#pragma once

#include "apps/console/Desk.h"

namespace quorix::console {

class AnswerDesk : public Desk {
public:
    using Desk::Desk;

    void OnVersionRequest(StringView FromJid, StringView ID) override;
    void OnVersionResult(StringView FromJid, StringView AppName, StringView AppVer, StringView OS) override;
    void OnTimeRequest(StringView FromJid, StringView ID) override;
    void OnTimeResult(StringView FromJid, StringView UTC, StringView Local_DateTime) override;
    void OnGetLastRequest(StringView FromJid, StringView ID) override;
    void OnLastSeenResult(const NodePtr& XMLElement, StringView FromJid, std::int32_t Seconds) override;
    void OnOOBRequest(StringView FromJid, StringView desc, StringView URL) override;
    void OnOOBResult(StringView FromJid, bool bSuccess) override;
    void OnIQ(const NodePtr& XMLElement) override;
    void OnIQError(const NodePtr& XMLElement, StringView FromJid, std::int16_t eErrorCode,
                   StringView ErrorDescription) override;
};

}  // namespace quorix::console
