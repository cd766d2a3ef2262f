// The bounds that protect us from hostile documents. A document that exceeds one of the first three does not
// load.
#pragma once

#include <cstddef>

namespace quorix {

// Elements inside each other, the document element counted as one.
inline constexpr int kMaxXmlDepth = 1000;

// Attributes of one element. The parser compares each attribute with all before it.
inline constexpr int kMaxXmlAttributes = 1000;

// Different names in one document, of elements, attributes and instructions together; names that the thread's
// documents share already do not count. The parser's collection of names grows slow beyond.
inline constexpr int kMaxXmlNames = 65536;

// Names that the documents of a thread share, and their bytes, before a new collection of them is begun: a
// peer can invent names for ever.
inline constexpr int kMaxSharedNames = 4096;
inline constexpr std::size_t kMaxSharedNameBytes = 1U << 20U;

// Compiled queries that a thread keeps.
inline constexpr std::size_t kMaxCompiledQueries = 64;

}  // namespace quorix
