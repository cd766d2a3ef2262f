#!/usr/bin/python3
"""Adds a contact, if one is named, and prints all there are. roster.py HOST PORT USER PASSWORD [JID NICKNAME]"""
import asyncio
import sys

import quorix


async def main(host: str, port: str, user: str, password: str, jid: str = "", nickname: str = "") -> None:
    session = quorix.cSession(ServerAddress=host, Port=int(port), username=user, Password=password, Resource="roster")
    complete = asyncio.Event()
    session.on("OnRosterEnd", complete.set)
    await session.login()
    session.FetchRoster()
    await asyncio.wait_for(complete.wait(), timeout=30)
    if jid:
        complete.clear()
        contact = session.CreateRosterItem()
        contact.JID, contact.NickName = jid, nickname
        contact.AddGroup("Friends")
        contact.Add()
        await asyncio.wait_for(complete.wait(), timeout=30)  # the server's own word that it is there
    for contact in session.Roster:
        print(contact.JID, contact.NickName, contact.Subscription.name, *contact.Groups)
    session.Disconnect()


asyncio.run(main(*sys.argv[1:]))
