# One width of the component, built, and the Wine that runs it. Sourced by tools/windows.sh and
# tools/package_windows.sh after ground.sh and libraries.sh.

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

# configure WIDTH [CMAKE-OPTION...]
configure() {
    local width=$1
    shift
    cmake -S "$root" -B "$root/build/win$width" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/windows-${targets[$width]}.cmake" \
        -DQUORIX_WINDOWS_PREFIXES="$prefixes" \
        -DQUORIX_WINDOWS_EMULATOR="$root/tools/windows/wine;$width" -DQUORIX_APPS=OFF "$@"
}
