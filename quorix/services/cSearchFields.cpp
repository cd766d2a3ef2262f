#include "quorix/services/cSearchFields.h"
#include "quorix/base/CollectionElements.h"

namespace quorix {

template class Collection<std::shared_ptr<cSearchField>>;

std::shared_ptr<cSearchField> cSearchFields::Add(StringView name, StringView data, StringView key) {
    auto field = std::make_shared<cSearchField>(name, data);
    key.empty() ? items_.Add(field) : items_.Add(field, key);
    return field;
}

}  // namespace quorix
