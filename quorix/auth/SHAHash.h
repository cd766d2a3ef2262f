// SHA-1 as 40 lower-case hexadecimal digits.
#pragma once

#include <string_view>

#include "quorix/base/String.h"

namespace quorix {

String SHAHash(std::string_view bytes);

// Of wire text. Characters above 255 are hashed as "?", like they would be sent.
String SHAHash(StringView wire);

}  // namespace quorix
