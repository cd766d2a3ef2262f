// Everything that an application sends, whatever values it gives.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "quorix/session/cSession.h"

namespace quorix::testkit {

using Values = std::function<String()>;

// Calls the session with the values that `values` gives one after the other. Some need an agent named "A",
// and end with an AutomationError where the session knows none.
struct Sender {
    const char* name;
    void (*send)(cSession& session, const Values& values);
};
extern const std::vector<Sender> kSenders;

std::shared_ptr<cGroupChat> RoomOf(StringView jid, StringView nickname);

}  // namespace quorix::testkit
