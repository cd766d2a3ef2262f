// One side of the console: hears the session's events of one field and shows them.
#pragma once

#include <string_view>

#include "apps/console/Event.h"
#include "quorix/session/cSession.h"

namespace quorix::console {

class Console;

class Desk : public SessionEvents {
public:
    explicit Desk(Console& console) : console_(console) {}

protected:
    cSession& Session() const;
    Console& Owner() const { return console_; }
    void Show(std::string_view event, const Fields& fields) const;
    void Fail(const String& what, StringView reason) const;
    // As the session gives a value, as text.
    String Text(StringView value) const;

private:
    Console& console_;
};

}  // namespace quorix::console
