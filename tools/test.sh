#!/bin/bash
# The whole check of a tree: its form first, since that takes seconds, then every test in two builds.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh

step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }

configure() { cmake --preset "$1" >/dev/null; }

build_and_test() {
    step "Build: $1"
    cmake --build --preset "$1"
    step "Tests: $1"
    ctest --preset "$1"
}

need build console test
need_servers servers

step "Format"
git ls-files -z '*.h' '*.cpp' | xargs -0 -r clang-format --dry-run -Werror
step "Includes"
tools/check_includes.py
step "Lint"
configure dev
tools/lint.py build/dev
build_and_test dev
configure asan
build_and_test asan
step "Done"
