#!/bin/bash
# format.sh ARGS...: clang-format with ARGS over every source of the tree.
set -euo pipefail
cd "$(dirname "$0")/.."
find . \( -path ./build -o -path ./.cache -o -path ./.git \) -prune -o \
    -type f \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 clang-format "$@"
