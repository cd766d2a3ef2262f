// The bounds that protect us from hostile documents.
#pragma once

namespace quorix {

// Elements inside each other, the document element counted as one. A document that is deeper does not load;
// of a stanza that is deeper only OnIncomingXML tells.
inline constexpr int kMaxXmlDepth = 1000;

}  // namespace quorix
