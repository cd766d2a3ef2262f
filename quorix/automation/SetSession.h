// SetSession of the records: automation clients have sessions, records know them by the part they need.
#pragma once

#include "quorix/automation/Classes.h"
#include "quorix/session/cSession.h"

namespace quorix::automation {

template <class Record>
void SetSession(Record& record, const std::shared_ptr<cSession>& session) {
    record.SetSession(session);
}

}  // namespace quorix::automation
