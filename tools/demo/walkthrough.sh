#!/usr/bin/env bash
# The walkthrough's steps, run by tools/demo/module.sh inside the demo's
# private module: nkwctl on a scenario of the simulated modem, one heading
# and one explanation a step, then the library's log lines.
# Usage: walkthrough.sh SCRATCH REPO NKWCTL SIM_INJECT SCENARIO
set -euo pipefail
scratch=$1 nkwctl_program=$3 inject_program=$4
export NKW_PAL_SIM_SCENARIO=$5

# As a reader types them.
nkwctl() { "$nkwctl_program" "$@"; }
sim-inject() { "$inject_program" "$@"; }

step_number=0
# step TITLE EXPLANATION: a heading, a line on what the step shows, and a
# marker in the system log so the log section can say which step wrote what.
step() {
    if [ "$step_number" -gt 0 ] && [ "${DEMO_PAUSE:-0}" = 1 ]; then
        read -r -p "(Enter: next step) " _ || true
    fi
    step_number=$((step_number + 1))
    printf '\n== %d. %s\n' "$step_number" "$1"
    printf '%s\n' "$2" | fold -s -w 80 | sed 's/ *$//'
    busybox logger -t walkthrough "step $step_number: $1"
}

# typed COMMAND...: the command line as one would type it.
typed() {
    local line="" word
    for word in "$@"; do
        case $word in *[!A-Za-z0-9_./:=+@%,-]* | '') word="'$word'" ;; esac
        line+=" $word"
    done
    printf '$%s\n' "$line"
}

# show [--may-fail] COMMAND...: prints the command as typed, its output
# (kept in $scratch/out for what follows), then its standard error; the exit
# status is in $shown. The walkthrough goes on after a failure, so another
# scenario shows all it can, but one without --may-fail fails it at the end.
shown=0
failed=()
show() {
    local may_fail=0
    [ "$1" = --may-fail ] && { may_fail=1; shift; }
    typed "$@"
    shown=0
    "$@" >"$scratch/out" 2>"$scratch/err" || shown=$?
    cat "$scratch/out" "$scratch/err"
    if [ "$shown" -ne 0 ]; then
        echo "(exit status $shown)"
        [ "$may_fail" = 1 ] || failed+=("$*")
    fi
}

# value KEY: the value of a `-K` line of the last output.
value() { sed -n "s/^$1 : //p" "$scratch/out"; }

# waits_for FILE TEXT: waits (up to 10 s) until FILE holds TEXT.
waits_for() {
    for _ in $(seq 100); do
        grep -qF -- "$2" "$1" 2>/dev/null && return 0
        sleep 0.1
    done
    return 1
}

