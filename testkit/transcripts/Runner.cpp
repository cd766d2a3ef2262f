#include "testkit/transcripts/Runner.h"

#include <stdexcept>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"

namespace quorix::transcripts {
namespace {

const std::map<std::string, std::int32_t> kConstants = {
    {"KV_Classic", KV_Classic},
    {"KV_Modern", KV_Modern},
    {"KV_AutoAuth", KV_AutoAuth},
    {"KV_ZeroKAuth", KV_ZeroKAuth},
    {"KV_DigestAuth", KV_DigestAuth},
    {"KV_PlainAuth", KV_PlainAuth},
    {"KV_NoProxy", KV_NoProxy},
    {"KV_HTTPProxy", KV_HTTPProxy},
    {"KV_SOCKS5Proxy", KV_SOCKS5Proxy},
    {"KV_SocksNoAuth", KV_SocksNoAuth},
    {"KV_SocksUserPass", KV_SocksUserPass},
    {"KV_Unknown", KV_Unknown},
};

constexpr std::size_t kOutermost = 2;  // the indentation of what is no handler's

// The bytes that a line of a transcript stands for.
std::string Unescaped(const std::string& text) {
    static const std::map<char, char> kShort = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'0', '\0'}};
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            bytes += text[at];
        } else if (text[++at] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            const auto known = kShort.find(text[at]);
            bytes += known == kShort.end() ? text[at] : known->second;
        }
    }
    return bytes;
}

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::string Words(const Value& value) {
    if (const auto* text = std::get_if<String>(&value)) return '"' + Utf8FromText(*text) + '"';
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "True" : "False";
    if (const auto* number = std::get_if<std::int16_t>(&value)) return std::to_string(*number);
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    const auto* object = std::get_if<Object>(&value);
    return object != nullptr && object->instance ? "an object" : "Nothing";
}

bool Equal(const Value& a, const Value& b) {
    const auto* left = std::get_if<Object>(&a);
    const auto* right = std::get_if<Object>(&b);
    if (left != nullptr && right != nullptr && left->instance && right->instance) return *left == *right;
    return Words(a) == Words(b);
}

}  // namespace

std::string Runner::Play() {
    try {
        names_ = face_.Start([this](const auto& event, const auto& arguments) { OnEvent(event, arguments); });
        PlayFrom(0);
        ExpectSilence();
    } catch (const std::exception& error) {
        Fail(error.what());
    }
    return failure_;
}

void Runner::Fail(const std::string& what) {
    if (failure_.empty()) failure_ = where_ + ": " + what;
}

// The steps that stand at `depth` or deeper, up to the first that does not.
void Runner::PlayFrom(std::size_t depth) {
    while (failure_.empty() && next_ < steps_.size() && steps_[next_].depth >= depth) {
        const std::size_t step = next_++;
        where_ = steps_[step].where;
        const std::string& text = steps_[step].text;
        text.starts_with("On") ? ExpectEvent(step) : Do(text);
        if (depth == 0 && (next_ == steps_.size() || steps_[next_].depth <= kOutermost)) face_.Settle();
    }
}

void Runner::Do(const std::string& text) {
    if (text.starts_with("client: ")) return ExpectClient(Unescaped(text.substr(8)));
    const std::size_t fails = FindOutside(text, " fails with ");
    if (fails != std::string::npos) {
        return ExpectFailure(text.substr(0, fails), std::stoi(text.substr(fails + 12)));
    }
    if (text == "whatever goes out") return void(isCurious_ = false);
    const bool isTold = text.starts_with("server: ");
    if (!isTold && !text.starts_with("after ")) return Act(text);
    ExpectSilence();
    isTold ? face_.Say(Unescaped(text.substr(8))) : face_.Wait(std::stod(text.substr(6)));
}

// "object .Name:=value .Name=value .Name(argument)", or one of these alone.
void Runner::Act(const std::string& text) {
    const std::vector<std::string> clauses = SplitOutside(text, " .");
    const std::string object = clauses.front().substr(0, FindOutside(clauses.front(), " := "));
    if (clauses.size() == 1 || object != clauses.front()) ActOnce(clauses.front());
    for (std::size_t i = 1; i < clauses.size(); ++i) ActOnce(object + "." + clauses[i]);
}

void Runner::ActOnce(const std::string& text) {
    const std::size_t assigned = FindOutside(text, ":=");
    const std::size_t equals = FindOutside(text, "=");
    if (assigned != std::string::npos) {
        Assign(Trimmed(text.substr(0, assigned)), ValueOf(Trimmed(text.substr(assigned + 2))));
    } else if (equals != std::string::npos) {
        ExpectValue(Trimmed(text.substr(0, equals)), Trimmed(text.substr(equals + 1)));
    } else {
        ExpectSilence();
        ValueOf(text);
    }
}

void Runner::ExpectSilence() {
    if (!isCurious_) return;
    heard_ += face_.Heard();
    if (!heard_.empty()) Fail("the client has said besides: " + std::exchange(heard_, {}));
}

