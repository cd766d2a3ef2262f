#include "quorix/base/CollectionElements.h"

namespace quorix {

template class Collection<String>;

}  // namespace quorix
