#include "quorix/xml/LongToken.h"

#include <utility>

namespace quorix {

void LongToken::Open(std::string_view token) {
    *this = LongToken();
    if (token.starts_with("<!--")) {
        kind_ = Kind::Comment;
    } else if (token.starts_with("<?")) {
        kind_ = Kind::Instruction;
    } else if (token.starts_with('<')) {
        kind_ = Kind::Tag;
    }
    if (IsOpen() && EndsIn(token)) kind_ = Kind::None;
    held_.clear();
}

bool LongToken::EndsIn(std::string_view more) {
    bool ends =
        kind_ == Kind::Tag ? TagEndsIn(more) : MarkEndsIn(kind_ == Kind::Comment ? "-->" : "?>", more);
    if (!ends) held_ += more;
    return ends;
}

bool LongToken::TagEndsIn(std::string_view more) {
    while (true) {
        std::size_t at = quote_ != 0 ? more.find(quote_) : more.find_first_of("'\">");
        if (at == std::string_view::npos) return false;
        if (quote_ == 0 && more[at] == '>') return true;
        quote_ = quote_ != 0 ? '\0' : more[at];
        more.remove_prefix(at + 1);
    }
}

bool LongToken::MarkEndsIn(std::string_view mark, std::string_view more) {
    std::string seam = last_ + std::string(more.substr(0, mark.size()));
    if (seam.find(mark) != std::string::npos || more.find(mark) != std::string_view::npos) return true;
    last_ = more.size() >= mark.size() ? std::string(more.substr(more.size() - mark.size() + 1)) : seam;
    return false;
}

std::string LongToken::TakeHeld() {
    std::string held = std::move(held_);
    *this = LongToken();
    return held;
}

}  // namespace quorix
