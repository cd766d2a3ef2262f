/// \file
/// The enumerations that a session and several of its records share, with the numbers that automation clients
/// see.
#pragma once

#include <cstdint>

namespace quorix {

/// How a session speaks; docs/modern.md compares the two.
enum eMode : std::int32_t {
    KV_Classic = 0,  ///< the protocol's traps included: values are text or wire text, as each member says
    KV_Modern = 1,   ///< every value is text, and whatever goes wrong is told
};

/// How a login may be made.
enum eAuthType : std::int32_t {
    KV_AutoAuth = 0,    ///< the strongest form on offer
    KV_ZeroKAuth = 1,   ///< zero-knowledge: a hash, a sequence and a token
    KV_DigestAuth = 2,  ///< SHA-1 of the stream id and the password
    KV_PlainAuth = 3,   ///< the password itself
};

enum eProxyType : std::int32_t {
    KV_NoProxy = 0,
    KV_HTTPProxy = 1,
    KV_SOCKS4Proxy = 2,  ///< not supported: Connect does nothing
    KV_SOCKS5Proxy = 3,
};

/// How a SOCKS5 proxy is asked: the method codes of RFC 1928.
enum eProxy_Authentication : std::int32_t {
    KV_SocksNoAuth = 0,
    KV_SocksUserPass = 2,
};

/// The kind of entity that stands behind a JID.
enum eItemType : std::int32_t {
    KV_RosterItem = 0,
    KV_AgentItem = 1,
    KV_GroupChatItem = 2,
    KV_Unknown = 3,
};

/// How available somebody is: the show element of a presence.
enum eShowType : std::int32_t {
    KV_None = 0,          ///< plainly available: no show element
    KV_chat = 1,          // "chat", wants to talk
    KV_Away = 2,          // "away"
    KV_ExtendedAway = 3,  // "xa"
    KV_DND = 4,           // "dnd", do not disturb
};

/// What a presence says (the `type` attribute, RFC 3921 section 2.2.1; "invisible" is an old extension).
enum eSubType : std::int32_t {
    KV_Available = 0,
    KV_UnAvailable = 1,
    KV_Subscribe = 2,
    KV_UnSubscribe = 3,
    KV_Subscribe_Accept = 4,
    KV_Subscribe_Deny = 5,
    KV_Invisible = 6,
};

/// What a message is (the `type` attribute, RFC 3921 section 2.1.1).
enum eMsgType : std::int32_t {
    MSG_Normal = 0,
    MSG_Chat = 1,
    MSG_Headline = 2,
    MSG_GroupChat = 3,
    MSG_UnKnown = 4,  ///< any other text, on reading only
};

/// What becomes of a message (jabber:x:event, XEP-0022).
enum eEvent : std::int32_t {
    KV_Offline = 0,
    KV_Composing = 1,
    KV_Displayed = 2,
    KV_Delivered = 3,
    KV_Cancelled = 4,  ///< no element: an event message without one withdraws a former event
};

}  // namespace quorix
