#include "quorix/automation/Apartment.h"

#include "quorix/automation/Object.h"

namespace quorix::automation {

const std::shared_ptr<Apartment>& Apartment::Current() {
    thread_local const auto current = std::make_shared<Apartment>();
    return current;
}

Object* Apartment::FindAlive(const Key& key) {
    auto found = wrappers_.find(key);
    return found != wrappers_.end() && found->second->KeepAlive() ? found->second : nullptr;
}

void Apartment::Forget(const Key& key, const Object* wrapper) {
    std::lock_guard lock(mutex_);
    auto found = wrappers_.find(key);
    if (found != wrappers_.end() && found->second == wrapper) wrappers_.erase(found);
}

void Apartment::Bury(std::shared_ptr<void> instance) {
    std::lock_guard lock(mutex_);
    grave_.push_back(std::move(instance));
}

void Apartment::EmptyGrave() {
    std::vector<std::shared_ptr<void>> ending;
    {
        std::lock_guard lock(mutex_);
        ending.swap(grave_);
    }
}

}  // namespace quorix::automation
