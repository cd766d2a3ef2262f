#!/bin/bash
# Compares the shared library, as its public headers show it, with packaging/abi/libquorix.abi.xz: what a program that
# was linked with it needs. Additions are fine; what is gone or changed fails. "--write" records what is there now: with
# each version that adds something, and never to hide a change.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/abi
recorded=packaging/abi/libquorix.abi.xz

cmake --preset abi >/dev/null
cmake --build --preset abi --target quorix_shared
cmake --install "$build" --prefix "$build/stage" --component shared >/dev/null

describe() {
    abidw --headers-dir "$build/stage/include" --suppressions packaging/abi/libquorix.suppr --drop-private-types \
        --no-corpus-path --no-comp-dir-path --no-show-locs --type-id-style hash \
        "$(readlink -f "$build/quorix/libquorix.so")"
}
if [ "${1:-}" = --write ]; then
    describe | xz -9 >"$recorded"
    exit
fi
describe >"$build/now.abi"
xz -dc "$recorded" >"$build/then.abi"
abidiff --no-added-syms "$build/then.abi" "$build/now.abi"
