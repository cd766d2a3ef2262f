#!/usr/bin/python3
"""help_filter.py HEADER: writes HEADER as Doxygen reads it.

A member that says nothing of itself gets the text that object browsers and Python show of it, and an argument that an
empty event names in a comment gets its name.
"""
import pathlib
import re
import sys

HELP = pathlib.Path(__file__).resolve().parent.parent / "quorix/automation/help.txt"
CLASS = re.compile(r"(?:class|struct) (?:QUORIX_API )?(\w+)[^;]*$")
MEMBER = re.compile(r"    (?:virtual )?[\w:<>&* ]+ [&*]?(\w+)\(.*\).*[;}]$")


def help_texts():
    texts, owner = {}, ""
    for line in HELP.read_text(encoding="utf-8").splitlines():
        name, separator, text = line.strip().partition(": ")
        if not separator or line.startswith("#"):
            continue
        if not line.startswith(" "):
            owner = name
        else:
            texts[owner, name] = text
    return texts


def documented(lines, texts):
    owner, before = "", ""
    for line in lines:
        if found := CLASS.match(line):
            owner = found[1]
        member = MEMBER.match(line)
        if member and "///" not in before + line and (owner, member[1]) in texts:
            yield f"    /// {texts[owner, member[1]]}"
        yield re.sub(r"/\*(\w+)\*/", r"\1", line)
        before = line


def main(header):
    lines = pathlib.Path(header).read_text(encoding="utf-8").splitlines()
    print("\n".join(documented(lines, help_texts())))


main(*sys.argv[1:])
