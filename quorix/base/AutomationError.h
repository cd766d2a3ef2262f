/// \class quorix::AutomationError
/// The error that reaches a caller who asked for something impossible. Protocol and network failures are
/// never thrown; they are events.
#pragma once

#include <stdexcept>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// The classic automation error numbers.
enum eErrorNumber : std::int32_t {
    ERR_InvalidCall = 5,        ///< invalid procedure call or argument; also: no such key
    ERR_Overflow = 6,           ///< a number outside its type's range
    ERR_Subscript = 9,          ///< an index outside its collection
    ERR_TypeMismatch = 13,      ///< a text that is no number or Boolean
    ERR_FileNotFound = 53,      ///< no such file
    ERR_ObjectNotSet = 91,      ///< a record without a living session
    ERR_ArgumentMissing = 449,  ///< a script left out an argument that is needed
    ERR_ArgumentCount = 450,    ///< a script gave more arguments than there are parameters
    ERR_KeyInUse = 457,         ///< the key belongs to another element of the collection
    ERR_NotConnected = 10057,   ///< a sender of a session that is not connected, in KV_Modern
};

class QUORIX_API AutomationError : public std::runtime_error {
public:
    /// With the number's classic text.
    explicit AutomationError(std::int32_t number);
    AutomationError(std::int32_t number, const std::string& description);

    std::int32_t Number() const { return number_; }
    String Description() const;

private:
    std::int32_t number_;
};

}  // namespace quorix
