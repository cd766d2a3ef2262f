// The push parser: takes a stream's bytes in any pieces and gives back what stands below its root, tree by
// tree.
//
// Nothing is scanned or loaded twice: taking a piece costs time in proportion to the piece, however long a
// tag, a comment or a text becomes. The parser is expat, blind to namespaces; a document type declaration is
// not well-formed here.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "quorix/xml/LongToken.h"
#include "quorix/xml/ParsedBuilder.h"
#include "quorix/xml/ParsedXml.h"

struct XML_ParserStruct;

namespace quorix {

class StreamParser {
public:
    enum class Bytes {
        Utf8,  // and not well-formed if it is anything else
        Wire,  // each byte is a character, also in names
    };

    // What Next has come to.
    enum class Event {
        Nothing,    // the bytes given are used up
        Opened,     // the root's start tag has ended: Take gives the root, without content
        Element,    // an element below the root has ended: Take gives it, and what stood beside it
        Closed,     // the root has ended
        Malformed,  // whatever follows
    };

    explicit StreamParser(Bytes bytes);
    ~StreamParser();
    StreamParser(const StreamParser&) = delete;
    StreamParser& operator=(const StreamParser&) = delete;

    // Forgets everything: a new stream begins, with its root or inside one that is thought of.
    void Begin();
    void BeginInside();

    // More bytes, which must stay where they are until Next has answered Nothing or Malformed. When memory
    // runs out, Next throws, and whatever follows is Malformed.
    void Feed(std::string_view bytes);
    Event Next();

    // All that has ended and was not taken yet.
    ParsedXmlPtr Take() { return builder_.Take(); }

    // After Nothing: no markup is pending, and below the root every element has ended.
    bool AtRest() const;
    // At rest: what the parser holds back, since it might be the beginning of markup, is text. A new stream
    // begins.
    ParsedXmlPtr TakeRest();

    // Elements below the root that are open.
    std::size_t Depth() const { return builder_.Depth(); }

    // The size of what has begun below the root and has not ended, or of the root's start tag; white space
    // beside elements does not count. After Element, that of the element.
    std::size_t PendingBytes() const;

    // One document, or what could stand between the tags of an element. Null when not well-formed.
    static ParsedXmlPtr Document(Bytes bytes, std::string_view text);
    static ParsedXmlPtr Content(Bytes bytes, std::string_view text);

private:
    struct Callbacks;
    struct Release {
        void operator()(XML_ParserStruct* parser) const;
    };
    enum class Root { Shown, Hidden, ThoughtOf };

    static StreamParser& OfThread(Bytes bytes);

    void Reset(Root root);
    void Renew();
    bool Parse(std::string_view text, bool last);
    Event Settle(int status);
    std::string_view Translated(std::string_view bytes);
    std::string_view HeldBack() const;
    std::size_t EventBegin() const;
    std::size_t EventEnd() const;
    void Stop(Event event);

    std::unique_ptr<XML_ParserStruct, Release> parser_;
    Bytes bytes_;
    Root root_ = Root::Hidden;
    bool stops_ = true;  // at each event
    bool rootOpen_ = false;
    bool broken_ = false;
    bool suspended_ = false;
    bool inCData_ = false;
    bool waiting_ = false;  // bytes that the parser has not been given
    Event event_ = Event::Nothing;
    std::exception_ptr failure_;
    ParsedBuilder builder_;
    std::string rootName_;
    std::string letters_;     // the bytes at hand, translated
    std::string_view chunk_;  // what the parser was given last
    std::size_t given_ = 0;   // to the parser since it was reset
    std::size_t boundary_ = 0;
    LongToken longToken_;
};

}  // namespace quorix
