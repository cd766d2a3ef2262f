#include "quorix/link/SessionLink.h"

#include "quorix/base/AutomationError.h"

namespace quorix {

std::shared_ptr<SessionLink> RequireSession(const std::weak_ptr<SessionLink>& session) {
    std::shared_ptr<SessionLink> link = session.lock();
    if (!link) throw AutomationError(ERR_ObjectNotSet);
    return link;
}

const TextRules& TextOf(const std::weak_ptr<SessionLink>& session) {
    std::shared_ptr<SessionLink> link = session.lock();
    return link ? link->Text() : ClassicText();
}

}  // namespace quorix
