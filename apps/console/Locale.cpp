#include "apps/console/Locale.h"

#include <glib.h>

#include <memory>

namespace quorix::console {

namespace {

std::string Converted(char* text, gsize size, const std::string& otherwise) {
    const std::unique_ptr<char, decltype(&g_free)> owned(text, g_free);
    return text != nullptr ? std::string(text, size) : otherwise;
}

}  // namespace

std::string ToLocale(const std::string& utf8) {
    const char* charset = nullptr;
    if (g_get_charset(&charset) != 0) return utf8;
    gsize size = 0;
    char* text = g_convert_with_fallback(utf8.data(), static_cast<gssize>(utf8.size()), charset, "UTF-8",
                                         nullptr, nullptr, &size, nullptr);
    return Converted(text, size, utf8);
}

std::string FromLocale(const std::string& bytes) {
    gsize size = 0;
    char* text = g_locale_to_utf8(bytes.data(), static_cast<gssize>(bytes.size()), nullptr, &size, nullptr);
    return Converted(text, size, bytes);
}

}  // namespace quorix::console
