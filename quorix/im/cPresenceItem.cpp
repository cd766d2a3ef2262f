#include "quorix/im/cPresenceItem.h"

#include <array>

#include "quorix/base/Number.h"
#include "quorix/link/SessionLink.h"

namespace quorix {

StringView ShowText(std::int32_t show) {
    static constexpr std::array<StringView, 5> kTexts = {u"", u"chat", u"away", u"xa", u"dnd"};
    return show >= KV_None && show <= KV_DND ? kTexts[static_cast<std::size_t>(show)] : StringView();
}

// Decoding once here spares it at every look-up; the wire form is never asked for again.
void cPresenceItem::JID(StringView value) { Assign(jid_, TextOf(session_).Read(String(value))); }
void cPresenceItem::Resource(StringView value) { Assign(resource_, TextOf(session_).Read(String(value))); }

void cPresenceItem::ShowType(eShowType value) { showType_ = ToInt16(value); }

void cPresenceItem::SetSession(const std::shared_ptr<cSession>& session) { session_ = LinkOf(session); }
void cPresenceItem::SetSession(const std::shared_ptr<SessionLink>& session) { session_ = session; }

}  // namespace quorix
