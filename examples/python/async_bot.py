#!/usr/bin/python3
"""The same beside other things that an asyncio program does. async_bot.py HOST PORT USER PASSWORD"""
import asyncio
import sys

import quorix


async def answer_each(session: quorix.cSession) -> None:
    async for message in session.messages():
        if message.Body:
            session.CreateMessage(message.FromJid, quorix.MSG_Chat, message.Body.upper(), "").SendMessage()


async def tell_the_time(session: quorix.cSession) -> None:
    for minutes in range(24 * 60):
        session.Status = f"here for {minutes} minutes"
        session.SendMyPresence()
        await asyncio.sleep(60)


async def main(host: str, port: str, user: str, password: str) -> None:
    session = quorix.cSession(ServerAddress=host, Port=int(port), username=user, Password=password, Resource="bot")
    await asyncio.wait_for(session.login(), timeout=30)
    await asyncio.gather(answer_each(session), tell_the_time(session))


asyncio.run(main(*sys.argv[1:]))
