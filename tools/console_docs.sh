#!/bin/bash
# console_docs.sh CONSOLE: writes what the console says of itself into docs/console.md, behind the line that names this
# script.
set -euo pipefail
console=$(realpath "$1")
cd "$(dirname "$0")/.."
mark='<!-- From here on: tools/console_docs.sh -->'
{
    sed "\|^$mark\$|q" docs/console.md | sed 's/ *$//'
    echo
    "$console" --reference markdown
} >docs/console.md.new
mv docs/console.md.new docs/console.md
