// Business cards on the wire (vcard-temp, XEP-0054).
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"
#include "quorix/services/cVcard.h"

namespace quorix {

// In KV_Classic `jid` is wire text.
void SendVCardRequest(SessionLink& link, StringView jid);

// Publishes `card` as the user's own. Values are escaped and encoded; every element is written, also for an
// empty value. Nothing is sent without a card.
void UpdateVcard(SessionLink& link, const std::shared_ptr<cVcard>& card);

// The card in a vCard element. A telephone number or address without HOME or WORK belongs to the home, a
// number without a kind is for voice; of several that fit one property, the first that is not empty counts.
std::shared_ptr<cVcard> ReadVCard(const TextRules& rules, const ParsedNode& element);

void HandleVCard(const std::shared_ptr<SessionLink>& link, const Stanza& stanza);

}  // namespace quorix
