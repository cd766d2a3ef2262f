// Keeps secrets out of what is shown of the traffic.
#pragma once

#include "quorix/base/String.h"

namespace quorix::console {

// `xml` with "***" for the content of every element that holds a secret, whatever its prefix: passwords,
// digests, keys, tokens; and for the values of private form fields, and of form fields and attributes that
// are named like a secret. Names decide, so text that is not well-formed is masked as well.
String MaskSecrets(StringView xml);

}  // namespace quorix::console
