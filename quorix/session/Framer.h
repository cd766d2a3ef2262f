// Cuts the text of the stream, which arrives in arbitrary pieces, into stanzas.
//
// The text received and not yet handed on is either well-formed as a whole or waits for more: a complete
// stanza with the beginning of another behind it is kept until the other is complete too. Taking a piece
// costs time in proportion to the piece; text is loaded once, when it can be complete. Text that can never
// become well-formed blocks the rest of the stream, as it must, but is not stored.
#pragma once

#include <memory>
#include <optional>

#include "quorix/session/StanzaScanner.h"
#include "quorix/xml/cXML_Node.h"

namespace quorix {

// One stanza, or a piece of text or a comment that stands between stanzas. The node is empty for those.
struct Frame {
    String text;
    std::shared_ptr<cXML_Node> node;
};

// The stanzas of one complete text, in order.
class FrameBatch {
public:
    FrameBatch() = default;
    explicit FrameBatch(Frame whole) : whole_(std::move(whole)) {}
    explicit FrameBatch(std::shared_ptr<XmlDocument> content) : content_(std::move(content)) {}

    std::optional<Frame> Next();

private:
    std::optional<Frame> whole_;
    std::shared_ptr<XmlDocument> content_;
};

class Framer {
public:
    // Forgets everything: a new stream begins.
    void Reset() { *this = Framer(); }

    // The text that is waiting and `text` behind it; `text` alone in most cases.
    void Append(StringView text);
    const String& Text() const { return text_; }

    // The stanzas of the waiting text, which is then empty; an empty batch while it is incomplete.
    FrameBatch TakeComplete();

private:
    bool IsDeclarationAlone() const;

    String text_;
    StanzaScanner scanner_;
    bool hopeless_ = false;
};

}  // namespace quorix
