#include "quorix/xml/XmlParser.h"

#include <libxml/parserInternals.h>

#include <algorithm>
#include <limits>
#include <memory>

#include "quorix/xml/AttributeCount.h"
#include "quorix/xml/QuietParser.h"
#include "quorix/xml/XmlBuilder.h"
#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

struct ParserFree {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserFree>;

ParserPtr NewParser() {
    ParserPtr parser(xmlNewParserCtxt());
    *parser->sax = XmlBuilder::Handlers();
    return parser;
}

void BoundSharedNames(xmlParserCtxt* parser) {
    if (xmlDictSize(parser->dict) < kMaxSharedNames && xmlDictGetUsage(parser->dict) < kMaxSharedNameBytes)
        return;
    xmlDictFree(parser->dict);
    parser->dict = xmlDictCreate();
}

// A parser costs more to make than a stanza to parse.
xmlParserCtxt* ThreadParser(int options) {
    thread_local ParserPtr parser = NewParser();
    BoundSharedNames(parser.get());
    parser->options = 0;  // the call below only adds to them
    // Without XML_PARSE_NOENT an "&amp;" in an attribute would be left for a second parse.
    xmlCtxtUseOptions(parser.get(), options | XML_PARSE_HUGE | XML_PARSE_NOENT | XML_PARSE_NONET);
    return parser.get();
}

// The declaration's content, as written; nothing when the document has none.
std::string Declaration(std::string_view source) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr std::string_view kOpening = "<?xml";
    if (source.starts_with(kMark)) source.remove_prefix(kMark.size());
    if (!source.starts_with(kOpening)) return {};
    source = source.substr(0, source.find("?>")).substr(kOpening.size());
    std::size_t blanks = std::min(source.find_first_not_of(" \t\r\n"), source.size());
    if (blanks == 0) return {};  // the target only begins like a declaration's
    source.remove_prefix(blanks);
    return std::string(source);
}

XmlTreePtr Parse(xmlParserCtxt* parser, xmlParserInput* input, const std::string& source, bool enclosed) {
    XmlBuilder builder(parser, Declaration(source), enclosed);
    parser->userData = &builder;
    inputPush(parser, input);
    xmlParseDocument(parser);
    XmlTreePtr tree = builder.Finish();
    xmlCtxtReset(parser);
    return tree;
}

bool FitsParser(const std::string& bytes) {
    return bytes.size() < std::numeric_limits<int>::max() && !HasTooManyAttributes(bytes);
}

}  // namespace

XmlTreePtr ParseText(const std::string& utf8, bool enclosed) {
    if (!FitsParser(utf8) || utf8.find('\0') != std::string::npos) return nullptr;
    xmlParserCtxt* parser = ThreadParser(XML_PARSE_IGNORE_ENC);
    return Parse(parser, xmlNewStringInputStream(parser, BAD_CAST utf8.c_str()), utf8, enclosed);
}

XmlTreePtr ParseFile(const std::string& bytes) {
    if (bytes.empty() || !FitsParser(bytes)) return nullptr;
    QuietParser quiet;
    xmlParserCtxt* parser = ThreadParser(0);
    xmlParserInputBuffer* buffer =
        xmlParserInputBufferCreateMem(bytes.data(), static_cast<int>(bytes.size()), XML_CHAR_ENCODING_NONE);
    return Parse(parser, xmlNewIOInputStream(parser, buffer, XML_CHAR_ENCODING_NONE), bytes, false);
}

}  // namespace quorix
