#include "apps/console/Command.h"
#include "apps/console/Console.h"
#include "apps/console/Text.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

template <eSubType kind>
void Direct(Console& console, const Words& values) {
    const String status = values.size() > 1 ? values[1] : String();
    console.Session().SendPresence(Encoded(console.Session(), values[0]), kind, status);
}

template <eShowType show>
void Appear(Console& console, const Words& values) {
    console.Session().ShowType(show);
    console.Session().Status(values[0]);
    console.Session().SendMyPresence();
}

void Priority(Console& console, const Words& values) {
    console.Session().Priority(static_cast<std::int16_t>(std::stoi(Utf8FromText(values[0]))));
    console.Session().SendMyPresence();
}

void Invisible(Console& console, const Words& /*values*/) {
    console.Session().SendPresence({}, KV_Invisible, {});
}

}  // namespace

std::span<const Command> PresenceCommands() {
    static constexpr Command kCommands[] = {
        {"/subscribe", "JID [TEXT]", "asks to see when somebody is there", Direct<KV_Subscribe>},
        {"/unsubscribe", "JID", "no longer wants to see that", Direct<KV_UnSubscribe>},
        {"/accept", "JID", "lets somebody see when you are there", Direct<KV_Subscribe_Accept>},
        {"/deny", "JID [TEXT]", "does not let somebody see that, or no longer", Direct<KV_Subscribe_Deny>},
        {"/presence", "[TEXT]", "tells the contacts that you are there, with a status text", Appear<KV_None>},
        {"/free", "[TEXT]", "... and want to talk", Appear<KV_chat>},
        {"/away", "[TEXT]", "... but away", Appear<KV_Away>},
        {"/xa", "[TEXT]", "... but away for long", Appear<KV_ExtendedAway>},
        {"/dnd", "[TEXT]", "... but busy", Appear<KV_DND>},
        {"/invisible", "", "hides you from the contacts, where the server knows how", Invisible},
        {"/priority", "PRIORITY", "the highest of your resources gets what is sent to you", Priority},
    };
    return kCommands;
}

}  // namespace quorix::console
