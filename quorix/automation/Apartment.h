// What one thread has handed out: its wrappers, and what other threads let go of by mistake.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "quorix/scripting/ClassTable.h"

namespace quorix::automation {

class Object;

class Apartment {
public:
    using Key = std::pair<const void*, const scripting::ClassTable*>;

    // The calling thread's.
    static const std::shared_ptr<Apartment>& Current();

    bool IsCurrent() const { return this == Current().get(); }

    // The living wrapper of `key` with one more reference; else the one that `make` returns.
    template <class Make>
    Object* FindOrMake(const Key& key, Make make) {
        std::lock_guard lock(mutex_);
        if (Object* found = FindAlive(key)) return found;
        return wrappers_[key] = make();
    }

    // Forgets a wrapper that ends.
    void Forget(const Key& key, const Object* wrapper);

    // Takes the last reference to an object of this thread that another thread gave up; it ends here, the
    // next time this thread comes by.
    void Bury(std::shared_ptr<void> instance);
    void EmptyGrave();

private:
    Object* FindAlive(const Key& key);

    std::mutex mutex_;
    std::map<Key, Object*> wrappers_;
    std::vector<std::shared_ptr<void>> grave_;
};

}  // namespace quorix::automation
