// What a session told, as far as these tests ask.
#pragma once

#include "quorix/im/cMessage.h"
#include "quorix/link/SessionEvents.h"

namespace quorix::real {

class Witness : public SessionEvents {
public:
    void OnAuthorized() override { ++logins; }
    void OnDisConnected() override { ++endings; }
    void OnRosterEnd() override { ++rosters; }
    void OnMessage(const std::shared_ptr<cMessage>& Message) override { body = Message->Body(); }
    void OnSocketError(const NodePtr&, StringView, std::int16_t Code) override { socketError = Code; }

    int logins = 0;
    int endings = 0;
    int rosters = 0;
    int socketError = -1;
    String body;
};

}  // namespace quorix::real
