#include "quorix/services/cSearchResults.h"
#include "quorix/base/CollectionElements.h"

namespace quorix {

template class Collection<std::shared_ptr<cSearchResult>>;

std::shared_ptr<cSearchResult> cSearchResults::Add(StringView item, StringView key) {
    auto result = std::make_shared<cSearchResult>(item);
    key.empty() ? items_.Add(result) : items_.Add(result, key);
    return result;
}

}  // namespace quorix
