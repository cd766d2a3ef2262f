#include "quorix/xml/StreamParser.h"

#include <expat.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "quorix/base/WireText.h"

#if defined(__ELF__)
// Newer versions of the parser put off unfinished markup by themselves; older ones, and their headers, do not
// know the word.
extern "C" __attribute__((weak)) XML_Bool  // NOLINTNEXTLINE(readability-redundant-declaration): see above
XML_SetReparseDeferralEnabled(XML_Parser parser, XML_Bool enabled);
#endif

namespace quorix {

namespace {

constexpr std::size_t kLongToken = 1U << 16U;

// The parser keeps every name that it has ever met, and a peer can invent names for ever.
constexpr std::size_t kRenewAfter = 1U << 20U;

constexpr std::string_view kThoughtOf = "content";

void PutNothingOff(XML_Parser parser) {
#if defined(__ELF__)
    if (XML_SetReparseDeferralEnabled == nullptr) return;
#endif
    XML_SetReparseDeferralEnabled(parser, XML_FALSE);
}

// The declaration's content, as written; nothing when the document has none.
std::string_view Declaration(std::string_view source) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr std::string_view kOpening = "<?xml";
    if (source.starts_with(kMark)) source.remove_prefix(kMark.size());
    if (!source.starts_with(kOpening)) return {};
    source = source.substr(0, source.find("?>")).substr(kOpening.size());
    std::size_t blanks = std::min(source.find_first_not_of(" \t\r\n"), source.size());
    return source.substr(blanks, blanks == 0 ? 0 : source.size());  // without a blank it only begins like one
}

}  // namespace

// Nothing may be thrown through the parser: it is kept until the parser has returned.
struct StreamParser::Callbacks {
    template <class Handle>
    static void Guard(void* user, Handle handle) {
        StreamParser& self = *static_cast<StreamParser*>(user);
        if (self.failure_) return;
        try {
            handle(self);
        } catch (...) {
            self.failure_ = std::current_exception();
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    static void Start(void* user, const char* name, const char** attributes) {
        Guard(user, [&](StreamParser& self) {
            if (self.root_ != Root::Shown && !self.rootOpen_) return Open(self, name, attributes);
            if (self.builder_.Depth() == 0 && self.builder_.IsBlank()) self.boundary_ = self.EventBegin();
            self.builder_.Start(name, attributes);
        });
    }

    static void Open(StreamParser& self, const char* name, const char** attributes) {
        self.rootOpen_ = true;
        if (self.root_ == Root::ThoughtOf) return;
        self.rootName_ = name;
        self.builder_.Start(name, attributes);
        self.builder_.End();
        self.Stop(Event::Opened);
    }

    static void End(void* user, const char*) {
        Guard(user, [](StreamParser& self) {
            if (self.builder_.Depth() == 0) {
                self.rootOpen_ = false;
                return self.Stop(self.root_ == Root::ThoughtOf ? Event::Malformed : Event::Closed);
            }
            self.builder_.End();
            if (self.builder_.Depth() == 0) self.Stop(Event::Element);
        });
    }

    static bool Counts(const StreamParser& self) { return self.root_ == Root::Shown || self.rootOpen_; }

    static void Text(void* user, const char* text, int size) {
        std::string_view piece(text, static_cast<std::size_t>(size));
        Guard(user, [&](StreamParser& self) {
            if (self.inCData_) {
                self.builder_.MoreOfLeaf(piece);
            } else if (Counts(self)) {
                self.builder_.Text(piece);
            }
        });
    }

    static void BeginCData(void* user) {
        Guard(user, [](StreamParser& self) {
            self.inCData_ = true;
            self.builder_.Leaf(XmlKind::CData, {});
        });
    }
    static void EndCData(void* user) {
        Guard(user, [](StreamParser& self) { self.inCData_ = false; });
    }
    static void Comment(void* user, const char* text) {
        Guard(user, [&](StreamParser& self) {
            if (Counts(self)) self.builder_.Leaf(XmlKind::Comment, text);
        });
    }
    static void Instruction(void* user, const char* target, const char* data) {
        Guard(user, [&](StreamParser& self) {
            std::string content = *data == '\0' ? std::string(target) : std::string(target) + ' ' + data;
            if (Counts(self)) self.builder_.Leaf(XmlKind::Instruction, content);
        });
    }
    static void DocumentType(void* user, const char*, const char*, const char*, int) {
        XML_StopParser(static_cast<StreamParser*>(user)->parser_.get(), XML_FALSE);
    }
};

void StreamParser::Release::operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }

StreamParser::StreamParser(Bytes bytes) : bytes_(bytes) { builder_.ReadLetters(bytes == Bytes::Wire); }

StreamParser::~StreamParser() = default;

// -- Beginning --

void StreamParser::Reset(Root root) {
    // What a long text has made it keep, a reset would not give back.
    if (given_ > kRenewAfter) parser_.reset();
    if (parser_) {
        XML_ParserReset(parser_.get(), "UTF-8");
    } else {
        parser_.reset(XML_ParserCreate("UTF-8"));
    }
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), Callbacks::Start, Callbacks::End);
    XML_SetCharacterDataHandler(parser_.get(), Callbacks::Text);
    XML_SetCdataSectionHandler(parser_.get(), Callbacks::BeginCData, Callbacks::EndCData);
    XML_SetCommentHandler(parser_.get(), Callbacks::Comment);
    XML_SetProcessingInstructionHandler(parser_.get(), Callbacks::Instruction);
    XML_SetStartDoctypeDeclHandler(parser_.get(), Callbacks::DocumentType);
    PutNothingOff(parser_.get());
    root_ = root;
    rootOpen_ = broken_ = suspended_ = inCData_ = waiting_ = false;
    event_ = Event::Nothing;
    failure_ = nullptr;
    builder_.Clear();
    chunk_ = {};
    given_ = boundary_ = 0;
    longToken_ = LongToken();
}

