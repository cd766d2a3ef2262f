// Tells, in one pass over text that arrives in pieces, when it may be complete.
//
// The scanner follows markup only as far as it must to know where elements begin and end: it does not check
// names, attributes or characters. Text that it calls complete is worth loading; text that it calls hopeless
// can never become well-formed, whatever follows.
#pragma once

#include "quorix/base/String.h"

namespace quorix {

class StanzaScanner {
public:
    void Take(StringView text);

    // Every element that was opened is closed, and no markup is pending.
    bool Complete() const { return state_ == State::Text && depth_ == 0; }
    bool Hopeless() const { return state_ == State::Hopeless; }

    // Neither an element nor text so far.
    bool IsEmpty() const { return roots_ == 0 && !topText_; }

    // Exactly one element stands at the top, and no text beside it: the whole is a document.
    bool IsDocument() const { return roots_ == 1 && !topText_; }

private:
    enum class State {
        Text,
        Reference,    // "&" at the top level, up to ";"
        Open,         // "<"
        StartTag,     // in a start tag, outside quotes
        SingleQuote,  // in an attribute value
        DoubleQuote,
        Slash,  // "/" in a start tag
        EndTag,
        Bang,  // "<!" and as much as tells comment from CDATA
        Comment,
        CData,
        Instruction,
        Hopeless,
    };

    void Step(char16_t c);
    void StepText(char16_t c);
    void StepOpen(char16_t c);
    void StepStartTag(char16_t c);
    void StepBang(char16_t c);
    void StepUntil(char16_t c, StringView terminator);
    void OpenElement();
    void CloseElement();

    State state_ = State::Text;
    std::size_t depth_ = 0;
    std::size_t roots_ = 0;
    bool topText_ = false;
    String pending_;  // the characters of a marker recognised so far
};

}  // namespace quorix
