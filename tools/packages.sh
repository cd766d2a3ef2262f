# Installs Debian packages, from lists beside this file. Sourced by the commands.

as_root() { if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi; }

installed() { dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q ' installed$'; }

# Another installation may be under way. apt-get waits for it by itself where it installs, but not here.
update_lists() {
    local said tries=300
    until said=$(as_root env LC_ALL=C apt-get update -qq 2>&1); do
        if [[ $said != *'Could not get lock'* ]] || ((--tries == 0)); then
            echo "$said" >&2
            return 1
        fi
        sleep 2
    done
}

# need LIST...: installs what tools/packages-LIST.txt names and the machine lacks. Asks nobody when all is there.
need() {
    local missing=() list package
    for list in "$@"; do
        for package in $(grep -v '^#' "tools/packages-$list.txt"); do
            installed "$package" || missing+=("$package")
        done
    done
    if [ ${#missing[@]} -gt 0 ]; then
        echo "Installing: ${missing[*]}"
        update_lists
        as_root env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=600 "${missing[@]}"
    fi
}

# The same for servers, which only the tests may start: packages ask the policy file before they start a
# service. What stood there before is put back, however the installation ends.
need_servers() (
    policy=/usr/sbin/policy-rc.d
    kept=$(mktemp -d)
    restore() {
        as_root rm -f "$policy"
        if [ -e "$kept/policy" ] || [ -L "$kept/policy" ]; then as_root mv "$kept/policy" "$policy"; fi
        rmdir "$kept"
    }
    trap restore EXIT
    trap 'exit 1' INT TERM HUP
    if [ -e "$policy" ] || [ -L "$policy" ]; then as_root cp -a "$policy" "$kept/policy"; fi
    as_root rm -f "$policy"
    printf '#!/bin/sh\nexit 101\n' | as_root tee "$policy" >/dev/null
    as_root chmod 755 "$policy"
    need "$@"
)
