#!/usr/bin/env bash
# The walkthrough: builds the library, the simulated modem, nkwctl and
# sim-inject, then runs nkwctl on a shipped scenario inside a private module
# of its own (tools/demo/module.sh) and walks through device and SIM
# information, registration, a data call that really configures an
# interface, an SMS, an NV item, live events and the library's log lines
# (tools/demo/walkthrough.sh).
#
# It works for an ordinary user and leaves nothing behind: everything runs in
# private user, mount, IPC, PID, UTS and network namespaces that end with the
# run, together with their system log, interfaces, routes and files.
#
#   DEMO_BUILD_DIR  a build tree or an install prefix to run instead of
#                   building into build-demo (built there only if the
#                   programs are missing)
#   DEMO_SCENARIO   the scenario file (default sim/scenarios/home_lte.json);
#                   commands that fail there are listed at the end
#   DEMO_PAUSE=0    no pauses between steps (there are none without a terminal)
set -euo pipefail
cd "$(dirname "$0")/.."

source tools/deps.sh
need_packages "${BUILD_PACKAGES[@]}" libcli11-dev busybox util-linux iproute2 net-tools

# The programs of a build tree, or of an install prefix.
find_programs() {
    if [ -x "$1/bin/nkwctl" ]; then
        nkwctl=$1/bin/nkwctl inject=$1/bin/sim-inject
    else
        nkwctl=$1/nkwctl/nkwctl inject=$1/sim/sim-inject
    fi
    [ -x "$nkwctl" ] && [ -x "$inject" ]
}

build=${DEMO_BUILD_DIR:-build-demo}
if [ -z "${DEMO_BUILD_DIR:-}" ] || ! find_programs "$build"; then
    echo "== building the library, the simulated modem, nkwctl and sim-inject into $build"
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNKW_PAL_BUILD_TESTS=OFF \
        -DNKW_PAL_BUILD_EXAMPLES=OFF -DNKW_PAL_BUILD_TOOLS=ON >/dev/null
    if ! cmake --build "$build" --target nkwctl sim-inject >"$build/demo-build.log" 2>&1; then
        tail -n 40 "$build/demo-build.log"
        echo "the build failed (whole log: $build/demo-build.log)" >&2
        exit 1
    fi
    grep 'stripped size' "$build/demo-build.log" || true
fi
find_programs "$build" || { echo "the build failed: no nkwctl or sim-inject in $build" >&2; exit 1; }

scenario=$(realpath "${DEMO_SCENARIO:-sim/scenarios/home_lte.json}")
namespaces=(unshare --user --map-root-user --mount --ipc --pid --uts --net --fork --kill-child)
if ! "${namespaces[@]}" true 2>/dev/null; then
    echo "this demo runs in private user namespaces, which this host refuses" >&2
    echo "(enable them with: sysctl kernel.unprivileged_userns_clone=1)" >&2
    exit 1
fi

scratch=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_demo.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
pause=${DEMO_PAUSE:-1}
[ -t 0 ] && [ -t 1 ] || pause=0
"${namespaces[@]}" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin TERM="${TERM:-dumb}" \
    DEMO_PAUSE="$pause" bash tools/demo/module.sh "$scratch" "$PWD" "$(realpath "$nkwctl")" \
    "$(realpath "$inject")" "$scenario"
