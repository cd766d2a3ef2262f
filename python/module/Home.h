// What one thread has handed out to Python. The library's objects live and end on the thread that made them,
// wherever Python lets go of the last reference.
//
// Threads: any; each Home guards itself.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "quorix/scripting/ClassTable.h"

namespace quorix::python {

// What ends together. The connection first.
struct Body {
    scripting::Instance instance;
    scripting::Connection connection;
};

class Home {
public:
    // The calling thread's.
    static const std::shared_ptr<Home>& Current();

    bool IsCurrent() const;

    std::shared_ptr<Body> Add(scripting::Instance instance);

    // Ends `body` now, or when the thread comes by again.
    void End(std::shared_ptr<Body> body);

    // Ends what other threads let go of.
    void ComeBy() {
        if (hasGraves_) EmptyGraves();
    }

    // The thread ends, and everything on it.
    void Close();

private:
    void EmptyGraves();

    std::mutex mutex_;
    std::unordered_set<std::shared_ptr<Body>> living_;
    std::vector<std::shared_ptr<Body>> graves_;
    std::atomic<bool> hasGraves_{false};
};

}  // namespace quorix::python
