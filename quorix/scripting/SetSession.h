// SetSession of the records: scripts have sessions, records know them by the part they need.
#pragma once

#include "quorix/scripting/Classes.h"
#include "quorix/session/cSession.h"

namespace quorix::scripting {

template <class Record>
void SetSession(Record& record, const std::shared_ptr<cSession>& session) {
    record.SetSession(session);
}

}  // namespace quorix::scripting
