#!/usr/bin/python3
"""Runs clang-tidy over what a build folder compiles, and remembers by content what was clean.

A source is looked at again when it, a header of this tree that it reaches, its compile command, the
checks or the linter itself have changed.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

CACHE = pathlib.Path(".cache/lint")
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def reached(path, seen):
    """`path` and every file of this tree that it includes, directly or not."""
    if path not in seen and os.path.isfile(path):
        seen.add(path)
        for name in INCLUDE.findall(pathlib.Path(path).read_bytes()):
            reached(name.decode(), seen)
    return seen


def configurations(path):
    """The configuration files that hold for `path`: one in its folder or in any above it."""
    folders = [path.parent, *path.parent.parents]
    return sorted(str(folder / ".clang-tidy") for folder in folders if (folder / ".clang-tidy").is_file())


def key(path, command, linter):
    digest = hashlib.sha256(f"{linter}\0{command}\0".encode())
    for name in configurations(path) + sorted(reached(str(path), set())):
        digest.update(name.encode() + b"\0" + pathlib.Path(name).read_bytes() + b"\0")
    return digest.hexdigest()


def lint(path, folder):
    # The build is GCC's, which knows warnings that clang does not.
    command = ["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", "-p", folder, str(path)]
    run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return run.returncode == 0, run.stdout + (run.stderr if run.returncode != 0 else "")


def main(folder):
    root = pathlib.Path.cwd()
    linter = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True, text=True).stdout
    CACHE.mkdir(parents=True, exist_ok=True)
    wanted = {}
    for entry in json.loads(pathlib.Path(folder, "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"]).relative_to(root)
        # Without the tree's place, so that one tree's memory serves another.
        wanted[path] = CACHE / key(path, entry["command"].replace(str(root), ""), linter)
    waiting = {path: mark for path, mark in wanted.items() if not mark.exists()}
    print(f"{len(wanted)} sources, {len(waiting)} to look at")
    clean = True
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = {pool.submit(lint, path, folder): path for path in waiting}
        for run in concurrent.futures.as_completed(runs):
            passed, report = run.result()
            if passed:
                waiting[runs[run]].touch()
            else:
                clean = False
                print(report, flush=True)
    for mark in set(CACHE.iterdir()) - set(wanted.values()) if clean else ():
        mark.unlink()
    return 0 if clean else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
