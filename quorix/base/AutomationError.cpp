#include "quorix/base/AutomationError.h"

#include "quorix/base/WireText.h"

namespace quorix {

namespace {

const char* ClassicText(std::int32_t number) {
    switch (number) {
        case ERR_InvalidCall: return "Invalid procedure call or argument";
        case ERR_Overflow: return "Overflow";
        case ERR_Subscript: return "Subscript out of range";
        case ERR_TypeMismatch: return "Type mismatch";
        case ERR_FileNotFound: return "File not found";
        case ERR_ObjectNotSet: return "Object variable or With block variable not set";
        case ERR_ArgumentMissing: return "Argument not optional";
        case ERR_ArgumentCount: return "Wrong number of arguments or invalid property assignment";
        case ERR_KeyInUse: return "This key is already associated with an element of this collection";
        case ERR_NotConnected: return "Socket is not connected";
        default: return "Application-defined or object-defined error";
    }
}

}  // namespace

AutomationError::AutomationError(std::int32_t number) : AutomationError(number, ClassicText(number)) {}

AutomationError::AutomationError(std::int32_t number, const std::string& description)
    : std::runtime_error(description), number_(number) {}

String AutomationError::Description() const { return TextFromUtf8(what()); }

}  // namespace quorix
