#!/usr/bin/env bash
# Rewrites the committed ABI baseline from a Debug build of the production
# library. Run it when the exported interface changes on purpose (new
# exports after a merge, or a deliberate break) and commit the baseline with
# the change, saying why in the message.
# Usage: tools/abi-baseline.sh [BUILD_DIR]   (default build)
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/abi-common.sh
build=${1:-build}
if [ ! -f "$build/build.ninja" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug >/dev/null
fi
cmake --build "$build" --target nkw_pal
lib=$(abi_library "$build")
abidw "${ABIDW_OPTIONS[@]}" --out-file "$ABI_BASELINE" "$lib"
echo "abi: baseline $ABI_BASELINE written from $lib ($(grep -c '<elf-symbol ' "$ABI_BASELINE") symbols)"
