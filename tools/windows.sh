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

declare -A targets=([32]=i686 [64]=x86_64)
jobs=$(nproc)

# What tools/windows/wine expects of its surroundings, for one width.
wine_for() {
    export QUORIX_TREE=$root QUORIX_WINE_PREFIX=$root/build/win$1/wine QUORIX_WINE32_ROOT=${wine32_root:-}
}

# A fresh drive C: in which windows can be made without a display.
make_prefix() {
    local ready=$QUORIX_WINE_PREFIX.ready
    [ -e "$ready" ] && return
    as_root rm -rf "$QUORIX_WINE_PREFIX"
    mkdir -p "$(dirname "$QUORIX_WINE_PREFIX")"
    "$root/tools/windows/wine" "$1" wineboot --init
    "$root/tools/windows/wine" "$1" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
    stop_wine "$1"
    touch "$ready"
}

# Ends what still runs in this width's drive, and nothing else.
stop_wine() { "$root/tools/windows/wine" "$1" wineboot --kill || true; }

# What one width's build needs and later ones find again: a Wine and the libraries' folders.
fill_store() {
    source_apt
    [ "$1" = 64 ] || make_wine32
    local library folder
    prefixes=
    for library in libxml2 expat openssl; do
        folder=$(provide_library "$library" "${targets[$1]}")
        prefixes+=${prefixes:+;}$folder
    done
}

configure_and_build() {
    local build=$root/build/win$1
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/windows-${targets[$1]}.cmake" \
        -DQUORIX_WINDOWS_PREFIXES="$prefixes" \
        -DQUORIX_WINDOWS_EMULATOR="$root/tools/windows/wine;$1" -DQUORIX_APPS=OFF \
        -DQUORIX_WITH_SERVER="$root/build/with_server/with_server"
    cmake --build "$build" -j "$jobs"
}

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
    configure_and_build "$width"
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
