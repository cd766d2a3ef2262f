#!/usr/bin/env python3
"""compare.py FOLDER: runs every client in FOLDER against one server on the loopback interface and prints a
table: processor time a stanza, as a ratio to libstrophe's in the same rounds. A run counts only when the
client has read exactly what was sent."""

import os
import re
import socket
import statistics
import subprocess
import sys
import time

ROUNDS = int(os.environ.get("ROUNDS", "5"))
LIMIT = 120  # seconds a run may take
BLOCK = 65536
PACE = 5000  # stanzas a second
COUNTS = {"flood": 50000, "singly": 50000, "paced": 5000, "out": 20000}
CLIENTS = {
    "libstrophe": "libstrophe",
    "loudmouth": "loudmouth",
    "gloox": "gloox",
    "qxmpp": "qxmpp",
    "quorix, modern": "quorix modern",
    "quorix, classic": "quorix classic",
    "quorix, modern, wire text": "quorix modern-wire",
    "quorix, classic, wire text": "quorix classic-wire",
}
WITH_FEATURES = {"libstrophe", "gloox"}  # they wait for them before they log in
IQ = rb"<iq\b[^>]*/>|<iq\b.*?</iq>"
BODIES = ["See you at seven.", "Grüße aus Köln, und bis bald &amp; alles Gute!", "ok", "x &lt; y " * 8]


class Flood:
    """Seven messages, two presences and one roster push of every ten; the last is a message END."""

    def __init__(self, count):
        self.stanzas = []
        self.read = dict.fromkeys(("messages", "chats", "presences", "away", "contacts", "characters"), 0)
        for i in range(count - 1):
            self.add(i, i * 7919 % 200)
        self.message(count, 0, "END")

    def add(self, i, who):
        if i % 10 < 7:
            self.message(i, who, BODIES[i % len(BODIES)])
        elif i % 10 < 9:
            self.presence(who, ("away", "xa", "dnd")[i % 3])
        else:
            self.contact(i, who)

    def message(self, i, who, body):
        sender = f"friend{who}@localhost/home"
        self.stanzas.append(
            f"<message from='{sender}' to='user@localhost/bench' id='m{i}' type='chat'><body>{body}</body>"
            "<x xmlns='jabber:x:event'><composing/></x></message>".encode()
        )
        plain = body.replace("&amp;", "&").replace("&lt;", "<")
        self.read["messages"] += 1
        self.read["chats"] += 1
        self.read["characters"] += len(sender) + len(plain.encode())

    def presence(self, who, show):
        sender = f"friend{who}@localhost/home"
        self.stanzas.append(
            f"<presence from='{sender}' to='user@localhost/bench'><show>{show}</show>"
            "<status>Working from home</status><priority>5</priority></presence>".encode()
        )
        self.read["presences"] += 1
        self.read["away"] += show == "away"
        self.read["characters"] += len(sender)

    def contact(self, i, who):
        self.stanzas.append(
            f"<iq type='set' id='p{i}' to='user@localhost/bench'><query xmlns='jabber:iq:roster'>"
            f"<item jid='friend{who}@localhost' name='Friend {who} rev {i}' subscription='both'>"
            "<group>Friends</group></item></query></iq>".encode()
        )
        self.read["contacts"] += 1


