// The encodings of files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorix {

// A file's bytes as UTF-8: from what its byte order mark, its first characters or its declaration say.
// Nothing when the encoding is unknown, or the bytes are not in it.
std::optional<std::string> Utf8FromFile(std::string_view bytes);

}  // namespace quorix
