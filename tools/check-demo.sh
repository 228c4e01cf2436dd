#!/usr/bin/env bash
# CI check of the demo: tools/demo.sh must pass as root and as an ordinary
# user, show what each step is there to show, and leave the host as it found
# it: no log daemon, socket, shared memory, semaphore, interface, route,
# network namespace or file of its own behind (its build directory aside).
# The root run builds (or takes DEMO_BUILD_DIR, e.g. the tests' build); the
# user's run takes that build, installed into the user's copy of the tree, so
# the demo is built once at most.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "check-demo.sh runs as root (it creates a user)"; exit 1; }

user=${DEMO_USER:-nkwdemo}
build=${DEMO_BUILD_DIR:-build-demo}
copy=$(mktemp -d /tmp/nkw_pal_demo_user.XXXXXX)
trap 'rm -rf "$copy"' EXIT

host_state() {
    {
        echo "# processes"
        ps -eo comm= | grep -E 'syslogd|pal_demo|logread|nkwctl|sim-inject' | sort || true
        echo "# sockets and device nodes"
        ls -la /dev/log 2>&1 | sed 's/ .*(/ (/' || true
        echo "# shared memory, semaphores, queues"
        ls /dev/shm /dev/mqueue 2>/dev/null | sort || true
        ipcs -m | awk 'NR > 3 && $1 != "" { print $1, $3 }' | sort || true
        echo "# temporary files and logs"
        # (compiler temporaries of other builds on this machine aside)
        ls -a /tmp /var/tmp 2>/dev/null | grep -v -e "^$(basename "$copy")$" -e "^cc[[:alnum:]]\{6\}\." |
            sort || true
        ls -la /var/log/messages 2>&1 | sed 's/^.* \/var/\/var/' || true
        ls -la /data 2>&1 || true
        echo "# interfaces, routes, network namespaces, resolver file"
        ip -o link | sed 's/^[0-9]*: //' | sort || true
        ip route || true
        ip -6 route || true
        ip netns list || true
        sha256sum /etc/resolv.conf || true
        echo "# listening sockets (path or abstract name)"
        ss -xlnH | awk '{ print $5 }' | sort || true
        ss -tulnH | awk '{ print $1, $5 }' | sort || true
    } 2>&1
}

before=$(host_state)

# What each step of the walkthrough is there to show.
expected=(
    'sim\.imsi +[0-9]{15}'                    # SIM identity, read from the scenario
    '"imsi": "\*+"'                            # hidden for a bug report
    'net\.operator +[^ ]'                      # registration
    'at\.response +\+CSQ: '                    # an AT answer
    '^data\.call_id : [0-9]+$'                 # the call, as -K prints it
    'default dev ccmni0'                       # the route the library set
    'ccmni0.* mtu 1340 '                       # its MTU
    '^nameserver [0-9]'                        # the resolver file it wrote
    '1 packets received'                       # a packet along that route
    'data\.ccmni0\.rx_bytes +[1-9]'            # the interface's counters
    'sms\.text +[^ ]'                          # an SMS
    'nv\.2\.text +written by the walkthrough'  # an NV item read back
    '^sms_new index='                          # injected events, as monitor prints them
    '^register_state '
    '^hotplug plugged=1'
    '^data connect: call [0-9]+ released'      # the disconnect
    'user\.[a-z]+ nkwctl(\[[0-9]+\])?: -\['      # the library's lines in logread
)
check_output() {
    local missing=0
    for pattern in "${expected[@]}"; do
        grep -qE -- "$pattern" "$1" || { echo "the demo's output lacks /$pattern/"; missing=1; }
    done
    return $missing
}

run=root
echo "=== demo as root"
DEMO_PAUSE=0 DEMO_BUILD_DIR=${DEMO_BUILD_DIR:-} bash tools/demo.sh | tee "$copy/$run.out"
check_output "$copy/$run.out"

run=user
echo "=== demo as the ordinary user $user"
id "$user" >/dev/null 2>&1 || useradd --create-home --shell /bin/bash "$user"
# A copy of the tree the user owns: the checkout itself may not be readable.
git ls-files -z | tar --null -T - -cf - | tar -xf - -C "$copy"
cmake --install "$build" --prefix "$copy/prefix" >/dev/null
chown -R "$user:" "$copy"
runuser -u "$user" -- env -i HOME="$(getent passwd "$user" | cut -d: -f6)" PATH="$PATH" \
    DEMO_BUILD_DIR="$copy/prefix" bash "$copy/tools/demo.sh" | tee "$copy/$run.out"
check_output "$copy/$run.out"

after=$(host_state)
if [ "$before" != "$after" ]; then
    echo "the demo left something behind:"
    diff <(echo "$before") <(echo "$after") || true
    exit 1
fi
echo "demo check: passed as root and as $user; the host is as it was"
