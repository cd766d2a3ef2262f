#include "quorix/session/SessionCore.h"

#include <utility>

#include "quorix/auth/Account.h"
#include "quorix/auth/cAuth.h"
#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/im/Presence.h"
#include "quorix/link/StanzaText.h"
#include "quorix/session/Dispatcher.h"

namespace quorix {

namespace {

constexpr StringView kStreamsNamespace = u"http://etherx.jabber.org/streams";

// Sets a flag while in scope.
class Flagged {
public:
    explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
    ~Flagged() { flag_ = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& flag_;
};

}  // namespace

// Marks one reference as held by an entry in progress, so that it does not count as the application's.
class SessionCore::Held {
public:
    explicit Held(SessionCore& session) : session_(session) { ++session_.held_; }
    ~Held() { --session_.held_; }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

private:
    SessionCore& session_;
};

// A call from the application, which may drop its last reference meanwhile.
class SessionCore::Entry {
public:
    explicit Entry(SessionCore& session) : self_(session.shared_from_this()), held_(session) {}
    const std::shared_ptr<SessionLink>& Self() const { return self_; }

private:
    std::shared_ptr<SessionLink> self_;
    Held held_;
};

// The socket holds the session only while it raises an event; that reference is one of an entry in progress.
class SessionCore::SocketPort : public SocketEvents {
public:
    explicit SocketPort(SessionCore& session) : session_(session) {}

    void OnConnect() override {
        Deliver([&session = session_] { session.socket1_Connect(); });
    }
    void OnClosed() override {
        Deliver([&session = session_] { session.socket1_Closed(); });
    }
    void OnError(std::int32_t Number, StringView Description) override {
        Deliver([&session = session_, Number, text = String(Description)] {
            session.socket1_Error(Number, text);
        });
    }
    // Most often nothing has to wait, and the bytes are taken where they are.
    void OnDataArrival(std::string_view bytes, StringView /*remoteHost*/) override {
        if (session_.MustWait()) {
            Deliver([&session = session_, data = std::string(bytes)] { session.socket1_DataArrival(data); });
            return;
        }
        Held held(session_);
        session_.TakeNow([&] { session_.socket1_DataArrival(bytes); });
    }

private:
    void Deliver(std::function<void()> step) {
        Held held(session_);
        session_.Deliver(std::move(step));
    }

