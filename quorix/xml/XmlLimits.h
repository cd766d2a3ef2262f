// The bounds that protect us from hostile documents. What exceeds one does not load.
#pragma once

namespace quorix {

// Elements inside each other, the document element counted as one.
inline constexpr int kMaxXmlDepth = 1000;

// Attributes of one element. The parser compares each attribute with all before it.
inline constexpr int kMaxXmlAttributes = 1000;

}  // namespace quorix
