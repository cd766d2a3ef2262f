// What a peer sends once the handshake is over, to a session of either mode: text inside records, records
// damaged on their way, bytes that are none, and the handshake's own later messages.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "testkit/Day.h"
#include "testkit/TlsPeer.h"

namespace quorix {
namespace {

const testkit::Identity& OwnIdentity() {
    static const testkit::Identity identity = testkit::SelfSigned({});
    return identity;
}

class Encrypted {
    testkit::DeterministicEnvironment env_;  // before what lives in it

public:
    std::shared_ptr<cSession> session = cSession::Create();

    explicit Encrypted(eMode mode, StringView pin) {
        session->Mode(mode);
        session->ServerAddress(u"localhost");
        session->Port(5222);
        session->UseSSL(true);
        session->Socket()->SSLPin(pin);
        session->Reconnect(false);
        env_.WhileWaiting([this] { Converse(); });
        session->Connect();
        for (int flight = 0; flight < 4; ++flight) Converse(), env_.DoEvents();
    }

    void Step(FuzzedDataProvider& input) {
        switch (input.ConsumeIntegralInRange(0, 6)) {
            case 0:
                return Write(
                    input.PickValueInArray({testkit::kStreamHeader, std::string_view("<iq id='1'/>")}));
            case 1: return Write(input.ConsumeRandomLengthString());
            case 2: return Damage(input.ConsumeIntegral<std::size_t>());
            case 3: return Hand(input.ConsumeRandomLengthString());
            case 4: SSL_key_update(peer_.Native(), SSL_KEY_UPDATE_REQUESTED); return Write("<a/>");
            case 5: peer_.SayGoodbye(); return Hand(peer_.TakeOutput());
            default: return env_.Peer().Close();
        }
    }

    bool LeavesNothing() {
        session.reset();
        env_.DoEvents();
        return env_.OpenSockets() + env_.RunningTimers() == 0;
    }

    bool IsOpen() const { return env_.PeerCount() > 0; }

private:
    void Converse() {
        if (env_.PeerCount() == 0) return;
        peer_.Hear(env_.Peer().TakeHeard());
        std::string answer = peer_.TakeOutput();
        if (!answer.empty()) env_.Peer().Say(answer);
    }

    void Write(std::string_view text) {
        if (!text.empty()) peer_.Write(text);
        Converse();
        env_.DoEvents();
        Converse();
    }

    void Damage(std::size_t at) {
        peer_.Write("<iq id='2'/>");
        std::string record = peer_.TakeOutput();
        if (!record.empty()) record[at % record.size()] ^= 1;
        Hand(record);
    }

    void Hand(std::string_view bytes) {
        env_.Peer().Say(bytes);
        env_.DoEvents();
    }

    testkit::TlsPeer peer_{OwnIdentity()};
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    static const String pin = Encrypted(KV_Modern, u"").session->Socket()->SSLFingerprint();
    FuzzedDataProvider input(data, size);
    Encrypted encrypted(static_cast<eMode>(input.ConsumeIntegralInRange(0, 1)), pin);
    if (!encrypted.IsOpen() || !encrypted.session->IsConnected()) std::abort();
    while (input.remaining_bytes() > 0) encrypted.Step(input);
    if (!encrypted.LeavesNothing()) std::abort();
    return 0;
}
