// The sinks of one session. They may come and go inside an event.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "quorix/link/SessionEvents.h"

namespace quorix {

class EventSinks {
public:
    // A sink that is already there is not added twice.
    void Advise(std::shared_ptr<SessionEvents> sink);
    void Unadvise(const std::shared_ptr<SessionEvents>& sink);

    bool WantWireText() const;

    // Calls `raise` for each sink that was there at the start and still is. What a sink throws ends with it.
    void ForEach(const std::function<void(SessionEvents&)>& raise) const;

private:
    using List = std::vector<std::shared_ptr<SessionEvents>>;

    bool Has(const std::shared_ptr<SessionEvents>& sink) const;

    // Replaced as a whole, so that an event in progress keeps walking the list it began with.
    std::shared_ptr<const List> sinks_ = std::make_shared<List>();
};

}  // namespace quorix
