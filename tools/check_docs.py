#!/usr/bin/env python3
"""check_docs.py COMPILER...: checks the hand-written pages: lines, links, and that every C++ fragment compiles; and
which headers are documented.

A fragment with an #include is a file of its own. One that begins with a declaration stands in a namespace, any other in
a function that knows a few names. COMPILER is the command that compiles one file, flags included.
"""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COLUMNS = 120
FRAGMENT = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\]\(([^)#:\s]+)(?:#([^)\s]+))?\)")
DECLARATION = re.compile(r"(struct|class|enum|template|using|void|int)\b")
PRELUDE = """#include <iostream>
#include <vector>
#include "quorix/base/WireText.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/session/cSession.h"
#include "quorix/xml/cXML_Writer.h"
using namespace quorix;
void show(const std::shared_ptr<cPresenceItem>&);
"""
NAMES = "const std::shared_ptr<cSession>& session, const std::shared_ptr<SessionEvents>& sink, const String& jid"


def pages():
    return sorted([*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")])


def faults_of_lines(page, text):
    for number, line in enumerate(text.splitlines(), 1):
        if len(line) > COLUMNS:
            yield f"{page}:{number}: {len(line)} columns"


def anchors(text):
    titles = re.findall(r"^#+ (.*)$", text, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def faults_of_links(page, text):
    for target, anchor in LINK.findall(text):
        file = page.parent / target
        if not file.exists():
            yield f"{page}: {target} is not there"
        elif anchor and anchor not in anchors(file.read_text(encoding="utf-8")):
            yield f"{page}: {target} has no {anchor}"


def faults_of_headers():
    """What the reference shows is what is installed: public headers open with three slashes, and no others."""
    build = (ROOT / "quorix/CMakeLists.txt").read_text(encoding="utf-8")
    listed = re.search(r"set\(public_headers(.*?)\)", build, re.DOTALL)
    public = {ROOT / "quorix" / name for name in listed[1].split()}
    for header in sorted(ROOT.glob("quorix/**/*.h")):
        if header.read_text(encoding="utf-8").startswith("///") != (header in public):
            yield f"{header.relative_to(ROOT)}: {'public' if header in public else 'internal'}, and opens otherwise"


def wrapped(name, fragment, code):
    if DECLARATION.match(fragment):
        return f"namespace {name} {{\n{code}}}\n"
    return f"void {name}({NAMES}) {{ {{\n{code}}} (void)session, (void)sink, (void)jid; }}\n"


def units():
    """The text of each file to compile: the fragments that are files, and one for all others."""
    parts = [PRELUDE]
    for page in pages():
        text = page.read_text(encoding="utf-8")
        for found in FRAGMENT.finditer(text):
            line = text.count("\n", 0, found.start()) + 2
            code = f'#line {line} "{page.relative_to(ROOT)}"\n{found[1]}'
            if "#include" in found[1]:
                yield code
            else:
                parts.append(wrapped(f"fragment{len(parts)}", found[1], code))
    yield "".join(parts)


def compiles(compiler, unit):
    with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="utf-8") as file:
        file.write(unit)
        file.flush()
        return subprocess.run([*compiler, "-fsyntax-only", f"-I{ROOT}", file.name], check=False).returncode == 0


def main(compiler):
    faults = [*faults_of_headers()]
    for page in pages():
        text = page.read_text(encoding="utf-8")
        faults += [*faults_of_lines(page.relative_to(ROOT), text), *faults_of_links(page, text)]
    print("\n".join(faults))
    compiled = [compiles(compiler, unit) for unit in units()]
    return 0 if all(compiled) and not faults else 1


sys.exit(main(sys.argv[1:]))