    SessionCore& session_;
};

// -- Life --

std::shared_ptr<SessionCore> SessionCore::Create() {
    std::shared_ptr<SessionCore> session(new SessionCore);
    session->Initialise();
    return session;
}

void SessionCore::Initialise() {
    self_ = weak_from_this();
    line_ = rules_->NewLine(*this);
    socket_ = std::make_shared<cSocketSSL>();
    socketPort_ = std::make_unique<SocketPort>(*this);
    socket_->Advise(std::shared_ptr<SocketEvents>(shared_from_this(), socketPort_.get()));
}

SessionCore::~SessionCore() {
    if (socket_) socket_->Disconnect();
}

void SessionCore::Mode(eMode value) {
    const SessionRules& rules = RulesOf(value);
    if (socket_->State() != sockClosed) throw AutomationError(ERR_InvalidCall);
    if (rules_ == &rules) return;
    rules_ = &rules;
    line_ = rules.NewLine(*this);
}

// -- Events --

bool SessionCore::IsAbandoned() const { return self_.use_count() <= held_; }

void SessionCore::ForEachSink(const std::function<void(SessionEvents&)>& raise) {
    if (!IsAbandoned()) sinks_.ForEach(raise);
}

// -- Connecting --

void SessionCore::Connect(bool newUser) {
    Entry entry(*this);
    if (socket_->State() != sockClosed) active_ = false;
    CloseSocket();
    authorized_ = streamOpen_ = false;
    newUser_ = newUser;
    connectionWanted_ = true;
    ++generation_;
    accountCreated_ = false;
    line_->AttemptBegins();
    socket_->SSLEnable(useSSL_);
    switch (proxyType_) {
        case KV_NoProxy:
        case KV_HTTPProxy:
        case KV_SOCKS5Proxy: return line_->OpenSocket();
        default: return;
    }
}

void SessionCore::socket1_Connect() { line_->SocketUp(); }

void SessionCore::SendStreamHeader() {
    reader_ = rules_->NewReader(maxStanzaSize_);
    Send(Compose(Text(), {u"<stream:stream to='", Quoted(serverAddress_),
                          u"' xmlns='jabber:client' xmlns:stream='", Markup(kStreamsNamespace), u"'>"}));
}

// A handler may connect again; that attempt is not the one that failed.
void SessionCore::socket1_Error(std::int32_t code, StringView description) {
    std::shared_ptr<Line> line = line_;
    std::uint32_t generation = generation_;
    RaiseSocketError(code, description);
    if (generation_ == generation) line->SocketFailed(code);
}

void SessionCore::RaiseSocketError(std::int32_t code, StringView description) {
    // Not well-formed, on purpose: applications get an element that is empty, and the facts as arguments.
    auto element = std::make_shared<cXML_Node>();
    element->xml(Concat({u"<QuorixServer type = error><error code = ", ToString(code), u">", description,
                         u"</error></QuorixServer>"}));
    Raise(&SessionEvents::OnSocketError, element, description, static_cast<std::int16_t>(code));
}

// -- Disconnecting --

void SessionCore::Disconnect() {
    Entry entry(*this);
    connectionWanted_ = false;
    CloseSession({}, {});
}

void SessionCore::socket1_Closed() { CloseSession({}, {}); }

void SessionCore::CloseSession(StringView code, StringView description) {
    if (closing_) return;
    Entry entry(*this);
    std::uint32_t generation = generation_;
    {
        Flagged closing(closing_);
        line_->Closing();
        if (reader_) reader_->Stop();
        authorized_ = streamOpen_ = active_ = false;
        roster_.StreamEnded();
        if (IsConnected()) SayGoodbye();
        if (generation_ == generation) CloseSocket();
        if (!code.empty()) RaiseError(code, description);
        search_.Empty();
        Raise(&SessionEvents::OnDisConnected);
    }
    if (generation_ == generation) {
        std::shared_ptr<Line>(line_)->Closed();
    } else if (!connectionWanted_) {
        CloseSocket();  // a handler has connected anew, and another has changed that
    }
    if (!delivering_) DrainDeliveries();
}

// Sending the presence delivers pending messages, among which a connection may come up that a handler began.
void SessionCore::SayGoodbye() {
    std::uint32_t generation = generation_;
    SendPresence(*this, {}, KV_UnAvailable, {});
    if (generation_ == generation) Send(u"</stream:stream>");
}

void SessionCore::CloseSocket() {
    ++socketEpoch_;
    socket_->Disconnect();
}

void SessionCore::RaiseError(StringView code, StringView description) {
    auto element = std::make_shared<cXML_Node>();
    element->xml(Concat({u"<QuorixServer type = 'error'> <error code = '", code, u"'>", description,
                         u"</error></QuorixServer>"}));
    Raise(&SessionEvents::OnError, element, serverAddress_, WireInt16(code), description);
}

// -- Timers --

void SessionCore::KeepAliveTick() {
    Held held(*this);
    Send(kKeepAliveText);
}

void SessionCore::ReconnectTick() {
    Held held(*this);
    Connect(false);
}

void SessionCore::Enter(const std::function<void()>& step) {
    Entry entry(*this);
    step();
}

// -- Notifications --

void SessionCore::Deliver(std::function<void()> step) {
    deliveries_.push_back({socketEpoch_, std::move(step)});
    if (!delivering_ && !closing_) DrainDeliveries();
}

template <class Step>
void SessionCore::TakeNow(Step step) {
    {
        Flagged delivering(delivering_);
        step();
    }
    if (!deliveries_.empty()) DrainDeliveries();
}

void SessionCore::DrainDeliveries() {
    Flagged delivering(delivering_);
    while (!deliveries_.empty()) {
        Delivery next = std::move(deliveries_.front());
        deliveries_.pop_front();
        if (next.socketEpoch == socketEpoch_) next.step();
    }
}

void SessionCore::socket1_DataArrival(std::string_view bytes) {
    std::string_view ofTheStream = std::shared_ptr<Line>(line_)->Receive(bytes);
    if (!ofTheStream.empty()) ProcessIncoming(ofTheStream);
}

Socks5Request SessionCore::ProxyRequest() const {
    return {proxyAuthentication_,
            proxyUsername_,
            proxyPassword_,
            serverAddress_,
            static_cast<std::uint16_t>(port_),
            proxyUseRemoteDNS_.value_or(false)};
}

// -- The inbound stream --

void SessionCore::ProcessIncoming(std::string_view bytes) {
    if (!reader_) return;
    Entry entry(*this);
    Dispatcher dispatcher(*this, entry.Self());
    std::uint32_t generation = generation_;
    try {
        reader_->Feed(bytes, sinks_.WantWireText());
    } catch (const std::bad_alloc&) {
        return CloseSession({}, {});
    }
    while (generation_ == generation && TakeStep(dispatcher)) {
    }
}

// False when there is none. A stream that could not be read for want of memory is lost.
bool SessionCore::TakeStep(Dispatcher& dispatcher) {
    StreamStep step;
    try {
        step = reader_->Next();
    } catch (const std::bad_alloc&) {
        step.kind = StreamStep::Kind::Closed;
    }
    switch (step.kind) {
        case StreamStep::Kind::Nothing: return false;
        case StreamStep::Kind::Header: TakeStreamHeader(step); break;
        case StreamStep::Kind::Stanza: dispatcher.ProcessStanza(std::move(step.frame)); break;
        case StreamStep::Kind::Error: EndWithStreamError(step); break;
        case StreamStep::Kind::Closed: CloseSession({}, {}); break;
    }
    return true;
}

void SessionCore::RaiseWireText(void (SessionEvents::*event)(StringView), StringView text) {
    ForEachSink([&](SessionEvents& sink) {
        if (sink.WantsWireText()) (sink.*event)(text);
    });
}

void SessionCore::TakeStreamHeader(const StreamStep& header) {
    std::uint32_t generation = generation_;
    RaiseWireText(&SessionEvents::OnIncomingXML, header.text);
    if (generation_ != generation) return;
    streamOpen_ = true;
    login_.sessionID = header.streamId;
    if (!IsConnected()) return;  // a handler has closed it
    line_->StreamOpens();
    loginQueryId_ = {};
    if (newUser_) return RequestRegistrationForm(*this, loginQueryId_ = GetNextID());
    switch (login_.authType) {
        case KV_PlainAuth: return StartLogin();
        case KV_AutoAuth:
        case KV_ZeroKAuth:
        case KV_DigestAuth: return RequestLoginFields();
    }
}

// The state is set to closed first, so that neither presence nor closing tag answers an error.
void SessionCore::EndWithStreamError(const StreamStep& error) {
    std::uint32_t generation = generation_;
    if (!error.text.empty()) RaiseWireText(&SessionEvents::OnIncomingXML, error.text);
    if (generation_ != generation) return;
    if (error.isFinal) connectionWanted_ = false;
    socket_->State(sockClosed);
    CloseSession(u"0", error.description);
}

void SessionCore::RequestLoginFields() {
    loginQueryId_ = GetNextID();
    Send(Compose(Text(), {u"<iq type='get' to='", Quoted(serverAddress_), u"' id='", Quoted(loginQueryId_),
                          u"'><query xmlns='jabber:iq:auth'><username>", Content(username_, Put::Own),
                          u"</username></query></iq>"}));
}

void SessionCore::StartLogin() {
    if (IsAbandoned() || !IsConnected()) return;
    cAuth auth;
    auth.SetSession(shared_from_this());
    if (auth.TellsPassword() && !MayTellPassword()) return RefuseToTellPassword();
    auth.SendAuth();
}

bool SessionCore::MayTellPassword() const {
    return rules_->MayTellPassword(socket_->SSLHandle() != 0, login_.authType == KV_PlainAuth);
}

void SessionCore::RefuseToTellPassword() { EndForGood(u"0", u"The password would go out in the clear"); }

void SessionCore::EndForGood(StringView code, StringView description) {
    connectionWanted_ = false;
    CloseSession(code, description);
}

void SessionCore::ChangePassword(StringView newPassword) {
    if (!MayTellPassword()) throw AutomationError(ERR_InvalidCall);
    quorix::ChangePassword(*this, newPassword);
}

void SessionCore::BecomeActive() { authorized_ = active_ = true; }

void SessionCore::CompleteLogin() {
    BecomeActive();
    std::uint32_t generation = generation_;
    Raise(&SessionEvents::OnAuthorized);
    if (generation_ != generation || !authorized_) return;
    line_->LoggedIn();
}

// -- The outbound path --

void SessionCore::SendXML(StringView xml) {
    if (!IsConnected()) return rules_->RefuseToSend();
    Send(xml);
}

// What the session sends by itself is dropped in silence when a handler has closed the connection.
void SessionCore::Send(StringView xml) {
    if (!IsConnected()) return;
    Entry entry(*this);
    line_->Transmit(Text().ToBytes(xml));
    RaiseWireText(&SessionEvents::OnOutgoingXML, xml);
}

String SessionCore::GetNextID() {
    ++idCounter_;
    return GetCurrentID();
}

String SessionCore::GetCurrentID() const {
    return Concat({u"KV_", ToString(static_cast<std::int32_t>(idCounter_))});
}

// -- Records --

void SessionCore::EmptyTables() {
    presence_.Clear();
    roster_.Clear();
    rooms_.Items().Clear();
}

eItemType SessionCore::FindItemType(StringView jid) {
    if (rooms_.FindFromWire(Text(), jid) > 0) return KV_GroupChatItem;
    String bareJid = RemoveResource(jid);
    if (agents_.Knows(bareJid)) return KV_AgentItem;
    return roster_.Contains(bareJid) ? KV_RosterItem : KV_Unknown;
}

bool SessionCore::LeaveRoom(StringView jid, StringView nickname) {
    return rooms_.Leave(Text(), jid, nickname);
}

}  // namespace quorix
