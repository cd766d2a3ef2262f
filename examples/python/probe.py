#!/usr/bin/python3
"""For a monitoring system: logs in and asks the server for its version. probe.py HOST PORT USER PASSWORD SECONDS

Exit codes: 0 it works, 1 it works but took longer than SECONDS / 2, 2 it does not work, or not within SECONDS.
"""
import asyncio
import sys
import time

import quorix


async def ask(host: str, port: str, user: str, password: str) -> str:
    session = quorix.cSession(ServerAddress=host, Port=int(port), username=user, Password=password, Resource="probe")
    session.Reconnect = False
    answer: asyncio.Future[str] = asyncio.get_running_loop().create_future()
    session.on("OnVersionResult", lambda sender, name, version, system: answer.set_result(f"{name} {version}"))
    session.on("OnIQError", lambda node, sender, code, text: answer.set_result(text))  # an answer, too
    await session.login()
    session.SendVersionRequest(host)
    try:
        return await answer
    finally:
        session.Disconnect()


seconds = float(sys.argv[5])
start = time.monotonic()
try:
    version = asyncio.run(asyncio.wait_for(ask(*sys.argv[1:5]), seconds))
except (quorix.SessionError, asyncio.TimeoutError) as error:
    print("CRITICAL:", str(error) or "no answer in time")
    sys.exit(2)
took = time.monotonic() - start
slow = took > seconds / 2
print("WARNING:" if slow else "OK:", version, f"| login={took * 1000:.0f}ms")
sys.exit(1 if slow else 0)
