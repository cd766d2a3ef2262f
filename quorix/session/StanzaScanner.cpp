#include "quorix/session/StanzaScanner.h"

namespace quorix {

namespace {

constexpr StringView kComment = u"--";
constexpr StringView kCData = u"[CDATA[";

}  // namespace

void StanzaScanner::Take(StringView text) {
    for (char16_t c : text) Step(c);
}

void StanzaScanner::Step(char16_t c) {
    switch (state_) {
        case State::Text: return StepText(c);
        case State::Reference:
            if (c == u';') state_ = State::Text;
            if (c == u'<' || c == u'&' || IsSpace(c)) state_ = State::Hopeless;
            return;
        case State::Open: return StepOpen(c);
        case State::StartTag: return StepStartTag(c);
        case State::SingleQuote:
            if (c == u'\'') state_ = State::StartTag;
            return;
        case State::DoubleQuote:
            if (c == u'"') state_ = State::StartTag;
            return;
        case State::Slash:
            if (c != u'>') state_ = State::Hopeless;
            if (c == u'>') OpenElement(), CloseElement();
            return;
        case State::EndTag:
            if (c == u'>') CloseElement();
            return;
        case State::Bang: return StepBang(c);
        case State::Comment: return StepUntil(c, u"-->");
        case State::CData: return StepUntil(c, u"]]>");
        case State::Instruction: return StepUntil(c, u"?>");
        case State::Hopeless: return;
    }
}

void StanzaScanner::StepText(char16_t c) {
    if (c == u'<') {
        state_ = State::Open;
    } else if (depth_ == 0 && !IsSpace(c)) {
        topText_ = true;
        if (c == u'&') state_ = State::Reference;
    }
}

void StanzaScanner::StepOpen(char16_t c) {
    pending_.clear();
    switch (c) {
        case u'/': state_ = depth_ > 0 ? State::EndTag : State::Hopeless; return;
        case u'!': state_ = State::Bang; return;
        case u'?': state_ = State::Instruction; return;
        default: state_ = IsSpace(c) || c == u'>' || c == u'<' ? State::Hopeless : State::StartTag;
    }
}

void StanzaScanner::StepStartTag(char16_t c) {
    switch (c) {
        case u'\'': state_ = State::SingleQuote; return;
        case u'"': state_ = State::DoubleQuote; return;
        case u'/': state_ = State::Slash; return;
        case u'>': return OpenElement();
        case u'<': state_ = State::Hopeless; return;
        default: return;
    }
}

// A document type declaration is the third thing that "<!" may begin; it is not accepted.
void StanzaScanner::StepBang(char16_t c) {
    pending_ += c;
    if (!StartsWith(kComment, pending_) && !StartsWith(kCData, pending_)) state_ = State::Hopeless;
    if (pending_ == kComment) state_ = State::Comment;
    if (pending_ == kCData) {
        state_ = State::CData;
        topText_ = topText_ || depth_ == 0;
    }
    if (state_ != State::Bang) pending_.clear();
}

void StanzaScanner::StepUntil(char16_t c, StringView terminator) {
    pending_ += c;
    if (pending_.size() > terminator.size()) pending_.erase(0, 1);
    if (pending_ == terminator) state_ = State::Text;
}

void StanzaScanner::OpenElement() {
    if (depth_++ == 0) ++roots_;
    state_ = State::Text;
}

void StanzaScanner::CloseElement() {
    --depth_;
    state_ = State::Text;
}

}  // namespace quorix
