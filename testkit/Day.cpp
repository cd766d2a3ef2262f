#include "testkit/Day.h"

#include "testkit/Senders.h"

namespace quorix::testkit {

namespace {

// An application's own errors, such as that it is not connected any more.
template <class Step>
void Try(Step step) {
    try {
        step();
    } catch (const AutomationError&) {  // NOLINT(bugprone-empty-catch): the day goes on
    }
}

}  // namespace

const std::vector<std::string_view> kStanzas = {
    "<iq type='set'><query xmlns='jabber:iq:roster'><item jid='a@s'><group>g</group></item><item "
    "jid='b@s'/></query></iq>",
    "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent "
    "jid='a'><name>A</name></agent></query></iq>",
    "<iq type='result' from='a'><query xmlns='jabber:iq:register'><key>k</key><x xmlns='jabber:x:data'>"
    "<field var='v'><value>w</value></field></x></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:search'><instructions>i</instructions><b/></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:search'><item jid='a'><b>c</b></item></query></iq>",
    "<iq type='result'><query xmlns='jabber:iq:search'><x xmlns='jabber:x:data'><item><field "
    "var='jid'><value>a</value>"
    "</field><field var='b'><value>c</value></field></item></x></query></iq>",
    "<iq type='result'><vCard xmlns='vcard-temp'><FN>f</FN><TEL><WORK/><NUMBER>1</NUMBER></TEL></vCard></iq>",
    "<iq type='get' id='1' from='a@s'><query xmlns='jabber:iq:version'/></iq>",
    "<iq type='result' from='a@s'><query xmlns='jabber:iq:version'><name>n</name><os>o</os></query></iq>",
    "<iq type='get' id='2' from='a@s'><query xmlns='jabber:iq:time'/></iq>",
    "<iq type='result' from='a@s'><query xmlns='jabber:iq:time'><utc>20020910T17:58:35</utc></query></iq>",
    "<iq type='get' id='3' from='a@s'><query xmlns='jabber:iq:last'/></iq>",
    "<iq type='result' from='a@s'><query xmlns='jabber:iq:last' seconds='9'/></iq>",
    "<iq type='result' id='gcsrv_' from='c'><conference xmlns='jabber:iq:browse'><item jid='r@c' "
    "name='r'/></conference></iq>",
    "<iq type='result' id='gcroom_' from='r@c'><conference xmlns='jabber:iq:browse'><user "
    "jid='a@s'/></conference></iq>",
    "<iq type='result'><query xmlns='jabber:iq:admin'><presence "
    "from='a@s'><status>x</status></presence></query></iq>",
    "<iq type='result' from='r@c'><query xmlns='jabber:iq:conference'><name>n</name><secret/></query></iq>",
    "<iq type='set' from='a@s'><query xmlns='jabber:iq:oob'><url>u</url><desc>d</desc></query></iq>",
    "<iq type='error' from='a@s'><query xmlns='jabber:iq:oob'/></iq>",
    "<iq type='result' from='g'><query "
    "xmlns='jabber:iq:gateway'><desc>d</desc><prompt>p</prompt></query></iq>",
    "<iq type='error' id='4'><error code='404'>No</error></iq>",
    "<iq type='error' id='5'><error type='cancel'><item-not-found/></error></iq>",
    "<iq type='result' id='6'/>",
    "<iq type='result' id='kv_changepass'/>",
    "<iq type='result' id='kv_removeaccount'/>",
    "<presence from='a@s/r'><show>away</show><status>x</status><priority>1</priority></presence>",
    "<presence from='r@c/a'/>",
    "<presence from='a@s/r' type='unavailable'/>",
    "<presence from='a@s' type='subscribe'><status>x</status></presence>",
    "<presence from='a@s' type='unsubscribe'/>",
    "<presence from='a@s' type='subscribed'/>",
    "<presence from='a@s' type='unsubscribed'/>",
    "<message from='a@s'><body>x</body><x xmlns='jabber:x:event'><composing/><delivered/></x></message>",
    "<message from='a@s' type='chat'><subject>s</subject><thread>t</thread><html "
    "xmlns='http://www.w3.org/1999/xhtml'>"
    "<body><p>x</p></body></html><x xmlns='jabber:x:delay' stamp='20020910T23:08:25'/></message>",
    "<message from='a@s'><x xmlns='jabber:x:oob'><url>u</url></x><x xmlns='jabber:x:data'><field "
    "var='v'/></x></message>",
    "<message from='a@s'><x xmlns='jabber:x:roster'><item jid='b@s'/><item jid='c@s'/></x></message>",
    "<message from='a@s'><body>b</body><x xmlns='jabber:x:conference' jid='r@c'/></message>",
    "<message from='a@s' type='error'><error code='503'>No</error></message>",
    "<presence from='r@c/n' type='unavailable'/>",
};

Day::Day(eMode mode) {
    session->Mode(mode);
    session->Advise(events);
    session->ServerAddress(u"s");
    session->Port(5222);
    session->username(u"u");
    session->Password(u"p");
    session->Resource(u"r");
    session->AuthType(KV_PlainAuth);
    session->Reconnect(false);
}

void Day::Run() {
    environment.RefuseConnections(SOCKERR_Refused);
    Connect(false);
    environment.RefuseConnections(SOCKERR_None);
    Connect(true);
    Say(kStreamHeader);
    Say("<iq type='result' id='kv_newuser'/>");
    Connect(false);
    Say(kStreamHeader);
    Say("<iq type='result'><query xmlns='jabber:iq:auth'><username/><password/><resource/></query></iq>");
    Say("<iq type='result' id='kv_login'/>");
    for (std::string_view stanza : kStanzas) Say(stanza);
    SendEverything();
    Say("<stream:error><conflict xmlns='urn:ietf:params:xml:ns:xmpp-streams'/></stream:error>");
}

bool Day::LeavesNothing() {
    events->hook = nullptr;
    session.reset();
    environment.DoEvents();
    return environment.OpenSockets() + environment.RunningTimers() + environment.OpenWindows() == 0;
}

// The connection that is open may be a handler's.
void Day::Connect(bool newUser) {
    if (session) Try([&] { std::shared_ptr<cSession>(session)->Connect(newUser); });
    environment.DoEvents();
}

void Day::SendEverything() {
    for (const Sender& sender : kSenders) {
        if (!session) return;
        Try([&] { sender.send(*std::shared_ptr<cSession>(session), [] { return String(u"x"); }); });
    }
}

void Day::Say(std::string_view bytes) {
    if (environment.PeerCount() > 0) environment.Peer().Say(bytes);
    environment.DoEvents();
}

}  // namespace quorix::testkit