class Server:
    """Logs one client in, then floods it, or counts what it sends."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.listener.settimeout(LIMIT)
        self.port = self.listener.getsockname()[1]

    def serve(self, mode, flood, features):
        self.line, _ = self.listener.accept()
        self.line.settimeout(LIMIT)
        self.line.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.heard = b""
        with self.line:
            self.log_in(features)
            if mode == "out":
                self.answer_until_messages()
                self.count()
            else:
                self.answer_the_rest()
                self.flood(mode, flood)
            self.drain()

    def log_in(self, features):
        version = " version='1.0'" if features else ""
        header = (
            "<?xml version='1.0'?><stream:stream xmlns='jabber:client' from='localhost' id='1'"
            f" xmlns:stream='http://etherx.jabber.org/streams'{version}>"
        )
        if features:
            header += "<stream:features><auth xmlns='http://jabber.org/features/iq-auth'/></stream:features>"
        self.take(rb"<stream:stream[^>]*>")
        self.line.sendall(header.encode())
        question = self.answer("<query xmlns='jabber:iq:auth'><username/><password/><digest/><resource/></query>")
        while b"<password>" not in question and b"<digest>" not in question:
            question = self.answer("")

    def answer_the_rest(self):
        self.line.settimeout(0.2)
        try:
            while True:
                self.answer("<query xmlns='jabber:iq:roster'/>")
        except TimeoutError:
            self.line.settimeout(LIMIT)

    def answer(self, content):
        question = self.take(IQ)
        number = re.search(rb"\bid=['\"]([^'\"]*)", question).group(1).decode()
        self.line.sendall(f"<iq type='result' id='{number}'>{content}</iq>".encode())
        return question

    def take(self, pattern):
        while not (match := re.search(pattern, self.heard, re.S)):
            self.heard += self.hear()
        self.heard = self.heard[match.end() :]
        return match.group()

    def hear(self):
        data = self.line.recv(BLOCK)
        if not data:
            raise ConnectionError("the client has left")
        return data

    def flood(self, mode, flood):
        if mode == "flood":
            return self.line.sendall(b"".join(flood.stanzas))
        if mode == "singly":
            for stanza in flood.stanzas:
                self.line.sendall(stanza)
            return None
        begin = time.monotonic()
        for i, stanza in enumerate(flood.stanzas):
            time.sleep(max(0, begin + i / PACE - time.monotonic()))
            self.line.sendall(stanza)
        return None

    # Some ask for more before they send, and wait for it.
    def answer_until_messages(self):
        while b"<message" not in self.heard:
            if re.search(IQ, self.heard, re.S):
                self.answer("<query xmlns='jabber:iq:roster'/>")
            else:
                self.heard += self.hear()

    def count(self):
        messages = 0
        while messages < COUNTS["out"]:
            messages += self.heard.count(b"</message>")
            self.heard = self.heard[-9:]  # of a tag that has not ended
            if messages < COUNTS["out"]:
                self.heard += self.hear()
        self.line.sendall(Flood(1).stanzas[0])

    def drain(self):
        try:
            while self.line.recv(BLOCK):
                pass
        except ConnectionError:
            pass


# Where the scheduler puts the two changes the cost by half.
def side_by_side():
    """Puts this process on one processor, and gives what puts a client on another, where there are two."""
    ours, *others = sorted(os.sched_getaffinity(0))
    os.sched_setaffinity(0, {ours})
    return lambda: os.sched_setaffinity(0, set(others[:1]) or {ours})


def run(folder, client, mode, flood, features, settle=None):
    """Microseconds a stanza and peak megabytes, or what went wrong."""
    server = Server()
    program, *variant = client.split()
    task = "send" if mode == "out" else "receive"
    command = [os.path.join(folder, program), task, str(server.port), str(COUNTS[mode]), *variant]
    process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True, preexec_fn=settle)
    try:
        server.serve(mode, flood, features)
        output, _ = process.communicate(timeout=LIMIT)
    except (OSError, subprocess.TimeoutExpired) as problem:
        process.kill()
        process.communicate()
        return str(problem) or "time is up"
    finally:
        server.listener.close()
    seconds, kilobytes, *read = output.split() or ("0", "0")
    if mode != "out" and [int(number) for number in read] != list(flood.read.values()):
        return f"read {read}, sent {flood.read}"
    return float(seconds) / COUNTS[mode] * 1e6, int(kilobytes) / 1024


def main():
    folder = sys.argv[1]
    clients = {
        name: command
        for name, command in CLIENTS.items()
        if os.access(os.path.join(folder, command.split()[0]), os.X_OK)
    }
    for name in CLIENTS.keys() - clients.keys():
        print(f"left out, since it was not built: {name}", file=sys.stderr)
    print(f"{ROUNDS} rounds; medians. Processor time a stanza, and its ratio to libstrophe's.\n")
    print("| client | " + " | ".join(f"{mode}, µs | ratio" for mode in COUNTS) + " | peak MB in the flood |")
    print("|---|" + "---:|" * (2 * len(COUNTS) + 1))
    settle = side_by_side()
    results = {name: {mode: [] for mode in COUNTS} for name in clients}
    bad = 0
    for mode, count in COUNTS.items():
        flood = Flood(count)
        for _ in range(ROUNDS):
            for name, command in clients.items():
                result = run(folder, command, mode, flood, name in WITH_FEATURES, settle)
                if isinstance(result, str):
                    bad += 1
                    print(f"{name}, {mode}: {result}", file=sys.stderr)
                else:
                    results[name][mode].append(result)
    medians = {
        name: {mode: statistics.median(time for time, _ in runs) for mode, runs in modes.items() if runs}
        for name, modes in results.items()
    }
    for name, modes in medians.items():
        cells = []
        for mode in COUNTS:
            base = medians.get("libstrophe", {}).get(mode)
            value = modes.get(mode)
            cells.append(f"{value:.2f}" if value is not None else "–")
            cells.append(f"{value / base:.2f}" if value is not None and base else "–")
        peak = max((peak for _, peak in results[name]["flood"]), default=0)
        print(f"| {name} | " + " | ".join(cells) + f" | {peak:.1f} |")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
