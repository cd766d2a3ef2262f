#include "quorix/session/EventSinks.h"

#include <algorithm>
#include <utility>

namespace quorix {

bool EventSinks::Has(const std::shared_ptr<SessionEvents>& sink) const {
    return std::find(sinks_->begin(), sinks_->end(), sink) != sinks_->end();
}

void EventSinks::Advise(std::shared_ptr<SessionEvents> sink) {
    if (!sink || Has(sink)) return;
    auto list = std::make_shared<List>(*sinks_);
    list->push_back(std::move(sink));
    sinks_ = std::move(list);
}

void EventSinks::Unadvise(const std::shared_ptr<SessionEvents>& sink) {
    auto list = std::make_shared<List>(*sinks_);
    std::erase(*list, sink);
    sinks_ = std::move(list);
}

bool EventSinks::WantWireText() const {
    return std::any_of(sinks_->begin(), sinks_->end(),
                       [](const auto& sink) { return sink->WantsWireText(); });
}

void EventSinks::ForEach(const std::function<void(SessionEvents&)>& raise) const {
    std::shared_ptr<const List> started = sinks_;
    for (const std::shared_ptr<SessionEvents>& sink : *started) {
        if (started != sinks_ && !Has(sink)) continue;
        try {
            raise(*sink);
        } catch (...) {  // NOLINT(bugprone-empty-catch): a handler that throws does not stop the session
        }
    }
}

}  // namespace quorix
