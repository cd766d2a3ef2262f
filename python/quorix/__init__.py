"""Jabber instant messaging: sessions, messages, presence, contacts, rooms and services.

A session goes by the modern rules unless its Mode is set. Events come to handlers, session.on("OnMessage", handler),
or to the methods of a SessionEvents; run() delivers them, and so does an asyncio loop once login() has been awaited.
"""
from ._quorix import *  # noqa: F403
from ._session import SessionError, SessionEvents, cSession, host

__all__ = [name for name in globals() if not name.startswith("_")]
