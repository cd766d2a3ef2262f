#include "quorix/im/cPresenceItem.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/scripting/Collections.h"
#include "quorix/scripting/SetSession.h"

namespace quorix::scripting {

// The groups of one contact, changed through the contact, which keys them by themselves.
class GroupList {
public:
    explicit GroupList(std::shared_ptr<cRosterItem> contact) : contact_(std::move(contact)) {}

    // One for each contact, however often the list is made.
    const void* Identity() const { return contact_.get(); }

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

auto GroupsOf(const std::shared_ptr<cRosterItem>& contact) { return std::make_shared<GroupList>(contact); }

}  // namespace

template <>
const ClassTable& TableOf<GroupList>() {
    static const auto table = CollectionClass<GroupList>("cGroups").Method("Add", &GroupList::Add);
    return table;
}

template <>
const ClassTable& TableOf<cRosterItem>() {
    using T = cRosterItem;
    static const auto table = Class<T>("cRosterItem")
                                  .Creatable()
                                  .Property("JID", &T::JID, &T::JID)
                                  .Property("NickName", &T::NickName, &T::NickName)
                                  .Property("Subscription", &T::Subscription, &T::Subscription)
                                  .Get("Ask", &T::Ask)
                                  .Get("Groups", &GroupsOf)
                                  .Method("SetSession", &SetSession<T>)
                                  .Method("AddGroup", &T::AddGroup)
                                  .Method("inGroup", &T::inGroup)
                                  .Method("RemoveGroup", &T::RemoveGroup)
                                  .Method("RemoveAllGroups", &T::RemoveAllGroups)
                                  .Method("Add", &T::Add)
                                  .Method("Update", &T::Update);
    return table;
}

template <>
const ClassTable& TableOf<cPresenceItem>() {
    using T = cPresenceItem;
    static const auto table = Class<T>("cPresenceItem")
                                  .Creatable()
                                  .Property("JID", &T::JID, &T::JID)
                                  .Property("Resource", &T::Resource, &T::Resource)
                                  .Property("Status", &T::Status, &T::Status)
                                  .Property("ShowType", &T::ShowType, &T::ShowType)
                                  .Property("Priority", &T::Priority, &T::Priority)
                                  .Method("SetSession", &SetSession<T>);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cRosterItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cRosterItem>>("cRoster");
    return table;
}

template <>
const ClassTable& TableOf<Shared<cPresenceItem>>() {
    static const auto table = AddableClass<std::shared_ptr<cPresenceItem>>("cPresence");
    return table;
}

}  // namespace quorix::scripting
