#include "quorix/automation/Classes.h"
#include "quorix/im/cMessage.h"

namespace quorix::automation {

template <>
const ClassTable& TableOf<cMessage>() {
    using T = cMessage;
    static const auto table =
        Class<T>(L"cMessage")
            .Property(L"ID", &T::ID, &T::ID)
            .Property(L"ToJID", &T::ToJID, &T::ToJID)
            .Property(L"FromJid", &T::FromJid, &T::FromJid)
            .Property(L"MSG_Type", &T::MSG_Type, &T::MSG_Type)
            .Property(L"Body", &T::Body, &T::Body)
            .Property(L"Subject", &T::Subject, &T::Subject)
            .Property(L"Thread", &T::Thread, &T::Thread)
            .Get(L"xml", &T::xml)
            .Property(L"XHTML", &T::XHTML, &T::XHTML)
            .Property(L"TextRtf", &T::TextRtf, &T::TextRtf)
            .Get(L"Stamp", &T::Stamp)
            .Get(L"URL", &T::URL)
            .Get(L"desc", &T::desc)
            .Get(L"HasCC", &T::HasCC)
            .Property(L"FilterCriticalXHTML", &T::FilterCriticalXHTML, &T::FilterCriticalXHTML)
            .Method(L"SendMessage", &T::SendMessage)
            .Method(L"AddEvent", &T::AddEvent)
            .Method(L"getEvent", &T::getEvent)
            .Method(L"AddRoster", &T::AddRoster)
            .Method(L"AddCC", &T::AddCC)
            .Method(L"AddBCC", &T::AddBCC);
    return table;
}

}  // namespace quorix::automation
