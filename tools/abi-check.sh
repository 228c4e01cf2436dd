#!/usr/bin/env bash
# The ABI gate: compares the production library of a Debug build with the
# committed baseline and fails on any change a linked daemon would notice:
# a removed export (abidiff's incompatible-change bit) or a changed signature,
# exported data type or layout of a record the headers share (abidiff reports
# those as changes, not as incompatible ones, so any change is refused once
# additions are set aside). New exports pass.
# Usage: tools/abi-check.sh [BUILD_DIR]   (default build)
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/abi-common.sh
build=${1:-build}
lib=$(abi_library "$build")
report=$(mktemp)
trap 'rm -f "$report"' EXIT

status=0
# No --headers-dir here: it would hide changes of standard typedefs (uint32_t
# becoming uint16_t) inside public records. The baseline keeps internal
# records opaque, so their layouts stay free to change.
abidiff --no-added-syms "$ABI_BASELINE" "$lib" >"$report" 2>&1 || status=$?
readonly ABIDIFF_ERROR=1 ABIDIFF_USAGE_ERROR=2 ABIDIFF_ABI_CHANGE=4 ABIDIFF_ABI_INCOMPATIBLE_CHANGE=8
if (( status & (ABIDIFF_ERROR | ABIDIFF_USAGE_ERROR) )); then
    cat "$report"
    echo "abi: abidiff could not compare $lib with $ABI_BASELINE" >&2
    exit 1
fi
if (( status & (ABIDIFF_ABI_CHANGE | ABIDIFF_ABI_INCOMPATIBLE_CHANGE) )); then
    cat "$report"
    echo "abi: incompatible change to the exported interface of $lib." >&2
    echo "abi: if it is deliberate, run tools/abi-baseline.sh and commit $ABI_BASELINE with the" >&2
    echo "abi: change, giving the reason in the commit message." >&2
    exit 1
fi
added=$(abidiff "$ABI_BASELINE" "$lib" 2>/dev/null | grep 'changes summary' |
    grep -Eo '[0-9]+ Added' | awk '{n += $1} END {print n + 0}' || true)
echo "abi: compatible with $ABI_BASELINE ($added new exports not yet in the baseline)"
