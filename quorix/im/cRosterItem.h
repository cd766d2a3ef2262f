/// \class quorix::cRosterItem
/// One contact of the list that the server keeps for the account (jabber:iq:roster, RFC 3921 section 7).
///
/// Ownership: the session's roster table shares its entries with the application, which may keep and change
/// them; an entry is updated in place when the server reports a change.
/// Threads: one session and all its records belong to the thread that created the session.
#pragma once

#include <memory>

#include "quorix/base/Collection.h"
#include "quorix/base/Export.h"
#include "quorix/base/FittedText.h"
#include "quorix/base/String.h"
#include "quorix/im/WatchedRecord.h"

namespace quorix {

class cSession;
class SessionLink;

/// Who sees whose presence.
enum eSubscriptionType : std::int32_t {
    KV_Empty = 0,  ///< neither
    KV_To = 1,     ///< we see the contact's
    KV_From = 2,   ///< the contact sees ours
    KV_Both = 3,
    KV_Remove = 4,  ///< the contact is, or shall be, deleted
};

using GroupListPtr = std::shared_ptr<Collection<String>>;

class QUORIX_API cRosterItem : public WatchedRecord {
public:
    /// Wire text in KV_Classic.
    String JID() const { return String(jid_.View()); }
    void JID(StringView value) { Assign(jid_, FittedText(value)); }

    /// Text. On a contact that somebody has sent inside a message it is wire text: cSession::Convert2Unicode.
    String NickName() const { return String(nickName_.View()); }
    void NickName(StringView value) { nickName_ = FittedText(value); }

    eSubscriptionType Subscription() const { return subscription_; }
    void Subscription(eSubscriptionType value) { subscription_ = value; }

    /// "subscribe" while a request of ours waits for the contact's answer.
    String Ask() const { return String(ask_.View()); }

    /// Text, in the order of the list; keyed by themselves. The list is good until the contact's groups
    /// change.
    const Collection<String>& Groups() const { return *groups_; }

    /// Error 457 when the contact is in the group already.
    void AddGroup(StringView group) { OwnGroups().Add(String(group), group); }
    bool inGroup(StringView group) const { return groups_->HasKey(group); }
    /// Error 5 when the contact is not in the group.
    void RemoveGroup(StringView group) { OwnGroups().Remove(group); }
    void RemoveAllGroups() { groups_ = NoGroups(); }

    /// Ask the server to store the contact, Add without a subscription, Update with it; Update with KV_Remove
    /// deletes the contact. The roster table changes when the server's push arrives, not here. Error 91
    /// without a session.
    void Add() const;
    void Update() const;

    /// Contacts of the roster table, and those that cSession::CreateRosterItem makes, have their session.
    void SetSession(const std::shared_ptr<cSession>& session);
    void SetSession(const std::shared_ptr<SessionLink>& session);

private:
    friend class RosterIndex;
    friend class RosterTable;

    static const GroupListPtr& NoGroups();
    Collection<String>& OwnGroups();  // for a change, which concerns no other contact
    void Send(StringView restOfTag) const;

    FittedText jid_;
    FittedText nickName_;
    FittedText ask_;
    eSubscriptionType subscription_ = KV_Empty;
    GroupListPtr groups_ = NoGroups();  // which contacts in the same groups share
    std::weak_ptr<SessionLink> session_;
};

/// "none", "to", "from", "both" or "remove", "" for any other value; and back, KV_Empty for any other text.
QUORIX_API StringView SubscriptionText(std::int32_t subscription);
QUORIX_API eSubscriptionType SubscriptionOf(StringView text);

}  // namespace quorix
