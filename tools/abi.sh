#!/bin/bash
# Compares the shared library, as its public headers show it, with packaging/abi/libquorix.abi: what a program that was
# linked with it needs. Additions are fine; what is gone or changed fails. "--write" records what is there now: with
# each version that adds something, and never to hide a change.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/abi
recorded=packaging/abi/libquorix.abi

cmake --preset abi >/dev/null
cmake --build --preset abi --target quorix_shared
cmake --install "$build" --prefix "$build/stage" --component shared >/dev/null

library=$(readlink -f "$build/stage/lib/"*/libquorix.so "$build/stage/lib/libquorix.so" 2>/dev/null | head -n 1)
describe() {
    abidw --headers-dir "$build/stage/include" --drop-private-types --no-corpus-path --no-comp-dir-path --no-show-locs \
        --type-id-style hash "$library"
}
if [ "${1:-}" = --write ]; then
    mkdir -p "$(dirname "$recorded")"
    describe >"$recorded"
    exit
fi
describe >"$build/libquorix.abi"
abidiff --no-added-syms "$recorded" "$build/libquorix.abi"
