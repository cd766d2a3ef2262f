#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

struct Request {
    void (*send)(cSession&);
    std::string bytes;  // KV_n stands for a fresh id
};

TEST_F(LoggedIn, EachRequestIsWrittenExactlyAndUnderAFreshIdOrNone) {
    const Request requests[] = {
        {[](cSession& s) { s.SendVersionRequest(u"j"); },
         "<iq type='get' id='KV_n' to='j'><query xmlns='jabber:iq:version'></query></iq>"},
        {[](cSession& s) { s.SendTimeRequest(u"j"); },
         "<iq type='get' id='KV_n' to='j'><query xmlns='jabber:iq:time'></query></iq>"},
        {[](cSession& s) { s.SendLastSeenRequest(u"j"); },
         "<iq type='get' id='KV_n' to='j'><query xmlns='jabber:iq:last'></query></iq>"},
        {[](cSession& s) { s.SendVersionResponse(u"j", u"n", u"<", u"o"); },
         "<iq type='result' id='KV_n' to='j'><query xmlns='jabber:iq:version'><name>n</name>"
         "<version>&lt;</version><os>o</os></query></iq>"},
        {[](cSession& s) { s.SendTimeResponse(u"j", u"u", u"z", u"d"); },
         "<iq type='result' id='KV_n' to='j'><query xmlns='jabber:iq:time'><utc>u</utc><tz>z</tz>"
         "<display>d</display></query></iq>"},
        {[](cSession& s) { s.SendGetLastResponse(u"j", u""); },
         "<iq type='result' id='KV_n' to='j'><query xmlns='jabber:iq:last' seconds=''/></iq>"},
        {[](cSession& s) { s.SendOOBRequest(u"j", u"\u00e9&", u"http://h/\u20ac"); },
         "<iq type='set' from='u@s' to='j' id='KV_n'><query xmlns='jabber:iq:oob'>"
         "<desc>é&amp;</desc><url>http://h/€</url></query></iq>"},
        {[](cSession& s) { s.SendOOBComplete(u"j"); },
         "<iq type='result' from='u@s' to='j' id='KV_n'><query xmlns='jabber:iq:oob'><desc/><url/>"
         "</query></iq>"},
        {[](cSession& s) { s.StorePrivateData(u"a:b:c", u"<d/>"); },
         "<iq type='set' id='KV_n'><query xmlns='jabber:iq:private'><a "
         "xmlns='a:b:c'><d/></a></query></iq>"},
        {[](cSession& s) { s.SendVCardRequest(u"a@b"); },
         "<iq type='get' id='KV_n' to='a@b'><VCARD xmlns='vcard-temp'/></iq>"},
        {[](cSession& s) { s.ChangePassword(u"n<w"); },
         "<iq type='set' to='s' id='kv_changepass'><query xmlns='jabber:iq:register'>"
         "<username>u</username><password>n<w</password></query></iq>"},
        {[](cSession& s) { s.RemoveAccount(); },
         "<iq type='set' to='s' id='kv_removeaccount'><query "
         "xmlns='jabber:iq:register'><remove/></query></iq>"},
        {[](cSession& s) { s.FetchAgents(); },
         "<iq id='fullagents' to='s' type='get'><query xmlns='jabber:iq:agents'/></iq>"},
        {[](cSession& s) { s.GetAgentRegister(u"j", u"i"); },
         "<iq type='get' id='i' to='j'><query xmlns='jabber:iq:register'></query></iq>"},
        {[](cSession& s) { s.SendGCInvite10(u"a@b", u"r@c"); },
         "<message id='KV_n' to='a@b'><x xmlns='jabber:x:conference' jid='r@c'/>"
         "<subject>Invite to Groupchat:r@c</subject><body/></message>"},
        {[](cSession& s) { s.BrowseChatServer(u"\u00e9", u"7"); },
         "<iq type='get' to='é' id='gcsrv_7'><item xmlns='jabber:iq:browse'/></iq>"},
        {[](cSession& s) { s.BrowseChatRoom(u"r@c", u"7"); },
         "<iq type='get' to='r@c' id='gcroom_7'><item xmlns='jabber:iq:browse'/></iq>"},
        {[](cSession& s) { s.SendGroupChatPresence(u"r@c", KV_Away, u""); },
         "<presence to='r@c'><show>away</show></presence>"},
        {[](cSession& s) { s.SendGroupChatPresence(u"r@c", KV_DND, u"<"); },
         "<presence to='r@c'><show>dnd</show><status>&lt;</status></presence>"},
        {[](cSession& s) { s.SendGroupChatPresence(u"r@c", KV_ExtendedAway, u""); },
         "<presence to='r@c'><show></show></presence>"},
        {[](cSession& s) { s.UpdateVcard(nullptr); }, ""},
    };
    std::string id = "KV_1";
    for (auto [send, bytes] : requests) {
        send(*session);
        if (std::size_t at = bytes.find("KV_n"); at != std::string::npos) {
            const std::string former = std::exchange(id, Utf8FromText(session->GetCurrentID()));
            EXPECT_NE(id, former) << bytes;
            bytes.replace(at, 4, id);
        }
        EXPECT_EQ(Heard(), bytes);
        EXPECT_EQ(Utf8FromText(session->GetCurrentID()), id) << bytes;
    }
    EXPECT_EQ(session->getPrivateData(u"a:b"), u"");
    EXPECT_EQ(ErrorOf([&] { session->StorePrivateData(u"ab", u""); }), ERR_InvalidCall);
    EXPECT_EQ(Heard(), "");
}

}  // namespace
}  // namespace quorix
