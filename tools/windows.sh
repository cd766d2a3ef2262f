#!/bin/bash
# Builds the component for Windows in 32 and 64 bits and tests both under Wine.
#
#   tools/windows.sh              everything
#   tools/windows.sh 64           one width
#   tools/windows.sh 64 -R unit   one width, the rest of the arguments to ctest
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
. "$root/tools/packages.sh"
. "$root/tools/windows/ground.sh"
. "$root/tools/windows/libraries.sh"
. "$root/tools/windows/build.sh"

# Real servers run on this machine, beside the programs that run under Wine.
build_with_server() {
    cmake -S "$root/tests/windows/real" -B "$root/build/with_server" -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
    cmake --build "$root/build/with_server" -j "$jobs"
}

check_width() {
    local width=$1 status=0
    shift
    wine_for "$width"
    make_prefix "$width"
    configure "$width" -DQUORIX_WITH_SERVER="$root/build/with_server/with_server"
    cmake --build "$root/build/win$width" -j "$jobs"
    ctest --test-dir "$root/build/win$width" -j "$jobs" --output-on-failure --no-tests=error --timeout 300 "$@" || status=$?
    stop_wine "$width"
    return $status
}

# Both widths are tried, whatever becomes of the first. Each is a run of its own, which ends at its first error.
if [ $# -eq 0 ]; then
    failed=()
    for width in 32 64; do
        tools/windows.sh "$width" || failed+=("$width")
    done
    [ ${#failed[@]} -eq 0 ] && exit
    echo "Failed for Windows in ${failed[*]} bits" >&2
    exit 1
fi

width=$1
shift
need windows
need_servers servers
with_store fill_store "$width"
build_with_server
echo "== Windows, $width bits"
check_width "$width" "$@"
