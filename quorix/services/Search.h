// The session's side of searching (jabber:iq:search): the form to fill and send, and the hits.
//
// The requests themselves go through the agent that is searched: cAgentItem::GetSearchFields and Search.
#pragma once

#include "quorix/link/SessionLink.h"
#include "quorix/link/Stanza.h"
#include "quorix/services/cSearchFields.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cXData.h"

namespace quorix {

class Search {
public:
    // One collection for the session's whole life; every search reply and every closing empties it.
    const std::shared_ptr<cSearchFields>& SearchFields() const { return fields_; }

    // The hits of the newest reply that had any. Each such reply brings a new collection. Never null.
    const std::shared_ptr<cSearchResults>& Searchresults() const { return results_; }

    // The data form of the newest search form, without fields when it had none. Never null.
    const std::shared_ptr<cXData>& SearchXData() const { return form_; }

    // A search reply: hits raise OnSearchResults; else a form, which must carry instructions, raises
    // OnSearchFields.
    void Handle(SessionLink& link, const Stanza& stanza);

    // The connection has ended: empties fields and results where they are.
    void Empty();

private:
    void HandleForm(SessionLink& link, const Stanza& stanza);
    void HandleResults(SessionLink& link, const Stanza& stanza);

    std::shared_ptr<cSearchFields> fields_ = std::make_shared<cSearchFields>();
    std::shared_ptr<cSearchResults> results_ = std::make_shared<cSearchResults>();
    std::shared_ptr<cXData> form_ = std::make_shared<cXData>();
};

}  // namespace quorix
