#include "quorix/scripting/ClassTable.h"

#include <algorithm>

namespace quorix::scripting {

ArgumentError::ArgumentError(std::int32_t number, std::size_t position)
    : AutomationError(number), position_(position) {}

ClassTable::ClassTable(const char* name) : name_(name) {
    static const std::vector<Event> none;
    events_ = &none;
}

const Member* ClassTable::Find(std::string_view name, MemberKind kind) const {
    auto found = std::find_if(members_.begin(), members_.end(), [&](const Member& member) {
        return member.kind == kind && member.name == name;
    });
    return found != members_.end() ? &*found : nullptr;
}

Object ClassTable::MakeObject() const {
    Instance made = create_();
    const void* identity = made.get();
    return {std::move(made), this, identity};
}

Value Call(const Member& member, const Instance& instance, Values arguments) {
    const std::size_t wanted = member.parameters.size();
    if (arguments.size() > wanted) throw ArgumentError(ERR_ArgumentCount, wanted);
    arguments.resize(wanted);
    for (std::size_t i = 0; i < wanted; ++i) {
        if (IsMissing(arguments[i]) && !member.parameters[i].isOptional) {
            throw ArgumentError(ERR_ArgumentMissing, i);
        }
    }
    return member.thunk(instance, arguments);
}

}  // namespace quorix::scripting
