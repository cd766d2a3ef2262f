// SHA-1 of a wire text as 40 lower-case hexadecimal digits.
#pragma once

#include "quorix/base/String.h"

namespace quorix {

// Characters above 255 are hashed as "?", like they would be sent.
String SHAHash(StringView wire);

}  // namespace quorix
