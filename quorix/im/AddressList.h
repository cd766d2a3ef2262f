// Which addresses the entries of an element in a message hold, so that listing many stays cheap.
#pragma once

#include <set>

#include "quorix/base/String.h"
#include "quorix/xml/XmlNode.h"

namespace quorix {

class AddressList {
public:
    // Appends an entry `name` for `jid` to `list`; an empty node when one is there already, ASCII case aside.
    XmlNode Append(XmlNode list, StringView name, StringView jid);

    // The element of the latest entry, while that is its last one.
    XmlNode List() const;

private:
    void Read(const XmlNode& list);

    XmlNode last_;  // the last entry of the list whose addresses are known
    std::set<String> folded_;
};

}  // namespace quorix
