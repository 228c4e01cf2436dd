#!/usr/bin/env bash
# Builds the library and the example daemon, runs the daemon on the simulated
# modem and shows the daemon's lines as they reached the system log, read with
# logread as on the module. Without a system log daemon on this host, a
# busybox syslogd with an in-memory log is started for the run.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
need_packages "${BUILD_PACKAGES[@]}" busybox

build=${BUILD_DIR:-build-demo}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNKW_PAL_BUILD_TESTS=OFF \
    >/dev/null
cmake --build "$build"

started=""
cleanup() { [ -n "$started" ] && kill "$started" 2>/dev/null || true; }
trap cleanup EXIT

if busybox logread >/dev/null 2>&1; then
    reader=(busybox logread)
elif [ -S /dev/log ] && command -v journalctl >/dev/null && pgrep -x systemd-journal >/dev/null; then
    reader=(journalctl -o short --no-pager -t pal_demo)
else
    busybox syslogd -n -C256 &
    started=$!
    for _ in $(seq 50); do busybox logread >/dev/null 2>&1 && break; sleep 0.1; done
    reader=(busybox logread)
fi

echo "== running the example daemon"
"$build/examples/pal_demo"
sleep 0.3
echo "== its lines in the system log (${reader[*]})"
"${reader[@]}" | grep 'pal_demo'
