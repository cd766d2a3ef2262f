// The services on servers that people run. None of them answers browsing or conference queries any more, and
// only jabberd2 lists agents.
#include <chrono>
#include <set>
#include <thread>

#include "quorix/platform/Environment.h"
#include "quorix/session/cSession.h"
#include "tests/real/Servers.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::real {
namespace {

using tests::Lines;

constexpr std::chrono::seconds kPatience{10};

// What the services raise, and the events around them.
class Log : public tests::ServiceLog {
public:
    void OnAuthorized() override { happened.insert("Authorized"); }
    void OnNewUserCreated() override { happened.insert("NewUserCreated"); }
    void OnChangedPassword() override { happened.insert("ChangedPassword"); }
    void OnAccountRemoved(StringView, StringView) override { happened.insert("AccountRemoved"); }
    void OnDisConnected() override { happened.insert("DisConnected"); }
    void OnIQResult(const NodePtr&, StringView) override { happened.insert("IQResult"); }
    // Some servers send a text with an error, some a code.
    void OnIQError(const NodePtr& node, StringView, std::int16_t code, StringView text) override {
        happened.insert("IQError");
        errorOf = node->Root().Attribute(u"id");
        errorText = Utf8FromText(text);
        errorCode = code;
    }
    void OnIQ(const NodePtr& node) override { iqs.push_back(Utf8FromText(node->xml())); }
    void OnMessage(const std::shared_ptr<cMessage>& message) override {
        said.push_back(Utf8FromText(message->Body()));
    }
    void OnPresence(const std::shared_ptr<cPresenceItem>& item, bool available, StringView, std::int32_t kind,
                    const NodePtr&) override {
        if (kind == KV_GroupChatItem && available) occupants.insert(Utf8FromText(item->Resource()));
    }
    void OnSearchResults(const std::shared_ptr<cSearchResults>& found) override { results = found; }
    void OnVersionRequest(StringView from, StringView id) override {
        asker = from;
        ServiceLog::OnVersionRequest(from, id);
    }
    void OnOOBRequest(StringView from, StringView desc, StringView url) override {
        asker = from;
        ServiceLog::OnOOBRequest(from, desc, url);
    }

    bool Has(const std::string& event) const { return happened.count(event) > 0; }

