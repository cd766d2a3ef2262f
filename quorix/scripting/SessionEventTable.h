// A session's events by name, in the order of their numbers, which count from 1.
#pragma once

#include "quorix/scripting/Class.h"
#include "quorix/session/cSession.h"

namespace quorix::scripting {

const std::vector<Event>& SessionEventList();

Connection ListenToSession(const std::shared_ptr<cSession>& session, std::shared_ptr<Listener> listener);

}  // namespace quorix::scripting
