#!/usr/bin/env bash
# Builds every libFuzzer target with clang under ASan+UBSan and runs each for
# a short smoke (FUZZ_SECONDS, default 20) from its seed corpus. Any crash,
# leak, hang or sanitizer report fails the run. FUZZ_BUILD_DIR may name a
# clang address;undefined build made with NKW_PAL_BUILD_FUZZ=ON (CI's
# sanitizer build), which is then used as it is.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-20}
build=${FUZZ_BUILD_DIR:-build-fuzz}

if [ ! -f "$build/CMakeCache.txt" ]; then
    CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DNKW_PAL_BUILD_FUZZ=ON -DNKW_PAL_BUILD_TESTS=OFF -DNKW_PAL_BUILD_EXAMPLES=OFF \
        -DNKW_PAL_BUILD_TOOLS=OFF "-DNKW_PAL_SANITIZE=address;undefined" >/dev/null
fi
grep -q '^NKW_PAL_BUILD_FUZZ:BOOL=ON' "$build/CMakeCache.txt" ||
    { echo "$build is not a fuzz build (NKW_PAL_BUILD_FUZZ=ON)"; exit 1; }
cmake --build "$build" >/dev/null

# The library logs through syslog and needs a sandbox root for any host path.
root=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_fuzz.XXXXXX")
trap 'rm -rf "$root"' EXIT
mkdir -p "$root/bin"
export NKW_PAL_SANDBOX_ROOT="$root" PATH="$root/bin:$PATH"

status=0
for target in "$build"/fuzz/fuzz_*; do
    [ -x "$target" ] || continue
    name=${target##*/fuzz_}
    corpus="fuzz/corpus/$name"
    work="$root/corpus_$name"
    mkdir -p "$work"
    [ -d "$corpus" ] && cp -r "$corpus"/. "$work"/
    echo "fuzz smoke: $name (${seconds}s)"
    if ! "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 "$work" >"$root/$name.log" 2>&1; then
        tail -40 "$root/$name.log"
        status=1
    else
        grep -E '^stat::number_of_executed_units' "$root/$name.log" || true
    fi
done
exit $status
