#!/bin/sh
# Stands in for a host command inside the test sandbox: records the call and
# answers with the status the test asked for (NKW_FAKE_STATUS_<name>, default 0)
# and the output it left in $NKW_PAL_SANDBOX_ROOT/fake_output/<name>.
name=$(basename "$0")
printf '%s' "$name" >> "$NKW_PAL_SANDBOX_ROOT/commands.log"
for arg in "$@"; do printf ' %s' "$arg" >> "$NKW_PAL_SANDBOX_ROOT/commands.log"; done
printf '\n' >> "$NKW_PAL_SANDBOX_ROOT/commands.log"
if [ -f "$NKW_PAL_SANDBOX_ROOT/fake_output/$name" ]; then
    cat "$NKW_PAL_SANDBOX_ROOT/fake_output/$name"
fi
eval "status=\${NKW_FAKE_STATUS_$name:-0}"
exit "$status"
