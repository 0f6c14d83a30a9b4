#!/usr/bin/env bash
# Makes a Debian 12 with nothing installed in a directory, clones this repository into it as it is
# committed, and runs a command there. To be run as root; takes a while.
#   scripts/check-fresh-machine.sh [command, ./test.sh if left out]
#   scripts/check-fresh-machine.sh bash .ci/run
# The system is removed afterwards. FRESH_MACHINE names a directory to keep it in instead.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ "$(id -u)" -eq 0 ] || {
    echo "Only root can make a system." >&2
    exit 1
}
scripts/install-dependencies.sh --fresh-machine

root=${FRESH_MACHINE:-$(mktemp -d)}
leave() {
    # Nothing is removed below a mount.
    if mountpoint -q "$root/proc" && ! umount "$root/proc"; then
        return
    fi
    [ -n "${FRESH_MACHINE-}" ] || rm -rf --one-file-system "$root"
}
trap leave EXIT

chmod 755 "$root"
[ -e "$root/etc/debian_version" ] || debootstrap --variant=minbase bookworm "$root" >"$root.log" || {
    tail -n 20 "$root.log" >&2
    exit 1
}
rm -f "$root.log"
mount -t proc proc "$root/proc"

rm -rf "$root/root/project"
git clone -q --no-hardlinks . "$root/root/project"
[ $# -gt 0 ] || set -- ./test.sh
chroot "$root" /usr/bin/env -i HOME=/root CI=true PATH=/usr/sbin:/usr/bin:/sbin:/bin \
    bash -c 'cd /root/project && exec "$@"' bash "$@" </dev/null
