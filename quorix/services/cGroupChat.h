/// \file
/// One chat room: what a browse or conference reply said about it, and how the local user appears in it.
///
/// Ownership: shared with the session while the user is in the room; an application may keep it.
/// Threads: like the session that it is used with.
#pragma once

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

enum eServerType : std::int32_t {
    KV_Public = 0,
    KV_Private = 1,
};

/// Nothing is validated. JID is `room@server`, of which ChatRoom and Server are the parts; RoomName is for
/// display; NickName is the local user's name in the room. Password is stored for the application's use
/// alone: no request carries it.
class QUORIX_API cGroupChat {
public:
    eServerType ServerType() const { return serverType_; }
    void ServerType(eServerType value) { serverType_ = value; }

    String JID() const { return jid_; }
    void JID(StringView value) { jid_ = value; }

    String RoomName() const { return roomName_; }
    void RoomName(StringView value) { roomName_ = value; }

    String NickName() const { return nickName_; }
    void NickName(StringView value) { nickName_ = value; }

    String Password() const { return password_; }
    void Password(StringView value) { password_ = value; }

    bool NeedPassword() const { return needPassword_; }
    void NeedPassword(bool value) { needPassword_ = value; }

    String ChatRoom() const { return chatRoom_; }
    void ChatRoom(StringView value) { chatRoom_ = value; }

    String Server() const { return server_; }
    void Server(StringView value) { server_ = value; }

private:
    eServerType serverType_ = KV_Public;
    String jid_;
    String roomName_;
    String nickName_;
    String password_;
    bool needPassword_ = false;
    String chatRoom_;
    String server_;
};

}  // namespace quorix
