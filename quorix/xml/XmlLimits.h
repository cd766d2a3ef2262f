// The bounds that protect us from hostile documents.
#pragma once

#include <cstddef>

namespace quorix {

// Elements inside each other, the document element counted as one. A document that is deeper does not load;
// of a stanza that is deeper only OnIncomingXML tells.
inline constexpr int kMaxXmlDepth = 1000;

// Compiled queries that a thread keeps.
inline constexpr std::size_t kMaxCompiledQueries = 64;

}  // namespace quorix
