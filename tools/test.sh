#!/bin/bash
# The first gate: every test once, in a plain build.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
. tools/steps.sh

cat <<'TEXT'
Installs what is missing, builds the library, its programs and its tests, and runs each test once.
On two processors this takes up to 5 minutes from nothing, and under a minute once built.
TEXT
need build console test
need_servers servers
build_and_test dev
step "Done"