void StreamParser::Begin() {
    Reset(Root::Hidden);
    stops_ = true;
}

void StreamParser::BeginInside() {
    Reset(Root::ThoughtOf);
    stops_ = true;
    rootName_ = kThoughtOf;
    Parse("<" + rootName_ + ">", false);
    boundary_ = given_;
}

// At the end of an element: the same stream goes on in a parser that has forgotten the names so far.
void StreamParser::Renew() {
    std::string_view rest = chunk_.substr(chunk_.size() - (given_ - EventEnd()));
    Root root = root_;
    Reset(Root::ThoughtOf);
    Parse("<" + rootName_ + ">", false);
    root_ = root;
    boundary_ = given_;
    chunk_ = rest;
    waiting_ = true;
}

// -- Taking bytes --

std::string_view StreamParser::Translated(std::string_view bytes) {
    if (bytes_ == Bytes::Utf8 || IsAscii(bytes)) return bytes;
    letters_.clear();
    AppendLettersOfBytes(letters_, bytes);
    return letters_;
}

void StreamParser::Feed(std::string_view bytes) {
    chunk_ = Translated(bytes);
    if (longToken_.IsOpen()) {
        if (!longToken_.EndsIn(chunk_)) return;
        std::string whole = longToken_.TakeHeld();
        whole += chunk_;
        letters_ = std::move(whole);
        chunk_ = letters_;
    }
    waiting_ = !broken_;
}

StreamParser::Event StreamParser::Next() {
    if (broken_) return Event::Malformed;
    if (suspended_ && given_ > kRenewAfter && event_ == Event::Element) Renew();
    event_ = Event::Nothing;
    if (std::exchange(suspended_, false)) return Settle(XML_ResumeParser(parser_.get()));
    if (!std::exchange(waiting_, false)) return Event::Nothing;
    given_ += chunk_.size();
    return Settle(XML_Parse(parser_.get(), chunk_.data(), static_cast<int>(chunk_.size()), XML_FALSE));
}