# Waits until FILE (or the system log, without FILE) stops growing.
settle() {
    local seen=-1 now
    for _ in $(seq 30); do
        if [ $# -gt 0 ]; then now=$(wc -l <"$1"); else now=$(busybox logread | wc -l); fi
        [ "$now" = "$seen" ] && return 0
        seen=$now
        sleep 0.1
    done
}

description=$(sed -n 's/^ *"description": "\(.*\)",$/\1/p' "$NKW_PAL_SIM_SCENARIO" | sed 's/\\"/"/g')
cat <<EOF
The walkthrough runs nkwctl, the module's command-line tool, on the simulated
modem, inside a private module of its own (user, mount, network, PID, IPC and
UTS namespaces): its own system log, /etc/resolv.conf and /data, and the
modem's network interface ccmni0, one end of a veth pair whose other end sits
in a namespace "modem" standing for the modem's side.
Scenario: ${NKW_PAL_SIM_SCENARIO#"$PWD/"}${description:+ ($description)}

Each nkwctl command is a process with a modem session and a simulated modem of
its own, set up from the scenario: what one command changes in the modem is
gone for the next, what the library changes on the module (interfaces, routes,
files) stays, as on the module.
EOF

step "Device" \
    "The module's identity, read from the modem (IMEI, model, firmware) and from NV items."
show --may-fail nkwctl device
[ "$shown" -eq 0 ] || echo "(nkwctl exits 1 when any item fails; standard error says which)"

step "SIM" \
    "The status code of both slots (this scenario has a card in slot 0 only), the active slot and its card's identity; then the same as one JSON document for scripts, with personal data hidden for a bug report."
show nkwctl sim status
show nkwctl -J --hide-personal sim status

step "Registration and signal" \
    "Serving network, cell, data class, RSSI and radio state; then an AT command and the modem's answer."
show nkwctl net
show nkwctl at AT+CSQ

step "A data call, for real" \
    "The library asks the modem for a call on APN \"internet\", waits for ccmni0, sets the default route and an MTU of 1340 with the real ip and route, and writes the call's DNS servers into /etc/resolv.conf (the module's own). -K gives stable key : value lines; --hold keeps the call (here in the simulated modem of that process) until the command is interrupted, in step 8."
typed nkwctl -K data connect internet --hold '&'
"$nkwctl_program" -K data connect internet --hold >"$scratch/call" 2>"$scratch/call.err" &
call=$!
if ! waits_for "$scratch/call.err" "holding call"; then
    cat "$scratch/call" "$scratch/call.err"
    echo "the data call did not come up" >&2
    exit 1
fi
cp "$scratch/call" "$scratch/out"
cat "$scratch/call" "$scratch/call.err"
ipv4=$(value data.ipv4)
dns=$(value data.dns.ipv4)
echo "On the module the modem's driver gives ccmni0 the call's address; here the"
echo "script does, and the modem's side answers at the first DNS server's address."
if [ -n "$ipv4" ] && [ "$ipv4" != 0.0.0.0 ]; then
    show ip addr add "$ipv4/32" dev ccmni0
    show ip -n modem addr add "$dns/32" dev modem0
fi
show ip addr show ccmni0
show ip route
show cat /etc/resolv.conf
if [ -n "$ipv4" ] && [ "$ipv4" != 0.0.0.0 ]; then
    echo "A packet along the route the library set, and the interface's counters:"
    show busybox ping -c 1 -W 2 "$dns"
    show nkwctl data traffic ccmni0
fi

step "An SMS" \
    "Message 0 of the scenario's SMS store, read and decoded from its PDU."
show nkwctl sms read 0

step "An NV item, written and read back" \
    "Item 2 is kept by the application processor as a file under /data/quarn/, so it outlives the process that wrote it (here on the module's private /data)."
show nkwctl nv write 2 --text "written by the walkthrough"
show nkwctl nv read 2 --text
show ls -l /data/quarn

step "Live events" \
    "nkwctl monitor runs in the background and prints every indication the library offers; its simulated modem listens on a control socket (NKW_PAL_SIM_CONTROL), where sim-inject pushes events as a real modem would send them."
control=$(mktemp -d "$scratch/control.XXXXXX")
socket=$control/modem.sock
printf '$ socket=%s\n' "$socket"
echo '$ NKW_PAL_SIM_CONTROL=$socket nkwctl monitor --seconds 30 &'
# The program itself, not the function, so that the signal below reaches it;
# --seconds bounds the wait should it not.
NKW_PAL_SIM_CONTROL=$socket "$nkwctl_program" monitor --seconds 30 >"$scratch/monitor" \
    2>"$scratch/monitor.err" &
monitor=$!
# The socket comes with the session, the subscriptions after it: events are
# made to happen once the monitor says it is ready.
if ! waits_for "$scratch/monitor.err" "monitor: ready"; then
    cat "$scratch/monitor" "$scratch/monitor.err"
    echo "the monitor did not start" >&2
    exit 1
fi
cat "$scratch/monitor.err"
inject() {
    printf '$ sim-inject -s "$socket" '"'%s'"'\n' "$1"
    sim-inject -s "$socket" "$1"
}
inject '{"event": "sms", "pdu": "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07"}'
inject '{"event": "registration", "cs_state": "roaming", "ps_state": "roaming"}'
inject '{"event": "sim_removed", "slot": 0}'
inject '{"event": "hotplug", "cause": 12}'
inject '{"event": "mbim_connect_status", "status": 1, "apn": "internet"}'
settle "$scratch/monitor"
kill -INT "$monitor"
wait "$monitor" || { cat "$scratch/monitor"; echo "the monitor failed" >&2; exit 1; }
echo "What the monitor printed, one event a line:"
cat "$scratch/monitor"

step "The disconnect" \
    "Interrupting the nkwctl of step 4 makes it release its call through the library; the library leaves route and resolver file as they are."
echo '$ kill -INT %1'
kill -INT "$call"
released=0
wait "$call" || released=$?
sed '/holding call/d' "$scratch/call.err"
if [ "$released" -ne 0 ]; then
    echo "(exit status $released)"
    failed+=("data connect --hold")
fi
echo "The modem's driver takes ccmni0 down, which takes its routes with it:"
show ip link set ccmni0 down
show ip route
[ -s "$scratch/out" ] || echo "(no route left)"
show cat /etc/resolv.conf

step "The library's log lines, as logread shows them" \
    "Every nkwctl command above wrote to the module's system log; the lines under each step are the ones it wrote. (--hide-personal masks nkwctl's own output; the library's lines carry what they always do.)"
settle
busybox logread | awk '
    / walkthrough: step [0-9]+: / { sub(/.* walkthrough: /, ""); heading = "\n-- " $0; next }
    / nkwctl(\[[0-9]+\])?: / {
        if (heading != "") { print heading; heading = "" }
        print; lines++
    }
    END { if (lines == 0) { print "no line of the library reached the system log"; exit 1 } }'
if [ ${#failed[@]} -gt 0 ]; then
    printf '\nfailed where the walkthrough expects success:\n' >&2
    printf '  %s\n' "${failed[@]}" >&2
    exit 1
fi
