// Looks for the end of a tag, a comment or an instruction that has grown long, so that the parser, which
// looks through an unfinished one from its beginning, is not asked again before it can finish.
#pragma once

#include <string>
#include <string_view>

namespace quorix {

class LongToken {
public:
    bool IsOpen() const { return kind_ != Kind::None; }
    std::size_t HeldSize() const { return held_.size(); }

    // `token` is what the parser holds of it.
    void Open(std::string_view token);

    // Whether the token may end in `more`, which follows what was seen so far. If not, `more` is held.
    bool EndsIn(std::string_view more);

    // What was held; the token is no longer looked for.
    std::string TakeHeld();

private:
    enum class Kind { None, Tag, Comment, Instruction };

    bool TagEndsIn(std::string_view more);
    bool MarkEndsIn(std::string_view mark, std::string_view more);

    Kind kind_ = Kind::None;
    char quote_ = 0;
    std::string last_;  // the end of what was looked through
    std::string held_;
};

}  // namespace quorix
