"""test_examples.py PORT [AUTHTYPE]: runs the examples beside a friend, on a real server where anybody may make an account.

Without another AuthType they log in by what the server offers.
"""
import asyncio
import pathlib
import sys
import unittest

import quorix

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples" / "python"
PORT, AUTH_TYPE = sys.argv[1], (sys.argv[2:] or ["KV_AutoAuth"])[0]
PATIENCE = 30


async def until(done, act=lambda: None):
    for _ in range(PATIENCE):
        act()
        for _ in range(10):
            await asyncio.sleep(0.1)
            if done():
                return
    raise TimeoutError


async def account(name):
    """A session logged in to a new account of that name."""
    session = quorix.cSession(ServerAddress="localhost", Port=int(PORT) - (65536 if int(PORT) > 32767 else 0),
                              username=name, Password="secret", Resource="home",
                              AuthType=quorix.KV_PlainAuth)  # for a new account goes out as it is
    ready = asyncio.Event()
    session.on("OnAuthorized", ready.set)
    quorix.host()
    session.Connect(True)
    await asyncio.wait_for(ready.wait(), PATIENCE)
    return session


# Runs a program whose sessions have that AuthType.
AUTHORIZED = """
import functools, runpy, sys
import quorix
quorix.cSession = functools.partial(quorix.cSession, AuthType=quorix.eAuthType[sys.argv.pop(1)])
del sys.argv[0]
runpy.run_path(sys.argv[0], run_name="__main__")
"""


def start(program, user, *more):
    return asyncio.create_subprocess_exec(
        sys.executable, "-P", "-c", AUTHORIZED, AUTH_TYPE, EXAMPLES / program, "localhost", str(int(PORT) - (65536 if int(PORT) > 32767 else 0)), user,
        "secret", *more, stdout=asyncio.subprocess.PIPE, stderr=asyncio.subprocess.STDOUT)


async def output(program, *arguments):
    process = await start(program, *arguments)
    try:
        text, _ = await asyncio.wait_for(process.communicate(), PATIENCE)
    except asyncio.TimeoutError:
        process.kill()
        raise
    return process.returncode, text.decode()


class Examples(unittest.IsolatedAsyncioTestCase):
    async def asyncSetUp(self):
        self.friend = await account(f"friend-{self._testMethodName}")
        self.user = f"user-{self._testMethodName}"
        (await account(self.user)).Disconnect()

    async def asyncTearDown(self):
        self.friend.Disconnect()

    async def answers(self, program, said, answer):
        heard = []
        self.friend.on("OnMessage", lambda message: heard.append(message.Body))
        self.friend.SendMyPresence()
        process = await start(program, self.user)
        try:
            await until(lambda: answer in heard, lambda: self.friend.CreateMessage(
                f"{self.user}@localhost/bot", quorix.MSG_Chat, said, "").SendMessage())
        finally:
            process.kill()
            await process.communicate()

    async def test_echo(self):
        await self.answers("echo_bot.py", "O Romeo \U0001f339", "O Romeo \U0001f339")

    async def test_async(self):
        await self.answers("async_bot.py", "romeo", "ROMEO")

    async def test_roster(self):
        code, text = await output("roster.py", self.user, "juliet@example.org", "Juliet")
        self.assertEqual((code, text), (0, "juliet@example.org Juliet KV_Empty Friends\n"))

    async def test_probe(self):
        code, text = await output("probe.py", self.user, "20")
        self.assertRegex(text, "^OK: .* login=")
        self.assertEqual(code, 0)
        code, text = await output("probe.py", "nobody", "20")
        self.assertRegex(text, "^CRITICAL: .")
        self.assertEqual(code, 2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
