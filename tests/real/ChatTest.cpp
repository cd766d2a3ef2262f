// Contacts and messages between accounts on each kind of server.
#include <gmock/gmock.h>

#include "tests/real/Person.h"

namespace quorix::real {
namespace {

using ::testing::HasSubstr;

class Chat : public RealServerTest {};

TEST_P(Chat, ASubscriptionIsAskedForGrantedAndEnded) {
    Person ann(Server().Port(), u"sub.ann", u"home");
    Person bob(Server().Port(), u"sub.bob", u"work");
    ASSERT_TRUE(ann.Join() && bob.Join());

    ann->SendPresence(bob.jid, KV_Subscribe, u"bitte & d\u00e9j\u00e0");
    ASSERT_TRUE(bob.Sees("OnSubscriptionRequest sub.ann@localhost 2"));
    ASSERT_TRUE(ann.Await([&] { return ann.Contact(bob) && ann.Contact(bob)->Ask() == u"subscribe"; }));

    bob->SendPresence(ann.jid, KV_Subscribe_Accept, u"");
    ASSERT_TRUE(ann.Sees("OnSubscriptionAccept sub.bob@localhost"));
    ASSERT_TRUE(ann.Await([&] { return ann.Contact(bob)->Subscription() == KV_To; }));
    ASSERT_TRUE(bob.Await([&] { return bob.Contact(ann) && bob.Contact(ann)->Subscription() == KV_From; }));
    ASSERT_TRUE(ann.Await([&] { return ann->FindPresence(bob.jid, u"work", true) > 0; }));

    bob->Status(u"\u00e9crit");
    bob->ShowType(KV_Away);
    bob->SendMyPresence();
    ASSERT_TRUE(ann.Sees("OnPresence sub.bob@localhost work 1 2"));
    EXPECT_EQ(ann.log->presences.back()->Status(), u"\u00e9crit");

    ann->SendPresence(bob.jid, KV_UnSubscribe, u"");
    EXPECT_TRUE(bob.Sees("OnSubscriptionRequest sub.ann@localhost 3"));
    EXPECT_TRUE(ann.Await([&] { return ann.Contact(bob)->Subscription() == KV_Empty; }));

    // Prosody does not take back the presence that it has shown; it stays until the contact goes.
    bool isTakenBack = GetParam() != ServerKind::prosody;
    ASSERT_TRUE(bob.Settle() && ann.Settle());
    EXPECT_EQ(ann.HasSeen("OnPresence sub.bob@localhost work 0"), isTakenBack);
    EXPECT_EQ(ann->FindPresence(bob.jid, u"work", true) > 0, !isTakenBack);
}

TEST_P(Chat, EventsThatAMessageAsksForComeBack) {
    Person ann(Server().Port(), u"ev.ann", u"caf\u00e9");
    Person bob(Server().Port(), u"ev.bob", u"work");
    ASSERT_TRUE(ann.Join() && bob.Join());
    auto message =
        ann->CreateMessage(u"ev.bob@localhost/work", MSG_Chat, u"a<b & \"Grüße\" Привет 中", u"été");
    message->AddEvent(KV_Displayed);
    message->AddEvent(KV_Composing);
    message->SendMessage();
    const std::string annsJid = "ev.ann@localhost/caf\xc3\x83\xc2\xa9";  // wire text
    ASSERT_TRUE(bob.Sees("OnMessage a<b") && bob.Sees("OnMessageEvent 0 1 " + annsJid) &&
                bob.Sees("OnMessageEvent 0 2 " + annsJid));

    const auto heard = bob.log->messages.back();
    EXPECT_EQ(heard->Body(), u"a<b & \"Grüße\" Привет 中");
    EXPECT_EQ(heard->Subject(), u"été");
    EXPECT_EQ(heard->MSG_Type(), MSG_Chat);
    bob->SendEvent(heard->FromJid(), KV_Displayed, heard->ID());
    bob->SendEvent(heard->FromJid(), KV_Composing, heard->ID());
    bob->SendEvent(heard->FromJid(), KV_Composing, heard->ID(), true);
    EXPECT_TRUE(ann.Sees("OnMessageEvent 1 2 ev.bob@localhost/work"));
    EXPECT_TRUE(ann.Sees("OnMessageEvent 1 1 ev.bob@localhost/work"));
    EXPECT_TRUE(ann.Sees("OnMessage ")) << "the report taken back names no event";
}

TEST_P(Chat, AMessageWaitsForItsRecipient) {
    Person ann(Server().Port(), u"off.ann", u"home");
    Person bob(Server().Port(), u"off.bob", u"work");
    ASSERT_TRUE(ann.Join() && bob.Join());
    bob->SendXML(u"<presence to='off.ann@localhost/home'/>");
    ASSERT_TRUE(ann.Sees("OnPresence off.bob@localhost work 1"));
    bob->Disconnect();
    ASSERT_TRUE(ann.Sees("OnPresence off.bob@localhost work 0"));
    ann->CreateMessage(bob.jid, MSG_Chat, u"sp\u00e4ter", u"")->SendMessage();
    ASSERT_TRUE(ann.Settle());

    ASSERT_TRUE(bob.Return());
    ASSERT_TRUE(bob.Await([&] { return !bob.log->messages.empty(); }));
    EXPECT_EQ(bob.log->messages.back()->Body(), u"sp\u00e4ter");
    EXPECT_THAT(Utf8FromText(bob.log->messages.back()->xml()), HasSubstr("urn:xmpp:delay"));
    EXPECT_EQ(bob.log->messages.back()->Stamp(), u"") << "no server writes the older form any more";
}

QUORIX_ON_EVERY_SERVER(Chat);

}  // namespace
}  // namespace quorix::real
