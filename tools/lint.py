#!/usr/bin/python3
"""Runs clang-tidy over what a build folder compiles, and remembers by content what was clean.

Most of the linter's time goes into what the sources include, so sources of one folder that are compiled alike are
looked at as one. Where their names clash, they are taken apart again. A source is looked at again when it, its
neighbours, a header of this tree that they reach, their compile command, the checks or the linter have changed.
"""

import concurrent.futures
import hashlib
import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

CACHE = pathlib.Path(".cache/lint")
TOGETHER = 8
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
BROKEN = "[clang-diagnostic-error"


def reached(path, seen):
    """`path` and every file of this tree that it includes, directly or not."""
    if path not in seen and os.path.isfile(path):
        seen.add(path)
        for name in INCLUDE.findall(pathlib.Path(path).read_bytes()):
            reached(name.decode(), seen)
    return seen


def configurations(path):
    """The configuration files that hold for `path`, the nearest first: those in its folder and in any above it."""
    return [folder / ".clang-tidy" for folder in path.parents if (folder / ".clang-tidy").is_file()]


def flags(entry):
    """What a source is compiled with, without its own name and that of what it becomes."""
    words = shlex.split(entry["command"])
    words = words[next(i for i, word in enumerate(words) if word.endswith("++")) + 1 :]
    own = {words.index("-o"), words.index("-o") + 1, words.index("-c"), words.index("-c") + 1}
    return tuple(word for i, word in enumerate(words) if i not in own)


def batches(folder):
    """The sources, as lists of neighbours that are compiled alike."""
    entries = json.loads(pathlib.Path(folder, "compile_commands.json").read_text())
    sources = sorted((os.path.dirname(entry["file"]), flags(entry), entry["file"]) for entry in entries)
    for (_, common), alike in itertools.groupby(sources, key=lambda source: source[:2]):
        paths = [pathlib.Path(source[2]).relative_to(pathlib.Path.cwd()) for source in alike]
        for first in range(0, len(paths), TOGETHER):
            yield Batch(paths[first : first + TOGETHER], common)


class Batch:
    def __init__(self, paths, common):
        self.paths, self.common = paths, common

    def halves(self):
        middle = len(self.paths) // 2
        return Batch(self.paths[:middle], self.common), Batch(self.paths[middle:], self.common)

    def key(self, linter):
        # Without the tree's place, so that one tree's memory serves another.
        digest = hashlib.sha256(f"{linter}\0{self.common}\0".replace(str(pathlib.Path.cwd()), "").encode())
        names = map(str, self.paths + configurations(self.paths[0]))
        for name in sorted(set().union(*(reached(name, set()) for name in names))):
            digest.update(name.encode() + b"\0" + pathlib.Path(name).read_bytes() + b"\0")
        return digest.hexdigest()

    def lint(self, key):
        unit = CACHE / f"{key}.cpp"
        unit.write_text("".join(f'#include "{path}"  // NOLINT(bugprone-suspicious-include)\n' for path in self.paths))
        checks = f"--config-file={configurations(self.paths[0])[0]}"
        # The build is GCC's, which knows warnings that clang does not.
        command = ["clang-tidy", "--quiet", checks, unit, "--", "-I.", *self.common, "-Wno-unknown-warning-option"]
        run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
        unit.unlink()
        return run.returncode == 0, run.stdout + (run.stderr if run.returncode != 0 else "")


def look(batch, linter):
    """The marks of what is clean, and what was found."""
    mark = CACHE / batch.key(linter)
    if mark.exists():
        return {mark}, ""
    clean, report = batch.lint(mark.name)
    if clean:
        mark.touch()
        return {mark}, ""
    if BROKEN not in report or len(batch.paths) == 1:
        return set(), report
    first, second = (look(half, linter) for half in batch.halves())
    return first[0] | second[0], first[1] + second[1]


def main(folder):
    linter = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True, text=True).stdout
    CACHE.mkdir(parents=True, exist_ok=True)
    marks, found = set(), False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for clean, report in pool.map(look, list(batches(folder)), itertools.repeat(linter)):
            marks |= clean
            found = found or bool(report)
            print(report, end="", flush=True)
    for mark in set(CACHE.iterdir()) - marks if not found else ():
        mark.unlink()
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
