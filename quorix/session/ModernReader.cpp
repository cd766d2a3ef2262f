// The modern manner: a header, a stanza and the end of the stream each count when their last byte has come,
// whatever the pieces.
#include <utility>

#include "quorix/base/WireText.h"
#include "quorix/session/StreamReader.h"
#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

constexpr StringView kStreamErrors = u"urn:ietf:params:xml:ns:xmpp-streams";

// The name of the condition, "" without one.
String Condition(const ParsedNode& error) {
    for (ParsedNode child = error.FirstElement(); child; child = child.NextElement()) {
        if (child.AttributeIs(u"xmlns", kStreamErrors) && !child.Is(u"text")) return child.Name();
    }
    return {};
}

// The condition and what the server says besides. Old servers say it between the tags.
String Description(const ParsedNode& error) {
    String condition = Condition(error);
    String text = condition.empty() ? error.Text() : error.Child(u"text").Text();
    if (condition.empty() || text.empty()) return condition + text;
    return Concat({condition, u": ", text});
}

class ModernReader : public StreamReader {
public:
    explicit ModernReader(const std::int32_t& maxStanzaSize) : maxStanzaSize_(maxStanzaSize) {
        parser_.Begin();
    }

    void Feed(std::string_view bytes, bool wantsText) override {
        if (ended_) return;
        wantsText_ = wantsText;
        if (!open_) header_ += bytes;
        parser_.Feed(bytes);
    }

    StreamStep Next() override {
        while (!next_) {
            if (ended_) return {};
            StreamParser::Event event = parser_.Next();
            if (event == StreamParser::Event::Malformed) return Fail(u"XML not well-formed");
            if (parser_.Depth() > kMaxOpenElements) return Fail(u"A stanza is nested too deeply");
            if (IsTooBig()) return Fail(u"A stanza is longer than MaxStanzaSize");
            switch (event) {
                case StreamParser::Event::Opened: return TakeHeader();
                case StreamParser::Event::Element: Collect(parser_.Take()); break;
                case StreamParser::Event::Closed: ended_ = true; return StreamStep::Kind::Closed;
                default: return {};
            }
        }
        return TakeStanza();
    }

    void Stop() override {
        ended_ = true;
        next_ = {};
    }

private:
    bool IsTooBig() const {
        return maxStanzaSize_ > 0 && parser_.PendingBytes() > static_cast<std::size_t>(maxStanzaSize_);
    }

    StreamStep Fail(StringView description) {
        ended_ = true;
        StreamStep step = StreamStep::Kind::Error;
        step.description = description;
        return step;
    }

    StreamStep TakeHeader() {
        open_ = true;
        ParsedXmlPtr root = parser_.Take();
        String name = root->Root().Name();
        error_ = name.substr(0, name.find(u':') + 1) + u"error";
        StreamStep step = StreamStep::Kind::Header;
        step.text = TextFromUtf8(std::string_view(header_).substr(0, parser_.PendingBytes()));
        step.streamId = root->Root().Attribute(u"id");
        header_ = std::string();
        return step;
    }

    void Collect(ParsedXmlPtr tree) {
        tree_ = std::move(tree);
        next_ = tree_->First().OrNextNotBlank();
    }

    StreamStep TakeStanza() {
        StreamStep step = StreamStep::Kind::Stanza;
        step.frame.node = next_;
        next_ = next_.NextSibling().OrNextNotBlank();  // white space between stanzas is nothing
        step.frame.tree = next_ ? tree_ : std::move(tree_);
        return step.frame.node.Is(error_) ? TakeError(step.frame) : std::move(step);
    }

    StreamStep TakeError(const Frame& frame) {
        next_ = {};
        StreamStep step = Fail(Description(frame.node));
        if (wantsText_) step.text = frame.Xml();
        step.isFinal = Condition(frame.node) == u"conflict";
        return step;
    }

    const std::int32_t& maxStanzaSize_;
    StreamParser parser_{StreamParser::Bytes::Utf8};
    std::string header_;
    String error_;  // the name of a stream error
    ParsedXmlPtr tree_;
    ParsedNode next_;
    bool wantsText_ = true;
    bool open_ = false;
    bool ended_ = false;
};

}  // namespace

std::unique_ptr<StreamReader> NewModernReader(const std::int32_t& maxStanzaSize) {
    return std::make_unique<ModernReader>(maxStanzaSize);
}

}  // namespace quorix
