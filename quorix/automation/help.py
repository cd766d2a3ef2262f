#!/usr/bin/env python3
"""help.py HELP IDL OUT: writes IDL with the help texts of HELP into OUT.

Fails where a declaration has no text, or a text no declaration. The compiler takes no help for a single value of an
enumeration, so an enumeration's own text lists its values.
"""
import re
import sys

TYPE = re.compile(r"\[(uuid\([^\]]*)\]\s*(dispinterface|coclass) (\w+) \{(.*?)\n    \};", re.DOTALL)
ENUM = re.compile(r"typedef \[v1_enum\] enum (\w+) \{(.*?)\}", re.DOTALL)
MEMBER = re.compile(r"\[(id\([^\]]*)\](\s*[\w* ]+?)(\w+)\(")
COMMON = "*"


class Help:
    """The texts of a help file, and which of them have been asked for."""

    def __init__(self, lines):
        self.texts = {}
        owner = None
        for line in lines:
            if not line.strip() or line.startswith("#"):
                continue
            name, text = line.strip().split(": ", 1)
            if line.startswith(" "):
                key = (owner, name)
            else:
                key, owner = (name, ""), name
            if key in self.texts:
                sys.exit(f"help: {owner}.{name} stands twice")
            self.texts[key] = text
        self.unused = set(self.texts) - {(COMMON, "")}

    def find(self, owner, member=""):
        for key in ((owner, member), (COMMON, member)):
            if key in self.texts:
                self.unused.discard(key)
                return self.texts[key]
        sys.exit(f"help: no text for {owner}.{member}")

    def attribute(self, owner, member=""):
        return attribute(self.find(owner, member))

    def enumeration(self, name, values):
        parts = [f"{value}: {self.find(name, value)}" for value in values]
        return attribute(f"{self.find(name)} {'; '.join(parts)}.")


def attribute(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"')
    return f'helpstring("{escaped}")'


def described(idl, texts):
    def member(owner):
        return lambda found: f"[{found[1]}, {texts.attribute(owner, found[3])}]{found[2]}{found[3]}("

    def type_(found):
        attributes, kind, name, body = found.groups()
        owner = name if kind == "coclass" or name.endswith("Events") else name.lstrip("_")
        body = MEMBER.sub(member(owner), body)
        return f"[{attributes}, {texts.attribute(owner)}]\n    {kind} {name} {{{body}\n    }};"

    def enumeration(found):
        values = re.findall(r"(\w+) = ", found[2])
        return f"typedef [v1_enum, {texts.enumeration(found[1], values)}] enum {found[1]} {{{found[2]}}}"

    return ENUM.sub(enumeration, TYPE.sub(type_, idl))


def main(help_file, idl_file, out_file):
    with open(help_file, encoding="utf-8") as source:
        texts = Help(source)
    with open(idl_file, encoding="utf-8") as source:
        idl = described(source.read(), texts)
    if texts.unused:
        sys.exit(f"help: nothing is called {sorted(texts.unused)}")
    with open(out_file, "w", encoding="utf-8") as out:
        out.write(idl)


main(*sys.argv[1:])
