#include "quorix/im/cMessage.h"
#include "quorix/scripting/Classes.h"

namespace quorix::scripting {

template <>
const ClassTable& TableOf<cMessage>() {
    using T = cMessage;
    static const auto table =
        Class<T>("cMessage")
            .Property("ID", &T::ID, &T::ID)
            .Property("ToJID", &T::ToJID, &T::ToJID)
            .Property("FromJid", &T::FromJid, &T::FromJid)
            .Property("MSG_Type", &T::MSG_Type, &T::MSG_Type)
            .Property("Body", &T::Body, &T::Body)
            .Property("Subject", &T::Subject, &T::Subject)
            .Property("Thread", &T::Thread, &T::Thread)
            .Get("xml", &T::xml)
            .Property("XHTML", &T::XHTML, &T::XHTML)
            .Property("TextRtf", &T::TextRtf, &T::TextRtf)
            .Get("Stamp", &T::Stamp)
            .Get("URL", &T::URL)
            .Get("desc", &T::desc)
            .Get("HasCC", &T::HasCC)
            .Property("FilterCriticalXHTML", &T::FilterCriticalXHTML, &T::FilterCriticalXHTML)
            .Method("SendMessage", &T::SendMessage)
            .Method("AddEvent", &T::AddEvent)
            .Method("getEvent", &T::getEvent)
            .Method("AddRoster", &T::AddRoster)
            .Method("AddCC", &T::AddCC)
            .Method("AddBCC", &T::AddBCC);
    return table;
}

}  // namespace quorix::scripting
