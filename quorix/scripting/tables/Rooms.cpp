#include "quorix/scripting/Classes.h"
#include "quorix/scripting/Collections.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"

namespace quorix::scripting {

template <>
const ClassTable& TableOf<cGroupChat>() {
    using T = cGroupChat;
    static const auto table = Class<T>("cGroupChat")
                                  .Creatable()
                                  .Property("ServerType", &T::ServerType, &T::ServerType)
                                  .Property("JID", &T::JID, &T::JID)
                                  .Property("RoomName", &T::RoomName, &T::RoomName)
                                  .Property("NickName", &T::NickName, &T::NickName)
                                  .Property("Password", &T::Password, &T::Password)
                                  .Property("NeedPassword", &T::NeedPassword, &T::NeedPassword)
                                  .Property("ChatRoom", &T::ChatRoom, &T::ChatRoom)
                                  .Property("Server", &T::Server, &T::Server);
    return table;
}

template <>
const ClassTable& TableOf<cBrowseItem>() {
    using T = cBrowseItem;
    static const auto table = Class<T>("cBrowseItem")
                                  .Creatable()
                                  .Property("JID", &T::JID, &T::JID)
                                  .Property("Name", &T::Name, &T::Name)
                                  .Property("SubType", &T::SubType, &T::SubType);
    return table;
}

template <>
const ClassTable& TableOf<Shared<cGroupChat>>() {
    static const auto table = AddableClass<std::shared_ptr<cGroupChat>>("cRooms");
    return table;
}

}  // namespace quorix::scripting
