#!/usr/bin/python3
"""Seeds faults in the library, one at a time, and says which of them no unit test catches.

    tools/mutate.py new LIST COUNT SEED    choose faults, the same for the same tree and seed
    tools/mutate.py run LIST               try those that have no result yet; may be stopped and run again
    tools/mutate.py again LIST OTHER       the same faults without their results, to be tried on a later tree

A fault is a condition turned, a constant changed, or a call dropped, in a source of quorix/. LIST has one a line:
its result, the source, which of its equal lines, the column, what stands there, what comes instead, and the line.
Results: caught, missed, broken (does not compile), gone (the tree has no such line any more). All is built in a copy
of the tree below build/mutants, one object and one link a fault.
"""

import os
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys

TREE = pathlib.Path("build/mutants")
TESTS = "build/dev/tests/quorix_tests"
SECONDS = 60  # of the processor's time, for tests that take a tenth of it: beyond it they do not end
MEMORY = 4 << 30
FIELDS = 7

# Unit tests know nothing of the systems; their sources have tests of their own.
OTHERS = re.compile(r"quorix/(automation|platform/\w+)/")
QUOTED = re.compile(r"""u?"(\\.|[^"\\])*"|u?'(\\.|[^'\\])*'|//.*""")
TURNS = {"==": "!=", "!=": "==", "<": "<=", ">": ">=", "<=": "<", ">=": ">", "&&": "||", "||": "&&"}
FAULTS = [
    (re.compile(r" (==|!=|<=?|>=?|&&|\|\|) "), lambda found: TURNS[found]),
    (re.compile(r"\bif \((.+?)\) (?=[{\w])"), lambda found: f"!({found})"),
    (re.compile(r"(!)[\w(]"), lambda found: ""),
    (re.compile(r"\b(true|false)\b"), lambda found: "true" if found == "false" else "false"),
    (re.compile(r"(?<![\w.])(\d+)U?\b"), lambda found: str(int(found) + 1)),
    (re.compile(r"^ {4,}(?:(?:if|for|while) \(.*\) )?((?!return\b|throw\b)[\w.>:-]+\([^;{]*\));$"), lambda found: "void()"),
]


def sources():
    listed = subprocess.run(["git", "ls-files", "quorix/*.cpp"], check=True, capture_output=True, text=True)
    return [path for path in listed.stdout.split() if not OTHERS.match(path)]


def is_whole(text):
    """Not a piece of an expression, nor a condition that declares something."""
    return text.count("(") == text.count(")") and " = " not in text


def faults(path):
    """Every fault that `path` has room for, as the fields behind a result."""
    seen = {}
    for line in pathlib.Path(path).read_text().splitlines():
        turn = seen[line] = seen.get(line, -1) + 1
        # Text and comments are blanked, so that columns stay.
        code = QUOTED.sub(lambda quoted: "\0" * len(quoted.group()), line)
        if code.startswith(("#", "using ", "namespace ", "template")):
            continue
        for pattern, instead in FAULTS:
            for match in pattern.finditer(code):
                column = match.start(1)
                old = line[column : match.end(1)]
                if is_whole(old):
                    yield [path, str(turn), str(column), old, instead(old), line]


def write(name, lines):
    pathlib.Path(name).write_text("".join("\t".join(fields) + "\n" for fields in lines))


def read(name):
    return [line.split("\t", FIELDS - 1) for line in pathlib.Path(name).read_text().splitlines()]


def seeded(text, turn, column, old, new, line):
    """`text` with the fault in it, or None when it has no room for it any more."""
    lines = text.splitlines(keepends=True)
    places = [i for i, text in enumerate(lines) if text.rstrip("\n") == line]
    if int(turn) >= len(places):
        return None
    start = int(column)
    lines[places[int(turn)]] = line[:start] + new + line[start + len(old) :] + "\n"
    return "".join(lines)


def copy_tree():
    listed = subprocess.run(["git", "ls-files"], check=True, capture_output=True, text=True).stdout
    for name in listed.splitlines():
        old, new = pathlib.Path(name), TREE / name
        new.parent.mkdir(parents=True, exist_ok=True)
        if not new.exists() or new.read_bytes() != old.read_bytes():
            shutil.copy(old, new)
    subprocess.run(["cmake", "--preset", "dev"], cwd=TREE, check=True, stdout=subprocess.DEVNULL)


def build():
    run = subprocess.run(["ninja", "-C", "build/dev", "quorix_tests"], cwd=TREE, capture_output=True)
    return run.returncode == 0


def limit():
    resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def tests_pass():
    command = [TESTS, "--gtest_brief=1", "--gtest_fail_fast"]
    try:
        run = subprocess.run(command, cwd=TREE, capture_output=True, preexec_fn=limit, timeout=SECONDS * 10)
    except subprocess.TimeoutExpired:
        return False
    return run.returncode == 0


def result_of(path, *fault):
    place = TREE / path
    sound = place.read_text() if place.exists() else ""
    text = seeded(sound, *fault)
    if text is None:
        return "gone"
    place.write_text(text)
    try:
        if not build():
            return "broken"
        return "missed" if tests_pass() else "caught"
    finally:
        place.write_text(sound)


def run(name):
    copy_tree()
    if not build() or not tests_pass():
        sys.exit("The tree does not pass its tests without faults.")
    lines = read(name)
    for fields in lines:
        if fields[0] == "-":
            fields[0] = result_of(*fields[1:])
            write(name, lines)
            print(*fields[:3], *fields[4:], sep="\t", flush=True)
    tally = [fields[0] for fields in lines]
    print(*(f"{result} {tally.count(result)}" for result in sorted(set(tally))))


def main(command, name, *rest):
    if command == "new":
        every = [fault for path in sorted(sources()) for fault in faults(path)]
        chosen = random.Random(int(rest[1])).sample(every, int(rest[0]))
        write(name, (["-", *fields] for fields in chosen))
    elif command == "again":
        write(rest[0], (["-", *fields[1:]] for fields in read(name)))
    elif command == "run":
        run(name)
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    os.chdir(pathlib.Path(__file__).resolve().parent.parent)
    main(*sys.argv[1:]) if len(sys.argv) > 2 else sys.exit(__doc__)
