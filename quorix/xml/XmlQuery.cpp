#include "quorix/xml/XmlQuery.h"

#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include <memory>
#include <string_view>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/QuietParser.h"

namespace quorix {

namespace {

template <auto Free>
struct With {
    template <class T>
    void operator()(T* pointer) const {
        Free(pointer);
    }
};
using Context = std::unique_ptr<xmlXPathContext, With<xmlXPathFreeContext>>;
struct EndRun {
    void operator()(xmlXPathParserContext* run) const {
        run->valueFrame = 0;
        while (xmlXPathObject* left = valuePop(run)) xmlXPathFreeObject(left);
        xmlXPathFreeParserContext(run);
    }
};
using Run = std::unique_ptr<xmlXPathParserContext, EndRun>;
using Result = std::unique_ptr<xmlXPathObject, With<xmlXPathFreeObject>>;

// What a query at `node` sets in the thread's context, which must not outlive it: the document may be gone
// next, and the library keeps the text of an error.
class At {
public:
    At(xmlXPathContext& context, xmlNode& node) : context_(context) {
        context.doc = node.doc;
        context.node = &node;
    }
    ~At() {
        context_.doc = nullptr;
        context_.node = nullptr;
        xmlResetError(&context_.lastError);
    }
    At(const At&) = delete;
    At& operator=(const At&) = delete;

private:
    xmlXPathContext& context_;
};

// The library takes an expression without brackets for a pattern, which finds nothing when memory runs out.
std::string AsNoPattern(const std::string& xpath) {
    return xpath.find_first_of("()[]@") == std::string::npos ? "(" + xpath + ")" : xpath;
}

// The thread's evaluator, which costs more to make than a query on a stanza.
class Evaluator {
public:
    Result Evaluate(xmlNode* node, StringView xpath) {
        QuietParser quiet;
        const std::string written = AsNoPattern(WithNamesAsWritten(TreeText(xpath)));
        const At at(*context_, *node);
        Run run = NewRun(written);
        xmlXPathEvalExpr(run.get());
        Result result(run->error == XPATH_EXPRESSION_OK ? valuePop(run.get()) : nullptr);
        RequireMemory();
        return result;
    }

private:
    // One query for `xpath`, which it does not copy. The library would make the stack when it is needed, but
    // does not survive it when there is no memory for it; nor for what it makes to run an expression that was
    // compiled before.
    Run NewRun(const std::string& xpath) {
        constexpr int kStack = 10;
        Run run(Required(xmlXPathNewParserContext(BAD_CAST xpath.c_str(), context_.get())));
        void* stack = Required(xmlMalloc(kStack * sizeof(xmlXPathObjectPtr)));
        run->valueTab = static_cast<xmlXPathObjectPtr*>(stack);
        run->valueMax = kStack;
        return run;
    }

    void RequireMemory() const {
        QuietParser::RequireMemory();
        QuietParser::RequireMemory(context_->lastError);
    }

    Context context_{Required(xmlXPathNewContext(nullptr))};
};

Evaluator& ThreadEvaluator() {
    thread_local Evaluator evaluator;
    return evaluator;
}

bool IsNameChar(char c) {
    bool letter =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<signed char>(c) < 0;
    return letter || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

std::string_view TakeName(std::string_view& text) {
    std::size_t size = 0;
    while (size < text.size() && IsNameChar(text[size])) ++size;
    std::string_view name = text.substr(0, size);
    text.remove_prefix(size);
    return name;
}

// A quoted literal, or any other single character.
std::string_view TakeOther(std::string_view& text) {
    bool quoted = text.front() == '"' || text.front() == '\'';
    std::size_t end = quoted ? text.find(text.front(), 1) : 0;
    std::string_view taken = text.substr(0, end == std::string_view::npos ? end : end + 1);
    text.remove_prefix(taken.size());
    return taken;
}

// A single colon; two end the name of an axis.
bool AtPrefixEnd(std::string_view rest) {
    return rest.size() > 1 && rest[0] == ':' && (rest[1] == '*' || IsNameChar(rest[1]));
}

// `rest` stands at the colon behind `prefix`.
std::string TakeNameTest(const std::string& prefix, std::string_view& rest) {
    rest.remove_prefix(1);
    if (rest.front() != '*') return "*[name()='" + prefix + ":" + std::string(TakeName(rest)) + "']";
    rest.remove_prefix(1);
    return "*[starts-with(name(),'" + prefix + ":')]";
}

}  // namespace

std::string WithNamesAsWritten(std::string_view xpath) {
    std::string out;
    while (!xpath.empty()) {
        std::string_view name = TakeName(xpath);
        if (name.empty()) {
            out += TakeOther(xpath);
        } else if (AtPrefixEnd(xpath)) {
            out += TakeNameTest(std::string(name), xpath);
        } else {
            out += name;
        }
    }
    return out;
}

std::vector<XmlNode> SelectNodes(xmlNode* context, StringView xpath) {
    Result result = ThreadEvaluator().Evaluate(context, xpath);
    if (!result || result->type != XPATH_NODESET) throw AutomationError(ERR_InvalidCall);
    std::vector<XmlNode> nodes;
    const xmlNodeSet* found = result->nodesetval;
    for (int i = 0; found && i < found->nodeNr; ++i) {
        // The namespace axis makes up nodes that are in no tree.
        if (found->nodeTab[i]->type != XML_NAMESPACE_DECL) nodes.emplace_back(found->nodeTab[i]);
    }
    return nodes;
}

}  // namespace quorix
