#!/bin/bash
# Counts the instructions of fixed work on the main paths and compares them with bench/counted/figures.txt:
# more than 5 % above or below fails, since figures that are too high hide the next slow change.
# "--write" makes the counts the new figures.
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/bench/bench/counted/quorix_counted
figures=bench/counted/figures.txt
counts=$(mktemp -d)
trap 'rm -rf "$counts"' EXIT

count() {
    valgrind --tool=callgrind --callgrind-out-file="$counts/$1.out" --collect-atstart=no \
        --toggle-collect=CountedHear --toggle-collect=CountedSend "$program" "$1" >"$counts/$1.log" 2>&1 ||
        { cat "$counts/$1.log" >&2; return 1; }
    sed -n 's/^summary: //p' "$counts/$1.out"
}

failed=0
new=
while read -r path expected; do
    counted=$(count "$path")
    new+="$path $counted"$'\n'
    off=$(awk -v a="$counted" -v b="$expected" 'BEGIN { printf "%+.1f", (a / b - 1) * 100 }')
    printf '%-18s %12d instructions, %12d expected: %s %%\n' "$path" "$counted" "$expected" "$off"
    awk -v off="$off" 'BEGIN { exit !(off > 5 || off < -5) }' && failed=1
done <"$figures"
if [ "${1:-}" = --write ]; then
    printf %s "$new" >"$figures"
    exit 0
fi
[ "$failed" = 0 ] || echo "More than 5 % off: find out why, or accept it with ./run bench check --write." >&2
exit "$failed"
