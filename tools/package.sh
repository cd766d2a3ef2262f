#!/bin/bash
# Makes the source tarball, the Debian packages and a wheel in build/package, and tries them in a bare system: installs
# them, builds the examples and a project against them, runs the console, and removes everything again.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
. tools/packages.sh
. tools/windows/ground.sh

version=$(sed -n 's/^project(quorix VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=quorix-$version
out=$root/build/package
bare=$out/bare
maintainer=${DEBFULLNAME:-$(git log -1 --format=%cn)}" <"${DEBEMAIL:-$(git log -1 --format=%ce)}">"
use_module='import quorix; assert quorix.cSession(username="romeo").Mode == quorix.KV_Modern'
packages=(libquorix1 libquorix-dev quorix-console python3-quorix)

step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }

# Of what is committed, the same to the byte each time.
make_tarball() {
    git archive --format=tar --prefix="$name/" HEAD | gzip -n9 >"$out/$name.tar.gz"
}

debian_changelog() {
    local date
    date=$(sed -n "s/^## $version, \(.*\)$/\1/p" CHANGELOG.md)
    printf 'quorix (%s-1) unstable; urgency=medium\n\n  * Version %s.\n\n -- %s  %s\n' \
        "$version" "$version" "$maintainer" "$(date -u -R -d "$date 12:00")"
}

make_packages() {
    cp "$out/$name.tar.gz" "$out/quorix_$version.orig.tar.gz"
    tar -xzf "$out/$name.tar.gz" -C "$out"
    cp -r packaging/debian "$out/$name/debian"
    sed -i "s/@maintainer@/$maintainer/" "$out/$name/debian/control"
    debian_changelog >"$out/$name/debian/changelog"
    (cd "$out/$name" && nice dpkg-buildpackage -us -uc -j"$(nproc)" >"$out/build.log" 2>&1) ||
        { tail -n 40 "$out/build.log" >&2; return 1; }
}

# The module as the package has it, for a virtual environment on a system with the same libraries.
make_wheel() {
    local folder=$out/wheel information=$out/wheel/quorix-$version.dist-info
    mkdir -p "$information"
    cp -r "$out/$name/debian/python3-quorix/usr/lib/python3/dist-packages/quorix" "$folder"
    rm -rf "$folder/quorix/__pycache__"
    printf 'Wheel-Version: 1.0\nGenerator: quorix\nRoot-Is-Purelib: false\nTag: %s\n' \
        "$(/usr/bin/python3 -c 'import sys, sysconfig
tag = f"cp{sys.version_info.major}{sys.version_info.minor}"
print(tag, tag, sysconfig.get_platform().replace("-", "_"), sep="-")')" >"$information/WHEEL"
    printf 'Metadata-Version: 2.1\nName: quorix\nVersion: %s\nSummary: Jabber client library\nRequires-Python: >=3.11\n' \
        "$version" >"$information/METADATA"
    cp LICENSE "$information"
    /usr/bin/python3 -m wheel pack -d "$out" "$folder" >/dev/null
    rm -rf "$folder"
}

# The wheel is tried as it is unpacked, beside no other module of this name.
try_wheel() {
    local folder
    folder=$(mktemp -d)
    /usr/bin/python3 -m wheel unpack -d "$folder" "$out"/*.whl >/dev/null
    PYTHONPATH=$folder/quorix-$version /usr/bin/python3 -P -c "$use_module"
    rm -rf "$folder"
}

# The changelog is of the package's first version, which answers no wish in Debian's list.
inspect() { lintian --fail-on error --suppress-tags initial-upload-closes-no-bugs "$out"/*.changes; }

inside() { as_root chroot "$bare" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }

make_bare_system() {
    as_root rm -rf "$bare"
    as_root debootstrap --variant=minbase --include=ca-certificates "$suite" "$bare" "$(archive)" >"$out/bare.log"
    as_root mkdir "$bare/packages"
    as_root cp "$out"/*.deb "$bare/packages"
    as_root cp -r tests/package "$bare/consumer"
}

# Nothing but a compiler: what linking with the library needs must come with it.
try_packages() {
    inside apt-get install -y -qq --no-install-recommends g++ cmake make pkg-config >/dev/null
    inside sh -c 'apt-get install -y -qq --no-install-recommends /packages/*.deb' >/dev/null
    inside quorix-console --version
    inside python3 -P -c "$use_module"
    inside sh -euc '
        cp -r /usr/share/doc/libquorix-dev/examples /tmp/examples
        cmake -S /tmp/examples -B /tmp/examples-built >/dev/null && cmake --build /tmp/examples-built
        cmake -S /consumer -B /tmp/consumer >/dev/null && cmake --build /tmp/consumer && /tmp/consumer/consumer
        g++ -std=c++20 /consumer/consumer.cpp -o /tmp/by-pkg-config $(pkg-config --cflags --libs quorix)
        /tmp/by-pkg-config'
}

remove_packages() {
    inside apt-get purge -y -qq "${packages[@]}" >/dev/null
    local left
    left=$(inside sh -c 'find / -xdev -name "*quorix*" -not -path "/proc/*" -not -path "/packages*" -not -path "/tmp/*"')
    [ -z "$left" ] || { echo "Left behind: $left" >&2; return 1; }
}

need build console package
as_root rm -rf "$out"
mkdir -p "$out"
step "Source tarball"
make_tarball
step "Packages"
make_packages
step "Wheel"
make_wheel
try_wheel
step "What lintian says"
inspect
step "A bare system"
make_bare_system
step "Installed, built against, run"
try_packages
step "Removed"
remove_packages
as_root rm -rf "$bare"
step "Done"
ls "$out"/*.tar.gz "$out"/*.deb "$out"/*.whl
