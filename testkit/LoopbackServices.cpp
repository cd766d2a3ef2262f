#include "testkit/LoopbackServices.h"

#include "quorix/base/Jid.h"

namespace quorix::testkit {

namespace {

struct Person {
    StringView jid, nick, first, last;
};

constexpr Person kPeople[] = {
    {u"juliet@localhost", u"jule", u"Juliet", u"Capulet"},
    {u"tybalt@localhost", u"cat", u"Tybalt", u"Capulet"},
    {u"benvolio@localhost", u"ben", u"Benvolio", u"Montague"},
};

bool Matches(const ParsedNode& query, StringView field, StringView value) {
    String wanted = query.Child(field).Text();
    return wanted.empty() || EqualsIgnoringCase(wanted, value);
}

bool Matches(const ParsedNode& query, const Person& person) {
    return Matches(query, u"nick", person.nick) && Matches(query, u"first", person.first) &&
           Matches(query, u"last", person.last);
}

String Hit(const Person& person) {
    return Concat({u"<item jid='", person.jid, u"'><nick>", person.nick, u"</nick><first>", person.first,
                   u"</first><last>", person.last, u"</last></item>"});
}

String RoomStanza(StringView name, StringView attributes, StringView nickname, StringView to,
                  StringView content) {
    return Concat({u"<", name, attributes, u" from='", LoopbackServices::kRoom, u"/", nickname, u"' to='", to,
                   u"'>", content, u"</", name, u">"});
}

bool IsForRoom(const Stanza& stanza) {
    return RemoveResource(stanza.root.Attribute(u"to")) == LoopbackServices::kRoom;
}

}  // namespace

const LoopbackServices::Route LoopbackServices::kRoutes[] = {
    {u"jabber:iq:agents", u"get", u"", &LoopbackServices::AgentList},
    {u"jabber:iq:register", u"get", kGateway, &LoopbackServices::RegistrationForm},
    {u"jabber:iq:register", u"set", kGateway, &LoopbackServices::Accepted},
    {u"jabber:iq:gateway", u"get", kGateway, &LoopbackServices::GatewayInfo},
    {u"jabber:iq:search", u"get", kDirectory, &LoopbackServices::SearchForm},
    {u"jabber:iq:search", u"set", kDirectory, &LoopbackServices::SearchHits},
    {u"vcard-temp", u"set", u"", &LoopbackServices::StoreCard},
    {u"vcard-temp", u"get", u"", &LoopbackServices::Card},
    {u"jabber:iq:private", u"set", u"", &LoopbackServices::StorePrivate},
    {u"jabber:iq:private", u"get", u"", &LoopbackServices::Private},
    {u"jabber:iq:browse", u"get", kConference, &LoopbackServices::Rooms},
    {u"jabber:iq:browse", u"get", kCrowd, &LoopbackServices::ManyRooms},
    {u"jabber:iq:browse", u"get", kRoom, &LoopbackServices::Occupants},
    {u"jabber:iq:conference", u"get", kRoom, &LoopbackServices::RoomFacts},
    {u"jabber:iq:conference", u"set", kRoom, &LoopbackServices::Accepted},
    {u"jabber:iq:version", u"get", u"", &LoopbackServices::Version},
    {u"jabber:iq:time", u"get", u"", &LoopbackServices::Time},
    {u"jabber:iq:last", u"get", u"", &LoopbackServices::LastActivity},
    {u"jabber:iq:oob", u"set", u"", &LoopbackServices::Accepted},
};

std::optional<String> LoopbackServices::Answer(const Stanza& query, StringView user) {
    String nameSpace = query.Query().Attribute(u"xmlns");
    String to = query.root.Attribute(u"to");
    for (const Route& route : kRoutes) {
        bool served = route.to.empty() || route.to == to;
        if (served && route.nameSpace == nameSpace && route.type == query.type) {
            return (this->*route.reply)(query, user);
        }
    }
    return {};
}

// -- Agents --

String LoopbackServices::AgentList(const Stanza& /*query*/, StringView /*user*/) {
    return Concat(
        {u"<query xmlns='jabber:iq:agents'>"
         u"<agent jid='",
         kDirectory,
         u"'><name>User Directory</name><service>jud</service><search/></agent>"
         u"<agent jid='",
         kGateway,
         u"'><name>Gateway</name><service>x</service><register/><transport/></agent>"
         u"<agent jid='",
         kConference, u"'><name>Conference</name><groupchat/></agent></query>"});
}

String LoopbackServices::RegistrationForm(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:register'><instructions>Name and password there.</instructions>"
           u"<username/><password/><key>loopback</key></query>";
}

String LoopbackServices::GatewayInfo(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:gateway'><desc>The name over there</desc><prompt/></query>";
}

String LoopbackServices::SearchForm(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:search'><instructions>Fill in one field or more.</instructions>"
           u"<nick/><first/><last/></query>";
}

String LoopbackServices::SearchHits(const Stanza& query, StringView /*user*/) {
    String hits;
    for (const Person& person : kPeople) {
        if (Matches(query.Query(), person)) hits += Hit(person);
    }
    return Concat({u"<query xmlns='jabber:iq:search'>", hits, u"</query>"});
}

// -- What is kept for an account --

String LoopbackServices::StoreCard(const Stanza& query, StringView user) {
    cards_.insert_or_assign(String(user), query.Query().Xml());
    return {};
}

String LoopbackServices::Card(const Stanza& query, StringView user) {
    String to = RemoveResource(query.root.Attribute(u"to"));
    auto card = cards_.find(to.empty() ? user : StringView(to).substr(0, to.find(u'@')));
    return card == cards_.end() ? u"<vCard xmlns='vcard-temp'/>" : card->second;
}

String LoopbackServices::StorePrivate(const Stanza& query, StringView user) {
    ParsedNode data = query.Query().FirstElement();
    private_.insert_or_assign(Concat({user, u" ", data.Attribute(u"xmlns")}), data.Xml());
    return {};
}

String LoopbackServices::Private(const Stanza& query, StringView user) {
    ParsedNode asked = query.Query().FirstElement();
    auto data = private_.find(Concat({user, u" ", asked.Attribute(u"xmlns")}));
    String content = data == private_.end() ? asked.Xml() : data->second;
    return Concat({u"<query xmlns='jabber:iq:private'>", content, u"</query>"});
}

// -- Rooms --

String LoopbackServices::Rooms(const Stanza& /*query*/, StringView /*user*/) {
    return Concat({u"<conference xmlns='jabber:iq:browse' jid='", kConference,
                   u"' name='Rooms'><item xmlns='jabber:iq:browse' category='conference' type='public' jid='",
                   kRoom, u"' name='The Lobby'/></conference>"});
}

String LoopbackServices::ManyRooms(const Stanza& /*query*/, StringView /*user*/) {
    String rooms;
    for (int number = 1; number <= 20000; ++number) {
        rooms += Concat({u"<item jid='r", ToString(number), u"@", kCrowd, u"' name='Room'/>"});
    }
    return Concat({u"<conference xmlns='jabber:iq:browse'>", rooms, u"</conference>"});
}

String LoopbackServices::Occupants(const Stanza& /*query*/, StringView /*user*/) {
    String users;
    for (const auto& [jid, nickname] : nicknames_) {
        users += Concat({u"<user jid='", kRoom, u"/", nickname, u"' name='", nickname, u"' type='user'/>"});
    }
    return Concat({u"<conference xmlns='jabber:iq:browse' jid='", kRoom, u"' name='The Lobby'><user jid='",
                   kRoom, u"/", kOccupant, u"' name='", kOccupant, u"' type='user'/>", users,
                   u"</conference>"});
}

String LoopbackServices::RoomFacts(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:conference'><name>The Lobby</name><nick/></query>";
}

std::vector<String> LoopbackServices::AnswerPresence(const Stanza& stanza, StringView fullJid) {
    if (!IsForRoom(stanza)) return {};
    String nickname = GetResource(stanza.root.Attribute(u"to"));
    if (stanza.type == u"unavailable") {
        nicknames_.erase(String(fullJid));
        return {RoomStanza(u"presence", u" type='unavailable'", nickname, fullJid, {})};
    }
    nicknames_.insert_or_assign(String(fullJid), nickname);
    return {RoomStanza(u"presence", {}, kOccupant, fullJid, {}),
            RoomStanza(u"presence", {}, nickname, fullJid, {})};
}

std::vector<String> LoopbackServices::AnswerMessage(const Stanza& stanza, StringView fullJid) {
    auto speaker = nicknames_.find(fullJid);
    if (!IsForRoom(stanza) || speaker == nicknames_.end()) return {};
    String body = stanza.root.Child(u"body").Xml();
    return {RoomStanza(u"message", u" type='groupchat'", speaker->second, fullJid, body)};
}

// -- About itself --

String LoopbackServices::Version(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:version'><name>Loopback</name><version>1</version><os>none</os></query>";
}

String LoopbackServices::Time(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:time'><utc>20260102T12:00:00</utc><tz>UTC</tz>"
           u"<display>2 January 2026, noon</display></query>";
}

String LoopbackServices::LastActivity(const Stanza& /*query*/, StringView /*user*/) {
    return u"<query xmlns='jabber:iq:last' seconds='4711'/>";
}

// The sender knows the answer by its namespace.
String LoopbackServices::Accepted(const Stanza& query, StringView /*user*/) {
    return Concat({u"<query xmlns='", query.Query().Attribute(u"xmlns"), u"'/>"});
}

}  // namespace quorix::testkit