void Runner::ExpectClient(const std::string& bytes) {
    face_.Until([&] {
        heard_ += face_.Heard();
        return heard_.size() >= bytes.size();
    });
    if (heard_ != bytes) Fail("the client has said " + heard_);
    heard_.clear();
}

void Runner::ExpectEvent(std::size_t step) {
    --next_;
    if (!face_.Until([&] { return next_ > step || !failure_.empty(); })) {
        Fail("has not come: " + steps_[step].text);
        next_ = step + 1;
    }
}

void Runner::ExpectFailure(const std::string& text, std::int32_t number) {
    try {
        Act(text);
        Fail("has not failed");
    } catch (const AutomationError& error) {
        if (error.Number() != number) Fail("has failed with " + std::to_string(error.Number()));
    }
}

void Runner::ExpectValue(const std::string& text, const std::string& expected) {
    Value value;
    if (!face_.Until([&] { return Equal(value = ValueOf(text), ValueOf(expected)); })) {
        Fail(text + " is " + Words(value));
    }
}

// -- Events --

// Whatever it finds must not leave through the library.
void Runner::OnEvent(const std::string& event, const Values& arguments) {
    const bool isTraffic = event == "OnIncomingXML" || event == "OnOutgoingXML";
    const std::string expected = next_ < steps_.size() ? steps_[next_].text : "";
    if (!failure_.empty() || (isTraffic && !expected.starts_with(event))) return;
    std::erase_if(names_, [](const auto& name) { return name.first.starts_with('$'); });
    for (std::size_t i = 0; i < arguments.size(); ++i) names_["$" + std::to_string(i + 1)] = arguments[i];
    try {
        Match(expected, event);
        if (failure_.empty()) PlayFrom(steps_[next_++].depth + 1);
    } catch (const std::exception& error) {
        Fail(error.what());
    }
}

void Runner::Match(const std::string& expected, const std::string& event) {
    if (next_ < steps_.size()) where_ = steps_[next_].where;
    const std::size_t open = std::min(expected.find('('), expected.size());
    if (expected.substr(0, open) != event) return Fail(event + " has come, not " + expected);
    if (open == expected.size()) return;
    std::size_t position = 0;
    for (const auto& pattern : SplitOutside(expected.substr(open + 1, expected.size() - open - 2), ", ")) {
        MatchArgument(pattern, ++position);
    }
}

// "_" is anything, ".Name=value" a member of the argument, with more of them behind it.
void Runner::MatchArgument(const std::string& pattern, std::size_t position) {
    const std::string argument = "$" + std::to_string(position);
    if (pattern == "_") return;
    if (!pattern.starts_with('.')) return ExpectValue(argument, pattern);
    Act(argument + " " + pattern);
}

// -- Values --

Value Runner::ValueOf(const std::string& text) { return Read(NameOf(text)); }

Values Runner::ValuesOf(const std::string& list) {
    Values values;
    if (list.empty()) return values;
    for (const std::string& text : SplitOutside(list, ", ")) values.push_back(ValueOf(text));
    return values;
}

Value Runner::Base(const std::string& name) {
    if (const auto known = names_.find(name); known != names_.end()) return known->second;
    if (const auto constant = kConstants.find(name); constant != kConstants.end()) return constant->second;
    if (name == "True" || name == "False") return name == "True";
    if (name == "Nothing") return scripting::Nothing{};
    if (name.starts_with("new ")) return face_.Create(name.substr(4));
    if (name.starts_with('"')) return TextFromUtf8(Unescaped(name.substr(1, name.size() - 2)));
    return static_cast<std::int32_t>(std::stoi(name));
}

// A member of what nobody has named.
bool Runner::IsControl(const std::vector<std::string>& parts) const {
    return parts.size() > 1 && parts.front().find_first_of("\" ") == std::string::npos &&
           names_.count(parts.front()) == 0;
}

Runner::Named Runner::NameOf(const std::string& text) {
    const std::vector<std::string> parts = SplitOutside(text, ".");
    Named named;
    const bool isControl = IsControl(parts);
    if (!isControl) named.owner = Base(parts.front());
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (i > 1) named.owner = Read(named);
        const std::size_t open = std::min(parts[i].find('('), parts[i].size());
        named.member = (isControl && i == 1 ? parts.front() + "." : "") + parts[i].substr(0, open);
        named.arguments.clear();
        if (open != parts[i].size()) {
            named.arguments = ValuesOf(parts[i].substr(open + 1, parts[i].size() - open - 2));
        }
    }
    return named;
}

Value Runner::Read(const Named& named) {
    if (named.member.empty()) return named.owner;
    if (named.member.find('.') != std::string::npos) return face_.Control(named.member, named.arguments);
    const auto* object = std::get_if<Object>(&named.owner);
    if (object == nullptr || !object->instance) throw std::runtime_error("no object has " + named.member);
    return face_.Call(*object, named.member, named.arguments);
}

void Runner::Assign(const std::string& target, const Value& value) {
    const Named named = NameOf(target.find('.') == std::string::npos ? "Nothing" : target);
    if (named.member.empty()) {
        names_[target] = value;
    } else {
        face_.Put(std::get<Object>(named.owner), named.member, value);
    }
}

}  // namespace quorix::transcripts
