#!/usr/bin/python3
"""compare.py NAME=COMMAND...: processor time for each message of echo bots, in one run.

Each command gets HOST PORT USER PASSWORD. The server is in this process; it logs the bot in as a client or takes it as
a component, sends a message, waits for its echo, and so on. Figures are the medians of five rounds in turn.
"""
import re
import shlex
import socket
import statistics
import subprocess
import sys

MESSAGES = 4000
ROUNDS = 5
LIMIT = 60
TEXT = "Grüße aus Köln, und bis bald &amp; alles Gute!"


class Line:
    def __init__(self, connection):
        self.connection = connection
        self.heard = b""

    def take(self, pattern):
        while not (found := re.search(pattern, self.heard, re.DOTALL)):
            data = self.connection.recv(65536)
            if not data:
                raise ConnectionError("the bot has left")
            self.heard += data
        self.heard = self.heard[found.end():]
        return found[0]

    def say(self, text):
        self.connection.sendall(text.encode())

    def log_in(self):
        header = self.take(rb"<stream:stream[^>]*>")
        component = b"jabber:component:accept" in header
        space = "jabber:component:accept" if component else "jabber:client"
        self.say(f"<?xml version='1.0'?><stream:stream xmlns='{space}' from='localhost' id='1'"
                 " xmlns:stream='http://etherx.jabber.org/streams'>")
        if component:
            self.take(rb"</handshake>")
            return self.say("<handshake/>")
        fields = "<query xmlns='jabber:iq:auth'><username/><digest/><resource/></query>"
        for answer in (fields, ""):
            query = self.take(rb"<iq\b.*?</iq>").decode()
            number = re.search(r"\bid=['\"]([^'\"]*)", query)[1]
            self.say(f"<iq type='result' id='{number}'>{answer}</iq>")
        return self.take(rb"<presence.*?(/>|</presence>)")

    def converse(self, count):
        for number in range(count):
            self.say(f"<message from='juliet@localhost/home' to='localhost' id='m{number}' type='chat'>"
                     f"<body>{TEXT}</body></message>")
            self.take(rb"<message\b.*?</message>")


def processor_time(process):
    with open(f"/proc/{process.pid}/schedstat", encoding="ascii") as file:
        return int(file.read().split()[0]) / 1000


def measure(command):
    """Microseconds a message."""
    with socket.create_server(("127.0.0.1", 0)) as listener:
        listener.settimeout(LIMIT)
        port = listener.getsockname()[1]
        port -= 65536 if port > 32767 and "slixmpp" not in command else 0
        with subprocess.Popen([*shlex.split(command), "127.0.0.1", str(port), "user", "secret"],
                              stdout=subprocess.DEVNULL) as process:
            try:
                connection = listener.accept()[0]
                with connection:
                    connection.settimeout(LIMIT)
                    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                    line = Line(connection)
                    line.log_in()
                    line.converse(200)
                    before = processor_time(process)
                    line.converse(MESSAGES)
                    return (processor_time(process) - before) / MESSAGES
            finally:
                process.kill()


def main():
    bots = dict(argument.split("=", 1) for argument in sys.argv[1:])
    times = {name: [] for name in bots}
    for _ in range(ROUNDS):
        for name, command in bots.items():
            times[name].append(measure(command))
    base = statistics.median(times[next(iter(bots))])
    for name, all_ in times.items():
        middle = statistics.median(all_)
        print(f"{name}: {middle:.1f} µs a message, {middle / base:.2f} of the first"
              f" ({min(all_):.1f} to {max(all_):.1f})")


main()
