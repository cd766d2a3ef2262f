/// \file
/// One entry of a browsed room (jabber:iq:browse): somebody in it, or something that it offers.
#pragma once

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// Wire text, as received. SubType is the entry's "type", or its "category" when it has no type.
class QUORIX_API cBrowseItem {
public:
    String JID() const { return jid_; }
    void JID(StringView value) { jid_ = value; }

    String Name() const { return name_; }
    void Name(StringView value) { name_ = value; }

    String SubType() const { return subType_; }
    void SubType(StringView value) { subType_ = value; }

private:
    String jid_;
    String name_;
    String subType_;
};

}  // namespace quorix