    std::set<std::string> happened;
    Lines iqs;
    Lines said;
    std::set<std::string> occupants;
    String errorOf;
    std::string errorText;
    int errorCode = 0;
    String asker;
    std::shared_ptr<cSearchResults> results;
};

class Client {
public:
    Client(int port, StringView user, StringView password = u"secret") {
        session->Advise(log);
        session->ServerAddress(u"localhost");
        session->Port(static_cast<std::int16_t>(port));
        session->username(user);
        session->Password(password);
        session->Resource(u"home");
        session->Reconnect(false);
    }
    ~Client() { session->Disconnect(); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool Wait(const std::function<bool()>& reached) {
        auto end = std::chrono::steady_clock::now() + kPatience;
        while (!reached()) {
            if (std::chrono::steady_clock::now() > end) return false;
            Environment::Current().DoEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool WaitFor(const std::string& event) {
        return Wait([&] { return log->Has(event); });
    }
    // True when a line of the log begins so.
    bool WaitForLine(const std::string& begin) {
        return Wait([&] {
            for (const std::string& line : log->Take()) lines.push_back(line);
            for (const std::string& line : lines) {
                if (line.rfind(begin, 0) == 0) return true;
            }
            return false;
        });
    }
    bool WaitForIq(const std::string& part) {
        return Wait([&] {
            for (const std::string& iq : log->iqs) {
                if (iq.find(part) != std::string::npos) return true;
            }
            return false;
        });
    }

    bool Register() {
        session->Connect(true);
        return WaitFor("Authorized");
    }

    String FullJid() const { return session->MyJid() + u"/home"; }

    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Log> log = std::make_shared<Log>();
    Lines lines;
};

class Services : public RealServerTest {
protected:
    int Port() const { return Server().Port(); }

    // Takes the name when it is.
    bool IsFree(StringView name) const {
        Client client(Port(), name);
        client.session->Connect(true);
        client.Wait([&] { return client.log->Has("NewUserCreated") || client.log->Has("IQError"); });
        return client.log->Has("NewUserCreated");
    }
};

TEST_P(Services, CreateChangeAndRemoveAnAccount) {
    {
        Client client(Port(), u"rosa");
        client.session->Connect(true);
        ASSERT_TRUE(client.WaitFor("NewUserCreated"));
        ASSERT_TRUE(client.WaitFor("Authorized"));
        client.session->ChangePassword(u"another");
        ASSERT_TRUE(client.WaitFor("ChangedPassword"));
    }
    {
        Client client(Port(), u"rosa", u"another");
        client.session->Connect();
        ASSERT_TRUE(client.WaitFor("Authorized"));
        client.session->RemoveAccount();
        // The others send the result in one chunk with the end of the stream, and so it is lost.
        if (GetParam() == ServerKind::ejabberd) {
            EXPECT_TRUE(client.WaitFor("AccountRemoved"));
        }
        EXPECT_TRUE(client.Wait([&] { return IsFree(u"rosa"); }));
    }
}

TEST_P(Services, RefuseAnAccountThatIsThere) {
    Client first(Port(), u"taken");
    ASSERT_TRUE(first.Register());
    Client second(Port(), u"taken");
    second.session->Connect(true);
    EXPECT_TRUE(second.WaitFor("IQError"));
    EXPECT_EQ(second.log->errorOf, u"kv_newuser");
    EXPECT_TRUE(second.log->errorCode == 409 || !second.log->errorText.empty());
    EXPECT_FALSE(second.log->Has("NewUserCreated"));
}

TEST_P(Services, TellVersionAndLastActivity) {
    Client client(Port(), u"curious");
    ASSERT_TRUE(client.Register());
    client.session->SendVersionRequest(u"localhost");
    EXPECT_TRUE(client.WaitForLine("VersionResult localhost ")) << client.log->errorText;
    // Prosody knows it of accounts, the others of themselves.
    bool ofAccounts = GetParam() == ServerKind::prosody;
    client.session->SendLastSeenRequest(ofAccounts ? client.session->MyJid() : String(u"localhost"));
    EXPECT_TRUE(client.WaitForLine("LastSeenResult iq ")) << client.log->errorText;
}

TEST_P(Services, TellTheTimeInTheOldWayOrRefuse) {
    Client client(Port(), u"late");
    ASSERT_TRUE(client.Register());
    client.session->SendTimeRequest(u"localhost");
    if (GetParam() == ServerKind::prosody) {
        EXPECT_TRUE(client.WaitForLine("TimeResult localhost "));
    } else {
        EXPECT_TRUE(client.WaitFor("IQError"));
    }
}

TEST_P(Services, CarryQuestionsAndOffersBetweenClients) {
    Client asker(Port(), u"asker");
    Client asked(Port(), u"asked");
    ASSERT_TRUE(asker.Register());
    ASSERT_TRUE(asked.Register());
    asker.session->SendMyPresence();
    asked.session->SendMyPresence();

    asker.session->SendVersionRequest(asked.FullJid());
    ASSERT_TRUE(asked.WaitForLine("VersionRequest asker@localhost/home "));
    asked.session->SendVersionResponse(asked.log->asker, u"Name", u"1", u"OS");
    EXPECT_TRUE(asker.WaitForLine("VersionResult asked@localhost/home Name 1 OS"));

    asker.session->SendOOBRequest(asked.FullJid(), u"caf\u00e9", u"http://localhost/file");
    ASSERT_TRUE(asked.WaitForLine("OOBRequest asker@localhost"));
    asked.session->SendOOBComplete(asker.FullJid());
    EXPECT_TRUE(asker.WaitForLine("OOBResult asked@localhost"));
}

TEST_P(Services, KeepPrivateData) {
    Client client(Port(), u"keeper");
    ASSERT_TRUE(client.Register());
    client.session->StorePrivateData(u"notes:mine", u"<text>remember</text>");
    ASSERT_TRUE(client.WaitFor("IQResult"));
    client.session->SendXML(
        u"<iq type='get' id='p'><query xmlns='jabber:iq:private'><notes xmlns='notes:mine'/></query></iq>");
    EXPECT_TRUE(client.WaitForIq("<text>remember</text>"));
}

TEST_P(Services, PublishACardAndShowItToOthers) {
    Client owner(Port(), u"owner");
    ASSERT_TRUE(owner.Register());
    auto card = std::make_shared<cVcard>();
    card->FullName(u"Zo\u00eb & Co <x>");
    card->HomeCity(u"K\u00f6ln");
    card->BusinessPhone(u"123");
    owner.session->UpdateVcard(card);
    ASSERT_TRUE(owner.WaitFor("IQResult"));

    Client reader(Port(), u"reader");
    ASSERT_TRUE(reader.Register());
    reader.session->SendVCardRequest(u"owner@localhost");
    if (GetParam() == ServerKind::jabberd2) {
        EXPECT_TRUE(reader.WaitForLine("VCardResult owner@localhost"));
    } else {
        EXPECT_TRUE(reader.WaitFor("IQError"));  // they know no VCARD in upper case
    }
    reader.lines.clear();
    reader.session->SendXML(u"<iq type='get' id='c' to='owner@localhost'><vCard xmlns='vcard-temp'/></iq>");
    ASSERT_TRUE(reader.WaitForLine("VCardResult owner@localhost"));
    EXPECT_EQ(reader.log->vcard->FullName(), u"Zo\u00eb & Co <x>");
    EXPECT_EQ(reader.log->vcard->HomeCity(), u"K\u00f6ln");
    // jabberd2 keeps one number and no markers.
    if (GetParam() != ServerKind::jabberd2) {
        EXPECT_EQ(reader.log->vcard->BusinessPhone(), u"123");
    }
}

// Only ejabberd has a directory of its users, and still understands the oldest form of entering a room: a
// directed presence and nothing else.
class EjabberdServices : public Services {};

TEST_P(EjabberdServices, FindPublishedPeople) {
    Client client(Port(), u"seeker");
    ASSERT_TRUE(client.Register());
    auto card = std::make_shared<cVcard>();
    card->FullName(u"Needle Haystack");
    client.session->UpdateVcard(card);
    ASSERT_TRUE(client.WaitFor("IQResult"));

    client.session->SendXML(
        u"<iq type='get' id='f' to='vjud.localhost'><query xmlns='jabber:iq:search'/></iq>");
    ASSERT_TRUE(client.WaitForLine("SearchFields "));
    auto form = client.session->SearchXData();
    EXPECT_NE(form->Title(), u"");
    Collection<String> vars;
    for (const auto& field : form->Fields()) {
        if (!vars.HasKey(field->Var())) vars.Add(field->Var(), field->Var());
    }
    ASSERT_TRUE(vars.HasKey(u"fn"));

    client.session->SendXML(
        u"<iq type='set' id='s' to='vjud.localhost'><query xmlns='jabber:iq:search'><x xmlns='jabber:x:data' "
        u"type='submit'><field var='fn'><value>Needle Haystack</value></field></x></query></iq>");
    ASSERT_TRUE(client.Wait([&] { return client.log->results != nullptr; }));
    EXPECT_EQ(client.log->results->Item(1)->SearchItem(), u"seeker@localhost");
    EXPECT_EQ(client.session->SearchFields()->Count(), 0);
}

TEST_P(EjabberdServices, EnterSpeakInAndLeaveARoom) {
    Client client(Port(), u"speaker");
    ASSERT_TRUE(client.Register());
    client.session->SendMyPresence();
    auto room = std::make_shared<cGroupChat>();
    room->JID(u"lobby@conference.localhost");
    room->NickName(u"Me");
    client.session->SendGroupChatRequest(room, true);
    EXPECT_EQ(client.session->FindItemType(room->JID()), KV_GroupChatItem);
    ASSERT_TRUE(client.Wait([&] { return client.log->occupants.count("Me") > 0; }));

    client.session->CreateMessage(room->JID(), MSG_GroupChat, u"h\u00e9llo", {})->SendMessage();
    EXPECT_TRUE(client.Wait(
        [&] { return std::count(client.log->said.begin(), client.log->said.end(), "h\xc3\xa9llo") == 1; }));

    client.session->SendGroupChatRequest(room, false);
    EXPECT_EQ(client.session->FindGroupChat(room->JID()), 0);
}

TEST_P(Services, ListAgentsOrRefuse) {
    Client client(Port(), u"nostalgic");
    ASSERT_TRUE(client.Register());
    client.session->FetchAgents();
    EXPECT_TRUE(client.WaitForLine("AgentEnd"));
    EXPECT_EQ(client.log->Has("IQError"), GetParam() != ServerKind::jabberd2);
}

QUORIX_ON_EVERY_SERVER(Services);
INSTANTIATE_TEST_SUITE_P(Real, EjabberdServices, ::testing::Values(ServerKind::ejabberd),
                         [](const auto& kind) { return Name(kind.param); });

}  // namespace
}  // namespace quorix::real
