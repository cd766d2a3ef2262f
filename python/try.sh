#!/bin/bash
# try.sh FOLDER [WITH_SERVER]: tries the module in FOLDER, and the examples beside a real server when there is one.
# What `./run python` has built is in build/python/python.
set -euo pipefail
cd "$(dirname "$0")"
export PYTHONPATH=$1 PYTHONDONTWRITEBYTECODE=1
MYPYPATH=$1 mypy --strict --cache-dir="$1/.mypy_cache" "$1/quorix/__init__.pyi" ../examples/python/*.py
/usr/bin/python3 -X dev -W ignore::ResourceWarning tests/test_quorix.py
[ -z "${2:-}" ] || "$2" /usr/bin/python3 tests/test_examples.py @port@
