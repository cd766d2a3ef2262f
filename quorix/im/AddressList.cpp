#include "quorix/im/AddressList.h"

namespace quorix {

XmlNode AddressList::Append(XmlNode list, StringView name, StringView jid) {
    if (list != List()) Read(list);
    if (!folded_.insert(ToLower(jid)).second) return {};
    last_ = list.AppendElement(name);
    last_.SetAttribute(u"jid", jid);
    return last_;
}

// What somebody else has written there since is read again.
XmlNode AddressList::List() const { return last_.NextElement() ? XmlNode() : last_.Parent(); }

void AddressList::Read(const XmlNode& list) {
    folded_.clear();
    for (XmlNode entry = list.FirstElement(); entry; entry = entry.NextElement()) {
        folded_.insert(ToLower(entry.Attribute(u"jid")));
    }
}

}  // namespace quorix
