// How available somebody is: the show element of a presence.
#pragma once

#include <cstdint>

namespace quorix {

enum eShowType : std::int32_t {
    KV_None = 0,          // plainly available: no show element
    KV_chat = 1,          // "chat", wants to talk
    KV_Away = 2,          // "away"
    KV_ExtendedAway = 3,  // "xa"
    KV_DND = 4,           // "dnd", do not disturb
};

}  // namespace quorix
