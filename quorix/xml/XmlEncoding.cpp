#include "quorix/xml/XmlEncoding.h"

#include <libxml/encoding.h>
#include <libxml/tree.h>

#include <memory>

#include "quorix/xml/QuietParser.h"
#include "quorix/xml/XmlTree.h"

namespace quorix {

namespace {

using Handler =
    std::unique_ptr<xmlCharEncodingHandler, decltype([](auto* handler) { xmlCharEncCloseFunc(handler); })>;
using Buffer = std::unique_ptr<xmlBuffer, decltype([](auto* buffer) { xmlBufferFree(buffer); })>;

// The encoding that the declaration names; "" when it names none.
std::string DeclaredEncoding(std::string_view bytes) {
    std::size_t end = bytes.starts_with("<?xml ") ? bytes.find("?>") : std::string_view::npos;
    if (end == std::string_view::npos) return {};
    std::string_view declaration = bytes.substr(0, end);
    std::size_t open = declaration.find_first_of("\"'", declaration.find("encoding"));
    if (open == std::string_view::npos) return {};
    std::size_t close = declaration.find(declaration[open], open + 1);
    return std::string(declaration.substr(open + 1, close - open - 1));
}

std::optional<std::string> Converted(const Handler& handler, std::string_view bytes) {
    QuietParser::RequireMemory();
    if (!handler) return {};
    Buffer in(Required(xmlBufferCreateSize(bytes.size() + 1)));
    Buffer out(Required(xmlBufferCreate()));
    if (xmlBufferAdd(in.get(), BAD_CAST bytes.data(), static_cast<int>(bytes.size())) != 0)
        throw std::bad_alloc();
    while (xmlBufferLength(in.get()) > 0) {
        if (xmlCharEncInFunc(handler.get(), out.get(), in.get()) > 0) continue;
        QuietParser::RequireMemory();
        return {};
    }
    QuietParser::RequireMemory();
    return std::string(Chars(xmlBufferContent(out.get())),
                       static_cast<std::size_t>(xmlBufferLength(out.get())));
}

}  // namespace

std::optional<std::string> Utf8FromFile(std::string_view bytes) {
    QuietParser quiet;
    xmlCharEncoding detected = xmlDetectCharEncoding(BAD_CAST bytes.data(), static_cast<int>(bytes.size()));
    if (detected == XML_CHAR_ENCODING_NONE || detected == XML_CHAR_ENCODING_UTF8) {
        std::string declared = DeclaredEncoding(bytes);
        if (declared.empty() || xmlParseCharEncoding(declared.c_str()) == XML_CHAR_ENCODING_UTF8)
            return std::string(bytes);
        return Converted(Handler(xmlFindCharEncodingHandler(declared.c_str())), bytes);
    }
    return Converted(Handler(xmlGetCharEncodingHandler(detected)), bytes);
}

}  // namespace quorix
