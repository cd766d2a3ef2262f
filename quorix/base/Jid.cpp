#include "quorix/base/Jid.h"

namespace quorix {

String RemoveResource(StringView jid) { return String(jid.substr(0, jid.find(u'/'))); }

String GetResource(StringView jid) {
    std::size_t slash = jid.find(u'/');
    return slash == StringView::npos ? String() : String(jid.substr(slash + 1));
}

}  // namespace quorix
