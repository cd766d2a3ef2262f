#!/bin/bash
# each.sh FOLDER ARGS...: runs every program in FOLDER, one after the other, with ARGS. Fails when one fails.
set -euo pipefail
folder=$1
shift
found=0 status=0
for program in "$folder"/*; do
    [ -f "$program" ] && [ -x "$program" ] || continue
    found=$((found + 1))
    echo "== ${program##*/}"
    "$program" "$@" || status=1
done
[ $found -gt 0 ] || echo "There is nothing to run in $folder yet."
exit $status
