// Keeps secrets out of the log.
#pragma once

#include "quorix/base/String.h"

namespace quorix::console {

// `xml` with the content of every password, digest, hash and key element replaced by "***".
String MaskSecrets(StringView xml);

}  // namespace quorix::console
