#!/usr/bin/env bash
# CI check of the demo: tools/demo.sh must pass as root and as an ordinary
# user, and leave the host as it found it: no log daemon, socket, shared
# memory, semaphore or file of its own behind (its build directory aside).
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "check-demo.sh runs as root (it creates a user)"; exit 1; }

user=${DEMO_USER:-nkwdemo}
copy=$(mktemp -d /tmp/nkw_pal_demo_user.XXXXXX)
trap 'rm -rf "$copy"' EXIT

host_state() {
    {
        echo "# processes"
        ps -eo comm= | grep -E 'syslogd|pal_demo|logread' | sort || true
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
    } 2>&1
}

before=$(host_state)

echo "=== demo as root"
bash tools/demo.sh

echo "=== demo as the ordinary user $user"
id "$user" >/dev/null 2>&1 || useradd --create-home --shell /bin/bash "$user"
# A copy of the tree the user owns: the checkout itself may not be readable.
git ls-files -z | tar --null -T - -cf - | tar -xf - -C "$copy"
chown -R "$user:" "$copy"
runuser -u "$user" -- env -i HOME="$(getent passwd "$user" | cut -d: -f6)" PATH="$PATH" \
    bash "$copy/tools/demo.sh"

after=$(host_state)
if [ "$before" != "$after" ]; then
    echo "the demo left something behind:"
    diff <(echo "$before") <(echo "$after") || true
    exit 1
fi
echo "demo check: passed as root and as $user; the host is as it was"
