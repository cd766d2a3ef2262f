// The bounds that protect us from hostile documents.
#pragma once

#include <cstddef>

namespace quorix {

// Elements inside each other, the document element counted as one. A document that is deeper does not load;
// of a stanza that is deeper only OnIncomingXML tells.
inline constexpr int kMaxXmlDepth = 1000;

// Elements of one stanza that are open at once: the parser keeps some 150 bytes for each, dropped or not.
inline constexpr std::size_t kMaxOpenElements = 100000;

}  // namespace quorix
