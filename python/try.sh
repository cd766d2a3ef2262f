#!/bin/bash
# try.sh FOLDER [WITH_SERVER]: tries the module in FOLDER, and the examples beside real servers when it can start them.
# What `./run python` has built is in build/python/python.
set -euo pipefail
cd "$(dirname "$0")"
export PYTHONPATH=$1 PYTHONDONTWRITEBYTECODE=1
MYPYPATH=$1 mypy --strict --cache-dir="$1/.mypy_cache" "$1/quorix/__init__.pyi" ../examples/python/*.py
# Apart from the package, whose sources have no types.
mkdir -p "$1/.stubs/quorix"
cp "$1/quorix/__init__.pyi" "$1/.stubs/quorix/"
MYPYPATH=$1/.stubs stubtest quorix --allowlist tests/stubtest.txt
/usr/bin/python3 -X dev -W ignore::ResourceWarning tests/test_quorix.py
[ -n "${2:-}" ] || exit 0
on() { echo "The examples on $1"; "$2" "--$1" /usr/bin/python3 tests/test_examples.py "${@:3}"; }
on ejabberd "$2" @port@
on jabberd2 "$2" @port@
on prosody "$2" @port@ KV_PlainAuth  # it takes no digest
