#include "quorix/session/Framer.h"

#include <algorithm>
#include <utility>

namespace quorix {

namespace {

constexpr std::string_view kDeclaration = "<?xml";
constexpr std::size_t kKeptAnyway = 1U << 16U;
constexpr std::size_t kDocument = 2;   // trees of one: an element, and what stands behind it
constexpr std::size_t kReadable = 64;  // trees that are not packed

bool IsBlankByte(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool MayBeDeclaration(std::string_view text) {
    return kDeclaration.starts_with(text.substr(0, kDeclaration.size()));
}

// Unlike comments and instructions, a declaration is nothing without its element.
bool IsDeclaration(std::string_view text) {
    return text.starts_with(kDeclaration) && IsBlankByte(text[kDeclaration.size()]);
}

}  // namespace

void Framer::Append(std::string_view bytes, bool keepText) {
    if (state_ == State::Hopeless) text_.Clear();
    if (state_ == State::Hopeless || bytes.empty()) return;
    if (text_.IsEmpty()) keepText_ = keepText;
    Keep(bytes);
    if (state_ == State::Idle || state_ == State::Deciding) {
        state_ = Waiting().size() <= kDeclaration.size() && MayBeDeclaration(Waiting()) ? State::Deciding
                                                                                        : State::Content;
        if (state_ == State::Deciding) return;
        if (IsDeclaration(Waiting())) state_ = State::Document;
        return Take(std::string(Waiting()));
    }
    Take(bytes);
}

// The beginning is always kept, since it may be asked for before the whole.
void Framer::Keep(std::string_view bytes) {
    bool whole = keepText_ || state_ == State::Document || Waiting().size() < kKeptAnyway;
    if (whole && trees_.size() < kDocument) text_.Append(bytes);
}

void Framer::Take(std::string_view bytes) {
    state_ == State::Document ? TakeDocument(bytes) : TakeContent(bytes);
}

void Framer::TakeContent(std::string_view bytes) {
    if (!std::exchange(begun_, true)) content_.BeginInside();
    content_.Feed(bytes);
    while (true) {
        switch (content_.Next()) {
            case StreamParser::Event::Element: trees_.push_back(content_.Take()); break;
            case StreamParser::Event::Nothing:
                complete_ = content_.AtRest();
                return complete_ ? void() : Pack();
            default: return Block();
        }
    }
}

void Framer::TakeDocument(std::string_view bytes) {
    if (!document_) {
        document_.emplace(StreamParser::Bytes::Wire).Begin();
        documentClosed_ = false;
    }
    document_->Feed(bytes);
    while (true) {
        switch (document_->Next()) {
            case StreamParser::Event::Malformed: return Block();
            case StreamParser::Event::Nothing: complete_ = documentClosed_; return;
            case StreamParser::Event::Closed: documentClosed_ = true; break;
            default: document_->Take();
        }
    }
}

// One element, and no text beside it: the whole is a document.
bool Framer::IsOneDocument() const {
    int elements = 0;
    for (const ParsedXmlPtr& tree : trees_) {
        for (ParsedNode node = tree->First(); node; node = node.NextSibling()) {
            if (node.IsElement() && ++elements > 1) return false;
            if (node.IsText() && !node.IsBlankText()) return false;
        }
    }
    return elements == 1;
}

// A busy stream makes thousands of stanzas wait for one that ends with its piece.
void Framer::Pack() {
    for (std::size_t i = kReadable; i < trees_.size(); ++i) packed_.Push(*trees_[i]);
    trees_.resize(std::min(trees_.size(), kReadable));
}

void Framer::Release() {
    if (state_ == State::Document) return void(ReleaseWhole());
    if (ParsedXmlPtr rest = content_.TakeRest(); rest->First()) trees_.push_back(std::move(rest));
    bool kept = keepText_ || Waiting().size() < kKeptAnyway;
    bool mayBeDocument = kept && trees_.size() <= kDocument && IsOneDocument();
    // White space that is written as a reference cannot stand beside the root of a document.
    if (!(mayBeDocument && ReleaseWhole())) {
        if (!packed_.IsEmpty()) Pack();
        releasedTrees_.assign(trees_.begin(), trees_.end());
        releasedPacked_ = std::exchange(packed_, {});
    }
    trees_.clear();
    text_.Clear();
    state_ = State::Idle;
}

// What stands beside the element belongs to the document; most often there is nothing.
bool Framer::ReleaseWhole() {
    ParsedXmlPtr tree =
        trees_.size() == 1 && !trees_[0]->First().NextSibling() ? trees_[0] : ParsedXml::FromWire(Waiting());
    if (!tree) return false;  // something has begun behind the document
    whole_ = Frame{std::move(tree), {}, std::move(text_)};
    document_.reset();
    state_ = State::Idle;
    return true;
}

// Its beginning may still be asked for.
void Framer::Block() {
    trees_.clear();
    packed_.Clear();
    document_.reset();
    state_ = State::Hopeless;
}

std::optional<Frame> Framer::Next() {
    std::optional<Frame> next = NextReleased();
    if (next || !std::exchange(complete_, false)) return next;
    Release();
    return NextReleased();
}

std::optional<Frame> Framer::NextReleased() {
    if (whole_) return std::exchange(whole_, {});
    while (!node_) {
        tree_ = NextTree();
        if (!tree_) return {};
        node_ = tree_->First().OrNextNotBlank();
    }
    const ParsedNode node = std::exchange(node_, node_.NextSibling().OrNextNotBlank());
    return Frame{node_ ? tree_ : std::move(tree_), node, {}};
}

ParsedXmlPtr Framer::NextTree() {
    if (releasedTrees_.empty()) return releasedPacked_.IsEmpty() ? nullptr : releasedPacked_.Pop();
    ParsedXmlPtr tree = std::move(releasedTrees_.front());
    releasedTrees_.pop_front();
    return tree;
}

}  // namespace quorix
