// What the loopback server offers besides chat: a user directory to search, a gateway to register with, a
// conference server with one room, business cards, private storage, and answers about itself.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "quorix/link/Stanza.h"

namespace quorix::testkit {

class LoopbackServices {
public:
    static constexpr StringView kDirectory = u"users.localhost";
    static constexpr StringView kGateway = u"gateway.localhost";
    static constexpr StringView kConference = u"conference.localhost";
    static constexpr StringView kCrowd = u"crowd.localhost";  // another, with thousands of rooms
    static constexpr StringView kRoom = u"lobby@conference.localhost";
    static constexpr StringView kOccupant = u"Echo";

    // The content of the result to a query from the account `user`; nothing when nobody serves it.
    std::optional<String> Answer(const Stanza& query, StringView user);

    // The stanzas that come back, to be sent as they are; none when `stanza` is not for the room.
    std::vector<String> AnswerPresence(const Stanza& stanza, StringView fullJid);
    std::vector<String> AnswerMessage(const Stanza& stanza, StringView fullJid);

private:
    using Reply = String (LoopbackServices::*)(const Stanza&, StringView user);
    struct Route {
        StringView nameSpace;
        StringView type;
        StringView to;  // "" for anybody
        Reply reply;
    };
    static const Route kRoutes[];

    String AgentList(const Stanza& query, StringView user);
    String RegistrationForm(const Stanza& query, StringView user);
    String SearchForm(const Stanza& query, StringView user);
    String SearchHits(const Stanza& query, StringView user);
    String GatewayInfo(const Stanza& query, StringView user);
    String StoreCard(const Stanza& query, StringView user);
    String Card(const Stanza& query, StringView user);
    String StorePrivate(const Stanza& query, StringView user);
    String Private(const Stanza& query, StringView user);
    String Rooms(const Stanza& query, StringView user);
    String ManyRooms(const Stanza& query, StringView user);
    String Occupants(const Stanza& query, StringView user);
    String RoomFacts(const Stanza& query, StringView user);
    String Version(const Stanza& query, StringView user);
    String Time(const Stanza& query, StringView user);
    String LastActivity(const Stanza& query, StringView user);
    String Accepted(const Stanza& query, StringView user);

    std::map<String, String, std::less<>> cards_;      // by account
    std::map<String, String, std::less<>> private_;    // by account and namespace
    std::map<String, String, std::less<>> nicknames_;  // in the room, by full JID
};

}  // namespace quorix::testkit
