#!/usr/bin/env python3
"""stubs.py OUT: writes the type stubs of the quorix that can be imported, from its own tables."""
import sys

import quorix

# Objects that may be absent. A node of a document always may.
ABSENT = {("cSession", "SearchXData"), ("cAgentItem", "xData"), ("cAgentField", "cAgentItem")}
ABSENT_IN_EVENTS = {("OnRosterItem", "PresenceItem"), ("OnChatServerBrowseResult", "Room")}

HEAD = '''\
# Made by stubs.py.
from asyncio import Future
from collections.abc import AsyncIterator, Callable, Iterator
from enum import IntEnum
from typing import Any, Literal, final, overload

class AutomationError(Exception):
    """What an impossible call ends with. Its number tells which."""
    number: int

class SessionError(Exception):
    """A login that failed: a text, and the code of OnError or the number of OnSocketError."""
    code: int
    def __init__(self, text: str, code: int = ...) -> None: ...

def run() -> None:
    """Delivers events until quit is called, from inside one of them."""
def quit() -> None:
    """Ends run of this thread, or the next one."""
def descriptor() -> int:
    """A descriptor of this thread's that is readable when there is something to do."""
def dispatch() -> None:
    """Does some of it."""
def host() -> None:
    """Lets the running asyncio loop deliver the events of this thread."""

class Object:
    """Any object of the library's."""
'''

SESSION = '''\
    def off(self, event: str, handler: Callable[..., object]) -> None:
        """Calls it no longer. ValueError when it is not called."""
    def Advise(self, sink: SessionEvents) -> None:
        """Calls the methods of `sink` that override those of SessionEvents, until Unadvise."""
    def Unadvise(self, sink: SessionEvents) -> None:
        """Calls them no longer. ValueError when they are not called."""
    async def login(self) -> None:
        """Connects, and returns when the server has accepted the login. SessionError when it has not."""
    def messages(self) -> AsyncIterator[cMessage]:
        """The messages that arrive from now on, to iterate over with `async for`, until the connection ends."""
'''

tables = quorix._quorix._tables()
classes = {table[0] for table in tables}


def documented(signature, text, indent="    "):
    return f'{indent}{signature}:\n{indent}    """{text}"""\n'


def taken(kind, optional):
    """What a parameter takes."""
    if kind in classes or (optional and not kind.endswith("None")):
        return f"{kind} | None"
    return kind


def given(owner, name, kind):
    """What a result is."""
    return f"{kind} | None" if kind == "DomNode" or (owner, name) in ABSENT else kind


def parameters(list_):
    return "".join(
        f", {name}: {taken(kind, optional)}{' = ...' if optional else ''}" for name, kind, optional in list_
    )


def properties(owner, members):
    puts = {name: given_[0][1] for kind, name, given_, _, _ in members if kind == "put"}
    for kind, name, given_, result, help_ in members:
        if kind != "get" or given_ or name.startswith("_"):
            continue
        yield "    @property\n" + documented(f"def {name}(self) -> {given(owner, name, result)}", help_)
        if name in puts:
            yield f"    @{name}.setter\n    def {name}(self, Value: {taken(puts[name], False)}) -> None: ...\n"


def methods(owner, members):
    for kind, name, given_, result, help_ in members:
        if kind == "method" or (kind == "get" and given_):
            result = "str | None" if (owner, name) == ("DomNode", "getAttribute") else given(owner, name, result)
            yield documented(f"def {name}(self{parameters(given_)}) -> {result}", help_)


def collection(owner, members):
    item = next((m for m in members if m[1] == "Item"), None)
    if item is None:
        return
    index, element = item[2][0][1], item[3]
    yield "    def __len__(self) -> int: ...\n"
    yield f"    def __getitem__(self, index: {index}) -> {given(owner, 'Item', element)}: ...\n"
    yield f"    def __iter__(self) -> Iterator[{element}]: ...\n"
    yield "    def __contains__(self, element: object) -> bool: ...\n"


def event_arguments(name, list_):
    return [
        f"{kind} | None" if (name, argument) in ABSENT_IN_EVENTS else kind for argument, kind, _ in list_
    ]


def handlers(events):
    for name, list_, _ in events:
        handler = f"Callable[[{', '.join(event_arguments(name, list_))}], object]"
        yield f'    @overload\n    def on(self, event: Literal["{name}"], handler: {handler}) -> {handler}: ...\n'
        yield (f'    @overload\n    def on(self, event: Literal["{name}"], handler: None = None)'
               f" -> Callable[[{handler}], {handler}]: ...\n")


def constructor(members):
    puts = ", ".join(
        f"{name}: {taken(list_[0][1], False)} = ..." for kind, name, list_, _, _ in members if kind == "put"
    )
    return f"    def __init__(self, *, {puts}) -> None: ...\n" if puts else ""


def class_stub(name, help_, creatable, members, events):
    body = "".join([constructor(members) if creatable else "", *properties(name, members), *methods(name, members),
                    *collection(name, members)])
    if name == "cSession":
        body += "".join(handlers(events)) + SESSION
    elif events:
        body += "    def _on(self, event: str, handler: Callable[..., object]) -> None: ...\n"
        body += "    def _off(self, event: str, handler: Callable[..., object]) -> None: ...\n"
    final = "" if creatable else "@final\n"
    return f'{final}class {name}(Object):\n    """{help_}"""\n{body}'


def events_stub(events):
    body = "".join(
        documented(
            f"def {name}(self" + "".join(
                f", {argument[0]}: {kind}" for argument, kind in zip(list_, event_arguments(name, list_))
            ) + ") -> None", help_)
        for name, list_, help_ in events
    )
    return f'class SessionEvents:\n    """{quorix.SessionEvents.__doc__}"""\n{body}'


def enumeration_stub(kind):
    members = "".join(f"    {member.name} = {member.value}\n" for member in kind)
    names = "".join(f"{member.name} = {kind.__name__}.{member.name}\n" for member in kind)
    return f'class {kind.__name__}(IntEnum):\n    """{kind.__doc__}"""\n{members}{names}'


def main(out):
    enumerations = [kind for kind in vars(quorix).values() if isinstance(kind, type) and hasattr(kind, "__members__")]
    session = next(table for table in tables if table[0] == "cSession")
    parts = [HEAD, *map(enumeration_stub, enumerations), *(class_stub(*table) for table in tables),
             events_stub(session[4])]
    with open(out, "w", encoding="utf-8") as stubs:
        stubs.write("\n".join(parts))


main(*sys.argv[1:])
