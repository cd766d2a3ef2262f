#!/usr/bin/env python3
"""check_samples.py: whether what the automation samples say stands in the type library: members with their numbers of
arguments, events, enumeration values, identifiers. Some run nowhere but on Windows."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TYPE = re.compile(r"\[uuid\(([-\w]+)\)\]\s*dispinterface (\w+) \{(.*?)\n    \};", re.DOTALL)
MEMBER = re.compile(r"\[id\((\w+)\)([^\]]*)\]\s*[\w* ]+?\b(\w+)\((.*?)\);", re.DOTALL)
CLASSES = {"session": "_cSession", "self": "_cSession", "message": "_cMessage", "answer": "_cMessage",
           "contact": "_cRosterItem"}  # by the names of variables
USE = re.compile(rf"\b({'|'.join(CLASSES)})\.(\w+)(\(?)", re.IGNORECASE)
HANDLER = re.compile(r"(?:session_|def |\)\] void )(On\w+)\(([^)]*)\)")
complaints = []


def interfaces(idl):
    types, identifiers = {}, {}
    for identifier, name, body in TYPE.findall(idl):
        identifiers[name] = identifier
        types[name] = {member: (number, "prop" in kind, len(re.findall(r"\[in", given)), given.count("optional"))
                       for number, kind, member, given in MEMBER.findall(body)}
    return types, identifiers


def arguments(text):
    """How many stand in the parentheses that `text` is behind."""
    depth, count, quoted = 1, 0, ""
    for at, sign in enumerate(text):
        quoted = "" if sign == quoted else quoted or (sign if sign in "\"'" else "")
        depth += 0 if quoted else (sign in "([{") - (sign in ")]}")
        if depth == 0:
            return count + (text[:at].strip() != "")
        count += depth == 1 and not quoted and sign == ","
    return count


def check_members(name, text, types):
    used = list(USE.finditer(text))
    for found in used:
        member = types[CLASSES[found[1].lower()]].get(found[2])
        if member is None:
            complaints.append(f"{name}: {found[0]} is not there")
        elif found[3] and not member[1]:
            given = arguments(text[found.end():])
            if not member[2] - member[3] <= given <= member[2]:
                complaints.append(f"{name}: {found[2]} takes {member[2]} arguments, not {given}")
    return len(used)


def check_handlers(name, text, events):
    handlers = HANDLER.findall(re.sub(r"\[Marshal.*?\)\]", "", text.replace("_\n", "")))
    for event, given in handlers:
        count = len([each for each in given.split(",") if each.strip() not in ("", "self")])
        if event not in events or events[event][2] != count:
            complaints.append(f"{name}: no event {event} with {count} arguments")
    for number, event in re.findall(r"DispId\((\d+)\)\] void (\w+)", text):
        if events[event][0] != number:
            complaints.append(f"{name}: {event} has number {events[event][0]}")
    return len(handlers)


def check_values(name, text, values):
    for found in re.finditer(r"(?<!\.)\b((?:KV|MSG)_\w+|Modern|Chat|GroupChat)\b(?: = (\d+))?", text):
        numbers = {number for value, number in values if value.lower().endswith(found[1].lower())}
        if not numbers or found[2] and found[2] not in numbers:
            complaints.append(f"{name}: {found[0]}")


def main():
    idl = (ROOT / "quorix/automation/quorix.idl").read_text(encoding="utf-8")
    types, identifiers = interfaces(idl)
    values = re.findall(r"\b(\w+_\w+) = (\d+)", idl)
    for file in sorted((ROOT / "packaging/windows/samples").glob("*.*")):
        text = file.read_text(encoding="utf-8")
        if file.suffix in (".manifest", ".cpp"):  # the latter runs as a test
            continue
        if file.suffix == ".py":
            compile(text, file, "exec")
        seen = check_members(file.name, text, types) + check_handlers(file.name, text, types["_cSessionEvents"])
        check_values(file.name, text, values)
        if identifiers["_cSessionEvents"] not in text and "Guid(" in text:
            complaints.append(f"{file.name}: not the identifier of the events")
        if seen < 6:
            complaints.append(f"{file.name}: only {seen} uses were found")
    print("\n".join(complaints) or "The samples agree with the type library.")
    sys.exit(1 if complaints else 0)


main()
