// The classic manner: the first piece is the header, whatever it holds; stanzas come as the Framer cuts them.
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/session/StreamReader.h"

namespace quorix {

namespace {

constexpr std::string_view kStreamError = "<stream:error>";

String StreamId(std::string_view header) {
    ParsedXmlPtr stream = ParsedXml::FromWire(std::string(header) + "</stream:stream>");
    return stream ? stream->Root().Attribute(u"id") : String();
}

class ClassicReader : public StreamReader {
public:
    void Feed(std::string_view bytes, bool wantsText) override {
        if (!open_) {
            header_ = bytes;
            return;
        }
        framer_.Append(bytes, wantsText);
        errorIsDue_ = framer_.Waiting().starts_with(kStreamError);
    }

    StreamStep Next() override {
        if (!open_) return TakeHeader();
        if (std::exchange(errorIsDue_, false)) return TakeError();
        std::optional<Frame> frame = framer_.Next();
        if (!frame) return {};
        StreamStep step = StreamStep::Kind::Stanza;
        step.frame = std::move(*frame);
        return step;
    }

private:
    // Whatever follows the header in its piece is lost with it.
    StreamStep TakeHeader() {
        open_ = true;
        StreamStep step = StreamStep::Kind::Header;
        step.text = WireFromBytes(header_);
        step.streamId = StreamId(header_);
        return step;
    }

    // What has come of the stream stays, and is tried as stanzas all the same.
    StreamStep TakeError() {
        StreamStep step = StreamStep::Kind::Error;
        step.text = WireFromBytes(framer_.Waiting());
        step.description = u"INVALID XML STREAM";
        return step;
    }

    Framer framer_;
    std::string_view header_;
    bool open_ = false;
    bool errorIsDue_ = false;
};

}  // namespace

std::unique_ptr<StreamReader> NewClassicReader() { return std::make_unique<ClassicReader>(); }

}  // namespace quorix
