// Whatever an application gives to be sent, to a session of either mode: what goes out is one well-formed
// sequence of as many elements as with any other value.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>

#include "quorix/base/WireText.h"
#include "quorix/xml/cXML_Node.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/Senders.h"

namespace quorix {
namespace {

void Expect(bool holds) {
    if (!holds) std::abort();
}

String Text(FuzzedDataProvider& input) {
    std::string bytes = input.ConsumeRandomLengthString();
    if (input.ConsumeBool()) return TextFromUtf8(bytes);
    String text(bytes.size() / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), bytes.data(), text.size() * 2);
    return text;
}

class Desk {
public:
    explicit Desk(eMode mode) : mode_(mode) {
        session_->Mode(mode);
        session_->ServerAddress(u"s");
        session_->username(u"u");
        session_->AuthType(KV_PlainAuth);
        session_->Connect();
        env_.DoEvents();
        Say("<stream:stream id='s1'>");
        Say("<iq type='result' id='kv_login'/>");
        Say("<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent "
            "jid='a'><name>A</name></agent>"
            "</query></iq>");
    }

    std::size_t ElementsSent(const testkit::Sender& sender, const testkit::Values& values) {
        env_.Peer().TakeHeard();
        sender.send(*session_, values);
        std::string bytes = env_.Peer().TakeHeard();
        auto document = XmlDocument::Create();
        String sent = mode_ == KV_Classic ? WireFromBytes(bytes) : TextFromUtf8(bytes);
        Expect(document->Load(Concat({u"<sent>", sent, u"</sent>"})));
        std::size_t count = 0;
        for (XmlNode child = document->Root().FirstElement(); child; child = child.NextElement()) ++count;
        return count;
    }

    // Formatted text is read back as it was written, unless it could run something.
    void Format(StringView markup) {
        auto message = session_->CreateMessage(u"a@s", MSG_Chat, u"b", u"s");
        message->XHTML(markup);
        String read = message->XHTML();
        Expect(message->XHTML() == read);
        message->SendMessage();
        auto document = XmlDocument::Create();
        Expect(document->Load(message->xml()));
    }

private:
    void Say(std::string_view bytes) {
        env_.Peer().Say(bytes);
        env_.DoEvents();
    }

    eMode mode_;
    testkit::DeterministicEnvironment env_;
    std::shared_ptr<cSession> session_ = cSession::Create();
};

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    FuzzedDataProvider input(data, size);
    Desk desk(static_cast<eMode>(input.ConsumeIntegralInRange(0, 1)));
    while (input.remaining_bytes() > 0) {
        std::size_t nth = input.ConsumeIntegralInRange<std::size_t>(0, testkit::kSenders.size());
        if (nth == testkit::kSenders.size()) {
            desk.Format(Text(input));
            continue;
        }
        const testkit::Sender& sender = testkit::kSenders[nth];
        std::size_t expected = desk.ElementsSent(sender, [] { return String(u"x"); });
        Expect(desk.ElementsSent(sender, [&] { return u"x" + Text(input); }) == expected);
    }
    return 0;
}
