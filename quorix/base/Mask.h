/// \file
/// Keeps secrets out of what a program shows or logs of the traffic.
#pragma once

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// What OnIncomingXML and OnOutgoingXML tell, with "***" for the content of every element that holds a
/// secret, whatever its prefix: passwords, digests, keys, tokens; and for the values of private form fields,
/// and of form fields and attributes that are named like a secret. Names decide, so text that is not
/// well-formed is masked as well. The body of a message is no secret.
QUORIX_API String MaskSecrets(StringView xml);

}  // namespace quorix
