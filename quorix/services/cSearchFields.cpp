#include "quorix/services/cSearchFields.h"

namespace quorix {

std::shared_ptr<cSearchField> cSearchFields::Add(StringView name, StringView data, StringView key) {
    auto field = std::make_shared<cSearchField>(name, data);
    key.empty() ? items_.Add(field) : items_.Add(field, key);
    return field;
}

}  // namespace quorix