StreamParser::Event StreamParser::Settle(int status) {
    suspended_ = status == XML_STATUS_SUSPENDED;
    broken_ = status == XML_STATUS_ERROR || event_ == Event::Malformed;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    if (status == XML_STATUS_ERROR && XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY)
        throw std::bad_alloc();
    if (broken_) return Event::Malformed;
    if (!suspended_) {
        bool isBetween = rootOpen_ && builder_.Depth() == 0 && builder_.IsBlank();
        if (isBetween) boundary_ = EventBegin();
        std::string_view held = HeldBack();
        if (held.size() > kLongToken) longToken_.Open(held);
    }
    return event_;
}

void StreamParser::Stop(Event event) {
    if (!stops_) return;
    event_ = event;
    XML_StopParser(parser_.get(), XML_TRUE);
}

std::size_t StreamParser::EventBegin() const {
    return static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get()));
}

std::size_t StreamParser::EventEnd() const {
    return EventBegin() + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get()));
}

// -- At rest --

std::string_view StreamParser::HeldBack() const {
    int offset = 0;
    int size = 0;
    const char* input = XML_GetInputContext(parser_.get(), &offset, &size);
    if (input == nullptr) return {};
    return {input + offset, static_cast<std::size_t>(size - offset)};
}

bool StreamParser::AtRest() const {
    if (broken_ || builder_.Depth() > 0 || inCData_ || longToken_.IsOpen()) return false;
    std::string_view held = HeldBack();
    return held.empty() || held == "\r" || held == "]" || held == "]]";
}

ParsedXmlPtr StreamParser::TakeRest() {
    std::string_view held = HeldBack();
    if (!held.empty()) builder_.Text(held == "\r" ? "\n" : held);
    ParsedXmlPtr rest = builder_.Take();
    if (!held.empty()) BeginInside();
    return rest;
}

std::size_t StreamParser::PendingBytes() const {
    if (event_ != Event::Nothing) return EventEnd() - boundary_;
    return given_ + longToken_.HeldSize() - boundary_;
}

// -- Whole documents --

// Parsers cost more to make than a stanza to parse.
StreamParser& StreamParser::OfThread(Bytes bytes) {
    thread_local StreamParser utf8(Bytes::Utf8);
    thread_local StreamParser wire(Bytes::Wire);
    StreamParser& parser = bytes == Bytes::Wire ? wire : utf8;
    parser.stops_ = false;
    return parser;
}

// False when it is not well-formed.
bool StreamParser::Parse(std::string_view text, bool last) {
    constexpr std::size_t kMost = std::numeric_limits<int>::max() / 4;
    do {
        std::string_view piece = text.substr(0, kMost);
        text.remove_prefix(piece.size());
        given_ += piece.size();
        int isFinal = last && text.empty() ? XML_TRUE : XML_FALSE;
        Settle(XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()), isFinal));
    } while (!broken_ && !text.empty());
    return !broken_;
}

ParsedXmlPtr StreamParser::Document(Bytes bytes, std::string_view text) {
    StreamParser& parser = OfThread(bytes);
    parser.Reset(Root::Shown);
    std::string_view declaration = Declaration(text);
    if (!declaration.empty()) parser.builder_.Leaf(XmlKind::Instruction, "xml " + std::string(declaration));
    return parser.Parse(parser.Translated(text), true) ? parser.Take() : nullptr;
}

ParsedXmlPtr StreamParser::Content(Bytes bytes, std::string_view text) {
    StreamParser& parser = OfThread(bytes);
    parser.Reset(Root::ThoughtOf);
    bool wellFormed = parser.Parse("<content>", false) && parser.Parse(parser.Translated(text), false) &&
                      parser.Parse("</content>", true);
    return wellFormed ? parser.Take() : nullptr;
}

}  // namespace quorix
