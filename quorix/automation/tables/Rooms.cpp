#include "quorix/automation/Classes.h"
#include "quorix/automation/Collections.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"

namespace quorix::automation {

template <>
const ClassTable& TableOf<cGroupChat>() {
    using T = cGroupChat;
    static const auto table = Class<T>(L"cGroupChat")
                                  .Creatable()
                                  .Property(L"ServerType", &T::ServerType, &T::ServerType)
                                  .Property(L"JID", &T::JID, &T::JID)
                                  .Property(L"RoomName", &T::RoomName, &T::RoomName)
                                  .Property(L"NickName", &T::NickName, &T::NickName)
                                  .Property(L"Password", &T::Password, &T::Password)
                                  .Property(L"NeedPassword", &T::NeedPassword, &T::NeedPassword)
                                  .Property(L"ChatRoom", &T::ChatRoom, &T::ChatRoom)
                                  .Property(L"Server", &T::Server, &T::Server);
    return table;
}

template <>
const ClassTable& TableOf<cBrowseItem>() {
    using T = cBrowseItem;
    static const auto table = Class<T>(L"cBrowseItem")
                                  .Creatable()
                                  .Property(L"JID", &T::JID, &T::JID)
                                  .Property(L"Name", &T::Name, &T::Name)
                                  .Property(L"SubType", &T::SubType, &T::SubType);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cGroupChat>>() {
    static const auto table = AddableClass<std::shared_ptr<cGroupChat>>(L"cRooms");
    return table;
}

}  // namespace quorix::automation
