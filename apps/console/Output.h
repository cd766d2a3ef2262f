// Events on their way out: as lines for people, or as JSON for programs.
#pragma once

#include <string>

#include "apps/console/Event.h"
#include "apps/console/Terminal.h"

namespace quorix::console {

struct OutputStyle {
    bool json = false;
    bool times = false;
    bool colors = false;
    bool bell = false;
    bool quiet = false;       // no notices
    bool onlyErrors = false;  // nor anything else
};

class Output {
public:
    // `terminal` must outlive the object.
    Output(Terminal& terminal, OutputStyle style) : terminal_(terminal), style_(style) {}

    void Show(std::string_view name, const Fields& fields);

    // Whether an error was among what was shown.
    bool HadError() const { return hadError_; }

private:
    void ShowLine(const EventForm& form, const Fields& fields);
    std::string Painted(const EventForm& form, const Fields& fields, const std::string& text) const;

    Terminal& terminal_;
    OutputStyle style_;
    bool hadError_ = false;
};

}  // namespace quorix::console
