#!/usr/bin/env bash
# Builds the library and the example daemon, runs the daemon on the simulated
# modem and shows its system-log lines step by step, read with logread as on
# the module.
#
# The daemon runs inside private user, mount, IPC, PID and network namespaces
# with a system log of its own (busybox syslogd on a private /dev/log) and a
# private GNSS adaptor socket, so the demo works for an ordinary user, never
# meets or disturbs a system log daemon of the host, and leaves nothing
# behind: the namespaces, the log and every process in them end with the run.
set -euo pipefail
cd "$(dirname "$0")/.."

# ---- inside the namespaces ------------------------------------------------
if [ "${1:-}" = "--in-namespaces" ]; then
    scratch=$2 build=$3
    # A /dev of our own: the few devices a daemon needs, fresh shared memory
    # for its named semaphores, and room for our own /dev/log.
    mkdir "$scratch/host-dev"
    mount --rbind /dev "$scratch/host-dev"
    mount -t tmpfs -o mode=755 nkw_pal_demo_dev /dev
    for node in null zero full random urandom; do
        touch "/dev/$node"
        mount --bind "$scratch/host-dev/$node" "/dev/$node"
    done
    mkdir -m 1777 /dev/shm
    mount -t tmpfs -o mode=1777 nkw_pal_demo_shm /dev/shm
    ln -s /proc/self/fd /dev/fd

    # The in-memory log lives in this IPC namespace; the file copy in scratch.
    busybox syslogd -n -C256 -O "$scratch/messages" &
    for _ in $(seq 50); do [ -S /dev/log ] && break; sleep 0.1; done

    "$build/examples/pal_demo" >"$scratch/steps.txt"
    # Wait until syslogd has taken every line.
    seen=-1
    for _ in $(seq 50); do
        now=$(busybox logread | grep -c 'pal_demo' || true)
        [ "$now" = "$seen" ] && break
        seen=$now
        sleep 0.1
    done

    busybox logread | grep 'pal_demo' >"$scratch/lines.txt" || true
    if ! grep -q 'step [0-9]' "$scratch/lines.txt"; then
        echo "the daemon's lines did not reach the system log" >&2
        exit 1
    fi
    echo "== the daemon's lines in the system log (busybox logread), step by step"
    awk -v steps="$scratch/steps.txt" '
        BEGIN {
            while ((getline line < steps) > 0) {
                if (line ~ /^step [0-9]+: /) { split(line, f, /[ :]/); n = f[2]; text[n] = "" }
                else if (n != "" && line != "") text[n] = text[n] line "\n"
            }
        }
        /\[    DEMO\] \[step:[0-9]+\]-step [0-9]+: / {
            match($0, /-step [0-9]+: .*/)
            marker = substr($0, RSTART + 1, RLENGTH - 1)
            sub(/ +$/, "", marker)
            split(marker, f, /[ :]/)
            printf "\n-- %s\n%s\n", marker, text[f[2]]
        }
        { print }' "$scratch/lines.txt"
    kill %1 2>/dev/null || true
    exit 0
fi

# ---- on the host --------------------------------------------------------------
source tools/deps.sh
need_packages "${BUILD_PACKAGES[@]}" busybox util-linux

build=${BUILD_DIR:-build-demo}
echo "== building the library and the example daemon into $build"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNKW_PAL_BUILD_TESTS=OFF \
    -DNKW_PAL_BUILD_TOOLS=OFF >/dev/null
cmake --build "$build" | grep -E 'stripped size|error|warning' || true
[ -x "$build/examples/pal_demo" ] || { echo "the build failed"; exit 1; }

namespaces=(unshare --user --map-root-user --mount --ipc --pid --net --fork --kill-child)
if ! "${namespaces[@]}" true 2>/dev/null; then
    echo "this demo runs in private user namespaces, which this host refuses" >&2
    echo "(enable them with: sysctl kernel.unprivileged_userns_clone=1)" >&2
    exit 1
fi

scratch=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_demo.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
echo "== running examples/pal_demo on the simulated modem, with a system log of its own"
"${namespaces[@]}" bash "$0" --in-namespaces "$scratch" "$(realpath "$build")"
