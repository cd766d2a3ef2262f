#include "python/module/Descriptions.h"

#include <map>
#include <stdexcept>
#include <tuple>

namespace quorix::python {
namespace {

using scripting::MemberKind;

const MemberText& Find(const std::string& owner, const std::string& name, MemberKind kind,
                       std::size_t parameters) {
    using Key = std::tuple<std::string, std::string, MemberKind>;
    static const std::map<Key, const MemberText*> all = [] {
        std::map<Key, const MemberText*> made;
        for (const MemberText& text : MemberTexts())
            made.emplace(Key(text.owner, text.name, text.kind), &text);
        return made;
    }();
    const auto found = all.find({owner, name, kind});
    if (found == all.end() || found->second->parameters.size() != parameters) {
        throw std::logic_error(owner + "." + name + " is described otherwise than it is");
    }
    return *found->second;
}

}  // namespace

const char* HelpOf(const scripting::ClassTable& table) {
    for (const ClassText& text : ClassTexts()) {
        if (std::string(text.name) == table.Name()) return text.help;
    }
    throw std::logic_error(std::string(table.Name()) + " is not described");
}

const MemberText& TextOf(const scripting::ClassTable& table, const scripting::Member& member) {
    return Find(table.Name(), member.name, member.kind, member.parameters.size());
}

const MemberText& TextOf(const scripting::ClassTable& table, const scripting::Event& event) {
    return Find(std::string(table.Name()) + "Events", event.name, MemberKind::Method,
                event.parameters.size());
}

}  // namespace quorix::python
