#include "quorix/scripting/Conversion.h"

namespace quorix::scripting {

Instance InstanceOf(const Value& value, const ClassTable& table) {
    if (IsMissing(value) || std::holds_alternative<Nothing>(value)) return nullptr;
    const auto& object = Exactly<Object>(value);
    if (object.table != &table) throw AutomationError(ERR_TypeMismatch);
    return object.instance;
}

std::int32_t Int32Of(const Value& value) {
    if (const auto* narrow = std::get_if<std::int16_t>(&value)) return *narrow;
    return Exactly<std::int32_t>(value);
}

}  // namespace quorix::scripting
