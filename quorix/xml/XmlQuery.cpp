#include "quorix/xml/XmlQuery.h"

#include <libxml/xpath.h>

#include <memory>
#include <string_view>
#include <unordered_map>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/QuietParser.h"
#include "quorix/xml/XmlLimits.h"

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
using Compiled = std::unique_ptr<xmlXPathCompExpr, With<xmlXPathFreeCompExpr>>;
using Result = std::unique_ptr<xmlXPathObject, With<xmlXPathFreeObject>>;

// The thread's evaluator with the expressions it has compiled: both cost more than a query on a stanza.
class Evaluator {
public:
    Result Evaluate(xmlNode* node, StringView xpath) {
        QuietParser quiet;
        xmlXPathCompExpr* expression = Expression(xpath);
        if (!expression) return nullptr;
        context_->doc = node->doc;
        context_->node = node;
        xmlResetError(&context_->lastError);
        Result result(xmlXPathCompiledEval(expression, context_.get()));
        context_->doc = nullptr;
        context_->node = nullptr;
        RequireMemory();
        return result;
    }

private:
    struct Hash : std::hash<StringView> {
        using is_transparent = void;
    };

    xmlXPathCompExpr* Expression(StringView xpath) {
        auto found = compiled_.find(xpath);
        if (found != compiled_.end()) return found->second.get();
        if (compiled_.size() >= kMaxCompiledQueries) compiled_.clear();
        std::string utf8 = WithNamesAsWritten(TreeText(xpath));
        xmlResetError(&context_->lastError);
        Compiled expression(xmlXPathCtxtCompile(context_.get(), BAD_CAST utf8.c_str()));
        RequireMemory();
        return compiled_.emplace(xpath, std::move(expression)).first->second.get();
    }

    void RequireMemory() const {
        QuietParser::RequireMemory();
        QuietParser::RequireMemory(context_->lastError);
    }

    Context context_{Required(xmlXPathNewContext(nullptr))};
    std::unordered_map<String, Compiled, Hash, std::equal_to<>> compiled_;
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
