#include "apps/console/Desk.h"

#include "apps/console/Console.h"
#include "apps/console/Text.h"

namespace quorix::console {

cSession& Desk::Session() const { return console_.Session(); }
void Desk::Show(std::string_view event, const Fields& fields) const { console_.Show(event, fields); }
void Desk::Fail(const String& what, StringView reason) const { console_.Fail(what, reason); }
String Desk::Text(StringView value) const { return Readable(Session(), value); }

}  // namespace quorix::console
