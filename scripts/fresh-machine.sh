# shellcheck shell=bash
# A Debian 12 with nothing installed, in a directory. To be sourced, from the top directory, by root.

# Makes it in $root, or takes the one that is there already. FRESH_MACHINE names a directory to keep it
# in; without it, one is made that leave_fresh_machine removes.
make_fresh_machine() {
    root=${FRESH_MACHINE:-$(mktemp -d)}
    chmod 755 "$root"
    [ -e "$root/etc/debian_version" ] || debootstrap --variant=minbase bookworm "$root" >"$root.log" || {
        tail -n 20 "$root.log" >&2
        return 1
    }
    rm -f "$root.log"
    mount -t proc proc "$root/proc"
}

leave_fresh_machine() {
    [ -n "${root-}" ] || return 0
    # Nothing is removed below a mount.
    if mountpoint -q "$root/proc" && ! umount "$root/proc"; then
        return
    fi
    [ -n "${FRESH_MACHINE-}" ] || rm -rf --one-file-system "$root"
}

# Runs a command there, with nothing of this machine's environment.
#   on_fresh_machine [NAME=value ...] command ...
on_fresh_machine() {
    chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@" </dev/null
}
