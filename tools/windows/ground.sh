# What the Windows build stands on: a Wine for each width, and where such things are kept.
# Sourced by tools/windows.sh after tools/packages.sh.

suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
store=${XDG_CACHE_HOME:-$HOME/.cache}/quorix/windows

# Runs a command that fills the store; where two builds of one user meet, the second waits for the first.
with_store() {
    mkdir -p "$store"
    {
        flock --nonblock 9 || { echo "Another build is filling $store; waiting for it." >&2; flock 9; }
        "$@"
    } 9>"$store/lock"
}

# The archive this machine takes its packages from, as its own configuration names it.
archive() {
    apt-get indextargets --format '$(SITE)' 'Created-By: Packages' "Codename: $suite" 'Component: main' | head -n 1
}

# Where the machine itself has no 32-bit Wine, one runs in a file system of its own: its packages are another
# architecture's, which the machine need not accept. Made under a temporary name, so that an interrupted run leaves
# nothing half done.
make_wine32() {
    wine32_root=
    [ -x /usr/lib/wine/wine ] && return
    wine32_root=$store/wine32-$suite
    [ -x "$wine32_root/usr/lib/wine/wine" ] && return
    local making=$wine32_root.making
    as_root rm -rf "$making"
    mkdir -p "$store"
    as_root debootstrap --arch=i386 --variant=minbase --components=main "$suite" "$making" "$(archive)"
    as_root chroot "$making" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends wine wine32
    as_root chroot "$making" apt-get clean
    echo '127.0.0.1 localhost' | as_root tee "$making/etc/hosts" >/dev/null
    as_root rm -rf "$wine32_root"
    as_root mv "$making" "$wine32_root"
}
