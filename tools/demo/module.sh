#!/usr/bin/env bash
# A module of the demo's own, inside the private namespaces tools/demo.sh
# starts (we are root of a user namespace there, nowhere else):
#   - a root file system made of read-only binds of the host's directories,
#     with its own /dev, /proc, /sys, /run, /data and /etc/resolv.conf, so the
#     library's resolver and NV files land on private storage;
#   - a system log of its own (busybox syslogd on the private /dev/log);
#   - the modem's network interface ccmni0: one end of a veth pair whose other
#     end, modem0, sits in a network namespace "modem" standing for the
#     modem's side of the data path.
# Then it runs tools/demo/walkthrough.sh there. Everything ends with the
# namespaces; the only host directory written to is the scratch directory,
# which tools/demo.sh removes.
# Usage: module.sh SCRATCH REPO NKWCTL SIM_INJECT SCENARIO (--inside: the second
# half, run by the first inside the new root)
set -euo pipefail

# ---- inside it: system log, network, walkthrough ---------------------------
if [ "${1:-}" = --inside ]; then
    shift
    scratch=$1 repo=$2
    # Everything else of the host is read-only here.
    export TMPDIR=$scratch
    busybox hostname nkw-module
    # The in-memory log lives in this IPC namespace.
    busybox syslogd -n -C256 &
    for _ in $(seq 50); do [ -S /dev/log ] && break; sleep 0.1; done
    [ -S /dev/log ] || { echo "the private system log did not start" >&2; exit 1; }

    ip link set lo up
    ip netns add modem
    ip link add ccmni0 type veth peer name modem0 netns modem
    ip -n modem link set lo up
    ip -n modem link set modem0 up
    ip -n modem route add default dev modem0
    ip link set ccmni0 up

    cd "$repo"
    status=0
    bash tools/demo/walkthrough.sh "$@" || status=$?
    kill %1 2>/dev/null || true
    exit $status
fi

scratch=$1 repo=$2
root=$scratch/root

# dst mirrors src: a symlink is copied, a directory or file bind-mounted,
# read-only where the kernel lets a user namespace make it so.
mirror() {
    local src=$1 dst=$2
    if [ -L "$src" ]; then
        ln -s "$(readlink "$src")" "$dst"
    elif [ -d "$src" ]; then
        mkdir -p "$dst"
        mount --rbind "$src" "$dst" 2>/dev/null || return 0
        mount -o remount,bind,ro "$dst" 2>/dev/null || true
    elif [ -e "$src" ]; then
        touch "$dst"
        mount --bind "$src" "$dst" 2>/dev/null || return 0
        mount -o remount,bind,ro "$dst" 2>/dev/null || true
    fi
}

# ---- the root file system ------------------------------------------------
mkdir "$root"
mount -t tmpfs -o mode=755 nkw_pal_demo_root "$root"
for entry in /* /.[!.]*; do
    name=${entry#/}
    case $name in
    dev | proc | sys | run | data | etc | '.[!.]*') ;;
    *) mirror "$entry" "$root/$name" ;;
    esac
done
# /etc: the host's files through symlinks into a read-only bind, except the
# resolver file, which is ours (a dangling or missing host file is no matter).
mirror /etc "$root/.host-etc"
mkdir "$root/etc"
for entry in /etc/* /etc/.[!.]*; do
    [ -e "$entry" ] || [ -L "$entry" ] || continue
    [ "$entry" = /etc/resolv.conf ] || ln -s "/.host-etc/${entry#/etc/}" "$root/$entry"
done
printf '# the private module'"'"'s resolver file: no call yet\n' >"$root/etc/resolv.conf"
mkdir -m 755 "$root/data" "$root/run" "$root/dev" "$root/proc" "$root/sys"
mount -t tmpfs -o mode=755 nkw_pal_demo_run "$root/run"
# Fresh /proc and /sys show this PID and network namespace (the interface
# counters the library reads are under /sys); the host's where refused.
# Read-only: nothing here writes them, and as the host's root a user
# namespace's root could otherwise change the host's settings through them.
mount -t proc -o ro proc "$root/proc" 2>/dev/null || mirror /proc "$root/proc"
mount -t sysfs -o ro sysfs "$root/sys" 2>/dev/null || mirror /sys "$root/sys"

# A /dev of our own: the few devices the programs need, fresh shared memory
# for named semaphores, and room for our own /dev/log.
mount -t tmpfs -o mode=755 nkw_pal_demo_dev "$root/dev"
for node in null zero full random urandom tty; do
    [ -e "/dev/$node" ] || continue
    touch "$root/dev/$node"
    mount --bind "/dev/$node" "$root/dev/$node"
done
mkdir -m 1777 "$root/dev/shm"
mount -t tmpfs -o mode=1777 nkw_pal_demo_shm "$root/dev/shm"
ln -s /proc/self/fd "$root/dev/fd"

# The one host directory written to: the scratch directory (not what it holds
# by then: the bind does not take the root mounted inside it). Last, so that
# no mount above hides it wherever TMPDIR put it.
mkdir -p "$root$scratch"
mount --bind "$scratch" "$root$scratch"

exec chroot "$root" /bin/bash "$repo/tools/demo/module.sh" --inside "$@"
