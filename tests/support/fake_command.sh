#!/bin/sh
# Stands in for a host command inside the test sandbox: records the call and
# answers with the output and status the test asked for. The most specific
# answer wins: $NKW_PAL_SANDBOX_ROOT/fake_output/<name>_<arg1>_<arg2> (such
# as ip_link_show), then <name>_<arg1>, then <name>; the status likewise from
# fake_status/, else NKW_FAKE_STATUS_<name>, else 0.
name=$(basename "$0")
printf '%s' "$name" >> "$NKW_PAL_SANDBOX_ROOT/commands.log"
for arg in "$@"; do printf ' %s' "$arg" >> "$NKW_PAL_SANDBOX_ROOT/commands.log"; done
printf '\n' >> "$NKW_PAL_SANDBOX_ROOT/commands.log"
answer() {
    for key in "${name}_${1:-}_${2:-}" "${name}_${1:-}" "$name"; do
        if [ -f "$NKW_PAL_SANDBOX_ROOT/$dir/$key" ]; then
            echo "$NKW_PAL_SANDBOX_ROOT/$dir/$key"
            return
        fi
    done
}
dir=fake_output
output=$(answer "$@")
if [ -n "$output" ]; then
    cat "$output"
fi
dir=fake_status
status_file=$(answer "$@")
if [ -n "$status_file" ]; then
    status=$(cat "$status_file")
else
    eval "status=\${NKW_FAKE_STATUS_$name:-0}"
fi
exit "$status"
