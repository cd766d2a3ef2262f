#!/bin/bash
# Packs what somebody needs on Windows into build/quorix-VERSION-windows.zip, and into a program of the same name that
# installs it; tries both under Wine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
. "$root/tools/packages.sh"
. "$root/tools/windows/ground.sh"
. "$root/tools/windows/libraries.sh"
. "$root/tools/windows/build.sh"

version=$(sed -n 's/^project(quorix VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=quorix-$version-windows
kit=$root/build/kit/$name
archive=$root/build/$name.zip
setup=$root/build/$name.exe
declare -A architectures=([32]=x86 [64]=amd64)

with_windows_lines() { sed 's/$/\r/' "$1" >"$2"; }

# The probe tries the kit; it is no part of it.
build_width() {
    with_store fill_store "$1"
    configure "$1"
    cmake --build "$root/build/win$1" -j "$jobs" --target quorix_component --target kit_probe
}

add_component() { # width
    local folder=$kit/win$1 built=$root/build/win$1/quorix/automation
    mkdir -p "$folder"
    "${targets[$1]}-w64-mingw32-strip" --strip-unneeded -o "$folder/quorix.dll" "$built/quorix.dll"
    cp "$built/quorix.tlb" "$folder"
    packaging/windows/manifest.py quorix/automation/quorix.idl "$version" "${architectures[$1]}" \
        >"$folder/Quorix.Automation.manifest"
}

add_licenses() {
    local folder=$kit/licenses package
    local -A texts=([libxml2]=Copyright [expat]=expat/COPYING [openssl]=LICENSE.txt)
    mkdir -p "$folder"
    with_windows_lines LICENSE "$folder/quorix.txt"
    for package in "${!texts[@]}"; do
        with_windows_lines "$(unpack_source "$package" "$(source_version "$package")")/${texts[$package]}" \
            "$folder/$package.txt"
    done
    with_windows_lines /usr/share/doc/gcc-mingw-w64-base/copyright "$folder/gcc-runtime.txt"
    with_windows_lines /usr/share/doc/mingw-w64-common/copyright "$folder/mingw-w64-runtime.txt"
}

add_texts() {
    local file
    mkdir -p "$kit/samples"
    for file in install.cmd uninstall.cmd README.txt samples; do
        for file in $(cd packaging/windows && find "$file" -type f); do
            with_windows_lines "packaging/windows/$file" "$kit/$file"
        done
    done
    sed -i "s/@version@/$version/" "$kit/samples/application.manifest" "$kit/README.txt"
}

pack() {
    rm -f "$archive"
    (cd "$root/build/kit" && cmake -E tar cf "$archive" --format=zip "$name")
}

make_setup() { makensis -V2 -DVERSION="$version" -DKIT="$kit" -DOUT="$setup" packaging/windows/setup.nsi; }

# -- Trying it --

expect() { # "works" or "fails", what is tried, command...
    local outcome=works
    "${@:3}" >"$root/build/kit/last.txt" 2>&1 || outcome=fails
    echo "$2: $outcome"
    [ $outcome = "$1" ] || { cat "$root/build/kit/last.txt"; return 1; }
}

# Sees `wine`, `folder` and `width` of its caller.
try_registration() { # "user" or "machine", command that works while it is registered...
    local scope=$1 argument=()
    shift
    [ "$scope" = user ] || argument=("$scope")
    expect works "$width bits: install for the $scope" "${wine[@]}" cmd /c "Z:$folder/install.cmd" "${argument[@]}"
    expect works "$width bits: installed" "$@"
    expect works "$width bits: uninstall" "${wine[@]}" cmd /c "Z:$folder/uninstall.cmd" "${argument[@]}"
    expect fails "$width bits: uninstalled" "$@"
}

# The program is a 32-bit one, which a 64-bit Wine alone does not run.
try_setup() {
    local class='HKCU\Software\Classes\Quorix.cSession' folder='C:\Quorix'
    expect works "setup: install" "${wine[@]}" "$setup" /S "/D=$folder"
    expect works "setup: installed" "${wine[@]}" reg query "$class"
    expect works "setup: uninstall" "${wine[@]}" "$folder\\uninstall.exe" /S "_?=$folder"
    expect fails "setup: uninstalled" "${wine[@]}" reg query "$class"
    expect fails "setup: left behind" ls -d "$QUORIX_WINE_PREFIX"/drive_c/Quorix/[!u]*
}

# In a folder whose name has a blank, on a drive where nothing is registered.
try_width() {
    local width=$1 folder="$root/build/kit/as unpacked/$name"
    local wine=("$root/tools/windows/wine" "$width") probe=$root/build/win$width/tests/windows/kit_probe.exe
    wine_for "$width"
    QUORIX_WINE_PREFIX=$root/build/kit/wine$width
    rm -f "$QUORIX_WINE_PREFIX.ready"
    make_prefix "$width"
    cp "$folder/win$width/"* "$folder/samples/application.manifest" "$(dirname "$probe")"
    expect fails "$width bits: before" "${wine[@]}" "$probe"
    expect works "$width bits: by manifest" "${wine[@]}" "$probe" "Z:$(dirname "$probe")" application.manifest
    # Wine looks classes up for the whole machine only.
    try_registration user "${wine[@]}" reg query 'HKCU\Software\Classes\Quorix.cSession'
    try_registration machine "${wine[@]}" "$probe"
    [ "$width" = 64 ] || try_setup
    stop_wine "$width"
}

need windows
as_root rm -rf "$root/build/kit"
for width in 32 64; do
    build_width "$width"
    add_component "$width"
done
with_store add_licenses
add_texts
pack
make_setup
mkdir -p "$root/build/kit/as unpacked"
(cd "$root/build/kit/as unpacked" && cmake -E tar xf "$archive")
for width in 32 64; do try_width "$width"; done
ls "$archive" "$setup"
