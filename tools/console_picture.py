#!/usr/bin/python3
"""console_picture.py CONSOLE PORT: plays a session of two people on a terminal and writes docs/console.svg.

PORT is that of a server for "localhost" on this machine that takes registrations, in the clear too.
"""

import io
import pathlib
import re
import subprocess
import sys
import tempfile
import time

from rich.console import Console
from rich.text import Text

COLUMNS, ROWS = 80, 20
FOLDER = tempfile.TemporaryDirectory()


def terminal(*command):
    line = ["tmux", "-u", "-S", f"{FOLDER.name}/socket", "-f", "/dev/null", *command]
    return subprocess.run(line, check=True, capture_output=True, text=True).stdout


def program(console, user, port):
    state = f"XDG_STATE_HOME={FOLDER.name}/{user} XDG_CONFIG_HOME={FOLDER.name}/{user}"
    options = f"--port {port} --password secret --new --plain"
    return f"env LC_ALL=C.UTF-8 TERM=tmux-256color {state} {console} {user}@localhost {options}"


def person(console, user, port):
    terminal("new-session", "-d", "-s", user, "-x", str(COLUMNS), "-y", str(ROWS), program(console, user, port))
    deadline = time.monotonic() + 20
    while "Logged in" not in terminal("capture-pane", "-p", "-t", user):
        if time.monotonic() > deadline:
            sys.exit(f"{user} was not logged in:\n" + terminal("capture-pane", "-p", "-t", user))
        time.sleep(0.1)


def types(user, line):
    terminal("send-keys", "-t", user, "-l", line)
    terminal("send-keys", "-t", user, "Enter")
    time.sleep(0.7)


def play():
    types("juliet", "/add romeo@localhost Romeo")
    types("romeo", "/accept juliet@localhost")
    types("romeo", "/add juliet@localhost Juliet")
    types("juliet", "/accept romeo@localhost")
    types("romeo", "/chat juliet@localhost")
    types("romeo", "But, soft! What light through yonder window breaks? 🌅")
    types("juliet", "/chat romeo@localhost")
    types("juliet", "O Romeo, Romeo! Wherefore art thou Romeo?")
    types("juliet", "/away on the balcony")
    types("juliet", "/typing romeo@localhost")
    types("romeo", "/mgs nurse@localhost hello")
    types("romeo", "/version localhost")
    types("romeo", "/msg nurse@localhost Where is she?")
    terminal("send-keys", "-t", "romeo", "-l", "Shall I hear more, or")
    time.sleep(0.5)


def picture(screen):
    console = Console(record=True, width=COLUMNS, file=io.StringIO(), force_terminal=True)
    console.print(Text.from_ansi(screen.rstrip("\n")), soft_wrap=True)
    svg = console.export_svg(title="quorix-console romeo@localhost")
    svg = re.sub(r"\s*@font-face \{.*?\}\n", "\n", svg, flags=re.DOTALL)  # no font from elsewhere
    return re.sub(r"\s*<!--.*?-->", "", svg)


def main(console, port):
    try:
        for user in ("juliet", "romeo"):
            person(pathlib.Path(console).resolve(), user, port)
        play()
        screen = terminal("capture-pane", "-e", "-p", "-t", "romeo")
        for user in ("juliet", "romeo"):
            terminal("send-keys", "-t", user, "C-u")
            types(user, "/unregister")
            types(user, "y")
        pathlib.Path(__file__).parent.parent.joinpath("docs/console.svg").write_text(picture(screen))
    finally:
        subprocess.run(["tmux", "-S", f"{FOLDER.name}/socket", "kill-server"], capture_output=True)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
