// Cuts the bytes of a stream, which arrive in arbitrary pieces, into stanzas, in the classic manner: what has
// come and was not handed on is either well-formed as a whole, as one document or side by side, or waits for
// more. So a complete stanza with the beginning of another behind it is kept until the other is complete too.
// Text that can never become well-formed blocks the rest of the stream, as it must, but is not stored.
#pragma once

#include <deque>
#include <optional>
#include <string_view>
#include <vector>

#include "quorix/base/WireBuffer.h"
#include "quorix/xml/PackedTrees.h"
#include "quorix/xml/StreamParser.h"

namespace quorix {

// One stanza, or a text or a comment that stands between stanzas, with all that it was parsed into.
struct Frame {
    ParsedXmlPtr tree;
    ParsedNode node;   // empty for a whole document
    WireBuffer bytes;  // as received, when it is a whole document, whose text they are

    // The text of any other.
    String Xml() const { return node ? node.Xml() : tree->Xml(); }
    bool IsStanza() const { return Root() && !tree->TooDeep(); }
    ParsedNode Root() const { return node ? (node.IsElement() ? node : ParsedNode()) : tree->Root(); }
};

class Framer {
public:
    // `keepText`: somebody will ask what has come for its text.
    void Append(std::string_view bytes, bool keepText = true);

    // What has come and was not handed on, as far as it is kept: its beginning, or all of it.
    std::string_view Waiting() const { return text_.Bytes(); }

    // The next frame of what is complete; nothing when more has to come.
    std::optional<Frame> Next();

private:
    enum class State { Idle, Deciding, Content, Document, Hopeless };

    void Take(std::string_view bytes);
    void TakeContent(std::string_view bytes);
    void TakeDocument(std::string_view bytes);
    void Keep(std::string_view bytes);
    void Pack();
    void Release();
    bool ReleaseWhole();  // false when it is no document
    std::optional<Frame> NextReleased();
    ParsedXmlPtr NextTree();
    bool IsOneDocument() const;
    void Block();

    StreamParser content_{StreamParser::Bytes::Wire};
    std::optional<StreamParser> document_;  // a declaration began it
    State state_ = State::Idle;
    bool begun_ = false;
    bool keepText_ = true;
    bool documentClosed_ = false;
    bool complete_ = false;
    WireBuffer text_;
    // Complete, but not what follows them: the first of them, and, if there are many, those behind.
    std::vector<ParsedXmlPtr> trees_;
    PackedTrees packed_;

    // What is complete and was not handed on: a document, or a tree from a node on and others behind it.
    std::optional<Frame> whole_;
    ParsedXmlPtr tree_;
    ParsedNode node_;
    std::deque<ParsedXmlPtr> releasedTrees_;
    PackedTrees releasedPacked_;
};

}  // namespace quorix
