#!/usr/bin/python3
"""Checks what each room knows: the rooms below it and nothing above it, and the mode of a session only where its rules
are made."""

import os
import re
import subprocess
import sys

ROOMS = ["base", "platform", "xml", "net", "link", "auth", "im", "services", "session", "scripting", "automation"]
STRANGERS = {("im", "services"), ("services", "im")}
# What each top folder outside the library may include, besides itself.
FOLDERS = {
    "testkit": {"quorix"},
    "apps": {"quorix", "testkit"},
    "examples": {"quorix", "testkit"},
    "tests": {"quorix", "testkit", "apps"},
    "bench": {"quorix", "testkit", "tests"},
    "fuzz": {"quorix", "testkit", "apps"},
    "python": {"quorix"},
}
# What depends on the mode is a rule; who asks for the mode has missed one.
MODE = re.compile(r"\bKV_(Classic|Modern)\b|\bMode\(\) *[!=]=|[!=]= *[\w.>-]*\bMode\(\)")
MODE_ROOM = re.compile(r"quorix/(session/(\w*Rules\w*|SessionCore\.h)|base/Enumerations\.h)")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def fault(path, bracket, target):
    """What is wrong with an include of `target` in `path`, or None."""
    top, _, rest = path.partition("/")
    target_top = target.partition("/")[0]
    if target_top not in {"quorix", *FOLDERS}:
        return "is written from the root of the tree" if bracket == '"' else None
    if bracket == "<":
        return "is one of ours: use quotes"
    if not os.path.isfile(target):
        return "does not exist"
    if top != "quorix":
        allowed = target_top == top or target_top in FOLDERS.get(top, set())
        return None if allowed else f"is not for {top}/"
    if target_top != "quorix":
        return "is not for the library"
    room, target_room = rest.split("/")[0], target.split("/")[1]
    if ROOMS.index(target_room) > ROOMS.index(room):
        return f"stands above {room}/"
    if (room, target_room) in STRANGERS:
        return f"is a stranger to {room}/"
    return None


def names_mode(path, line):
    return path.startswith("quorix/") and not MODE_ROOM.match(path) and MODE.search(line.split("//")[0])


def main():
    listed = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", "*.h", "*.cpp"], check=True, capture_output=True, text=True
    )
    faults = 0
    for path in listed.stdout.splitlines():
        if not os.path.isfile(path):
            continue
        with open(path, encoding="utf-8") as source:
            for number, line in enumerate(source, 1):
                found = INCLUDE.match(line)
                wrong = found and fault(path, *found.groups())
                if wrong:
                    print(f"{path}:{number}: {found.group(2)} {wrong}")
                    faults += 1
                if names_mode(path, line):
                    print(f"{path}:{number}: asks for the mode outside the rules of a session")
                    faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
