#!/usr/bin/env python3
"""describe.py IDL OUT: writes what the tables do not know of themselves into OUT, a C++ source: see Descriptions.h.

IDL is the interface description with its help texts, as quorix/automation/help.py makes it.
"""
import re
import sys

TEXT = r'helpstring\("((?:[^"\\]|\\.)*)"\)'
TYPE = re.compile(rf"\[[^\n]*?{TEXT}\]\s*(dispinterface|coclass) (\w+) \{{(.*?)\n    \}};", re.DOTALL)
ENUM = re.compile(rf"typedef \[v1_enum, {TEXT}\] enum (\w+) \{{(.*?)\}}", re.DOTALL)
MEMBER = re.compile(rf"\[id\([^)]*\)([^\[]*?), {TEXT}\]\s*([\w* ]+?)(\w+)\((.*?)\);", re.DOTALL)
HEAD = """\
#include "python/module/Descriptions.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/session/cSession.h"

namespace quorix::python {

using scripting::MemberKind;
"""
PARAMETER = re.compile(r"\[[^\]]*\]\s*([\w*() ]+?)\s*\b(\w+)\s*(?:,|$)")


def quoted(text):
    return '"' + text + '"'  # escaped alike in both languages


def table(kind, name, rows):
    yield f"\nconst std::vector<{kind}>& {name}() {{\n    static const std::vector<{kind}> all = {{"
    yield from rows
    yield "    };\n    return all;\n}"


def kind_of(attributes):
    return next((kind for word, kind in (("propget", "Get"), ("propput", "Put")) if word in attributes), "Method")


def main(idl_file, out_file):
    with open(idl_file, encoding="utf-8") as source:
        idl = source.read()
    enumerations = ENUM.findall(idl)
    names = {name for _, name, _ in enumerations}

    def enumeration(written):
        name = written.strip().rstrip("*").strip()
        return quoted(name if name in names else "")

    def enumerations_of():
        for text, name, body in enumerations:
            values = ", ".join(f"{{{quoted(value)}, {value}}}" for value in re.findall(r"(\w+) = ", body))
            yield f"        {{{quoted(name)}, {quoted(text)}, {{{values}}}}},"

    def classes():
        for text, kind, name, _ in TYPE.findall(idl):
            if kind == "coclass":
                yield f"        {{{quoted(name)}, {quoted(text)}}},"

    def members():
        for _, kind, owner, body in TYPE.findall(idl):
            for attributes, text, result, name, parameters in MEMBER.findall(body) if kind == "dispinterface" else ():
                given = ", ".join(f"{{{quoted(p)}, {enumeration(t)}}}" for t, p in PARAMETER.findall(parameters))
                yield (f"        {{{quoted(owner.lstrip('_'))}, {quoted(name)}, MemberKind::{kind_of(attributes)}, "
                       f"{quoted(text)}, {{{given}}}, {enumeration(result)}}},")

    with open(out_file, "w", encoding="utf-8") as out:
        out.write("\n".join([HEAD, *table("Enumeration", "Enumerations", enumerations_of()),
                             *table("ClassText", "ClassTexts", classes()),
                             *table("MemberText", "MemberTexts", members()), "", "}  // namespace quorix::python", ""]))


main(*sys.argv[1:])
