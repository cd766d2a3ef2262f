#!/bin/bash
# The second gate: what a change must pass besides the tests. Its form comes first, since that takes seconds.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
. tools/steps.sh

cat <<'TEXT'
Checks format, includes and lint, runs the tests, the torture and the fuzz corpora with sanitizers, and counts the
instructions of the main paths. From nothing, the linter and the build with sanitizers take most of the time.
TEXT
need build console test check fuzz bench
need_servers servers

step "Format"
tools/format.sh --dry-run -Werror
step "Includes"
tools/check_includes.py
step "Lint"
configure dev
tools/lint.py build/dev
build_and_test asan
# Without the allocator of GLib, whose locks the sanitizer does not see (G_SLICE in the preset).
build_and_test tsan quorix_torture
step "Instructions"
./run bench check
step "Done"
