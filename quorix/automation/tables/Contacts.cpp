#include "quorix/automation/Collections.h"
#include "quorix/automation/SetSession.h"
#include "quorix/im/cPresenceItem.h"
#include "quorix/im/cRosterItem.h"

namespace quorix::automation {

// The groups of one contact, changed through the contact, which keys them by themselves.
class GroupList {
public:
    explicit GroupList(std::shared_ptr<cRosterItem> contact) : contact_(std::move(contact)) {}

    String Item(std::int32_t index) const { return contact_->Groups().Item(index); }
    String Item(StringView name) const { return contact_->Groups().Item(name); }
    std::int32_t Count() const { return contact_->Groups().Count(); }
    void Add(StringView name) { contact_->AddGroup(name); }
    void Remove(std::int32_t index) { contact_->RemoveGroup(String(Item(index))); }
    void Remove(StringView name) { contact_->RemoveGroup(name); }

    Collection<String>::const_iterator begin() const { return contact_->Groups().begin(); }
    Collection<String>::const_iterator end() const { return contact_->Groups().end(); }

private:
    std::shared_ptr<cRosterItem> contact_;
};

namespace {

Variant GroupsOf(const std::shared_ptr<cRosterItem>& contact) {
    return ObjectVariant(
        Wrap(std::make_shared<GroupList>(contact), TableOf<GroupList>(), &contact->Groups()));
}

}  // namespace

template <>
const ClassTable& TableOf<GroupList>() {
    static const auto table = CollectionClass<GroupList>(L"cGroups").Method(L"Add", &GroupList::Add);
    return table;
}

template <>
const ClassTable& TableOf<cRosterItem>() {
    using T = cRosterItem;
    static const auto table = Class<T>(L"cRosterItem")
                                  .Creatable()
                                  .Property(L"JID", &T::JID, &T::JID)
                                  .Property(L"NickName", &T::NickName, &T::NickName)
                                  .Property(L"Subscription", &T::Subscription, &T::Subscription)
                                  .Get(L"Ask", &T::Ask)
                                  .Get(L"Groups", &GroupsOf)
                                  .Method(L"SetSession", &SetSession<T>)
                                  .Method(L"AddGroup", &T::AddGroup)
                                  .Method(L"inGroup", &T::inGroup)
                                  .Method(L"RemoveGroup", &T::RemoveGroup)
                                  .Method(L"RemoveAllGroups", &T::RemoveAllGroups)
                                  .Method(L"Add", &T::Add)
                                  .Method(L"Update", &T::Update);
    return table;
}

template <>
const ClassTable& TableOf<cPresenceItem>() {
    using T = cPresenceItem;
    static const auto table = Class<T>(L"cPresenceItem")
                                  .Creatable()
                                  .Property(L"JID", &T::JID, &T::JID)
                                  .Property(L"Resource", &T::Resource, &T::Resource)
                                  .Property(L"Status", &T::Status, &T::Status)
                                  .Property(L"ShowType", &T::ShowType, &T::ShowType)
                                  .Property(L"Priority", &T::Priority, &T::Priority)
                                  .Method(L"SetSession", &SetSession<T>);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cRosterItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cRosterItem>>(L"cRoster");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cPresenceItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cPresenceItem>>(L"cPresence");
    return table;
}

}  // namespace quorix::automation
