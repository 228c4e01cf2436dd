#!/usr/bin/env bash
# tools/check-elf.sh must refuse each missing protection on its own: builds a
# small library and program with one protection left out at a time, lays them
# out as a build folder, and expects the check's verdict and reason.
# Usage: check_elf_test.sh <C compiler> <strip> <repository root>
set -uo pipefail
cc=$1
strip=$2
repo=$3
work=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_check_elf.XXXXXX")
trap 'rm -rf "$work"' EXIT

cat >"$work/fixture.c" <<'C'
#include <stdio.h>
#include <string.h>
int fixture(const char *text, int n) {
    char line[64];
    snprintf(line, sizeof line, "%s-%d", text, n);
    return (int)strlen(line);
}
int main(int argc, char **argv) { return fixture(argv[0], argc); }
C

hardened=(-O2 -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
    -Wformat -Werror=format-security -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
# name | flags added after the hardened set | extra libraries | budget | expected reason ('' = passes)
cases=(
    "hardened||||"
    "no canary|-fno-stack-protector|||no stack protector"
    "no fortify|-U_FORTIFY_SOURCE|||no fortified C library call"
    "lazy binding|-Wl,-z,lazy|||lazy binding"
    "no RELRO|-Wl,-z,norelro -Wl,-z,lazy|||no RELRO segment"
    "executable stack|-Wl,-z,execstack|||executable stack"
    "C++ runtime|-Wl,--no-as-needed|-lstdc++||needs libstdc++"
    "over budget||||over the budget"
    "no format-security|||format|compiled without -Werror=format-security"
)

failures=0
for entry in "${cases[@]}"; do
    IFS='|' read -r name extra libs variant reason <<<"$entry"
    build="$work/build-${name// /_}"
    mkdir -p "$build/src" "$build/examples"
    # shellcheck disable=SC2086
    "$cc" "${hardened[@]}" $extra -shared -fPIC "$work/fixture.c" -o "$build/src/libnkw_pal.so" $libs &&
        "$cc" "${hardened[@]}" $extra "$work/fixture.c" -o "$build/examples/pal_demo" $libs ||
        { echo "FAIL [$name]: fixture did not build"; failures=$((failures + 1)); continue; }
    "$strip" -o "$build/src/libnkw_pal.stripped.so" "$build/src/libnkw_pal.so"
    flags="-Werror=format-security"
    [ "$variant" = format ] && flags=""
    printf '[\n{\n  "command": "cc %s -c %s/src/a.c",\n  "file": "%s/src/a.c"\n},\n{\n  "command": "cc %s -c %s/examples/b.c",\n  "file": "%s/examples/b.c"\n}\n]\n' \
        "$flags" "$repo" "$repo" "$flags" "$repo" "$repo" >"$build/compile_commands.json"
    budget=256000
    [ "$name" = "over budget" ] && budget=1000
    output=$(NKW_PAL_SIZE_BUDGET=$budget bash "$repo/tools/check-elf.sh" "$build" 2>&1)
    status=$?
    if [ -z "$reason" ]; then
        [ "$status" -eq 0 ] || { echo "FAIL [$name]: refused: $output"; failures=$((failures + 1)); }
    elif [ "$status" -eq 0 ] || ! grep -qF "$reason" <<<"$output"; then
        echo "FAIL [$name]: expected a refusal with '$reason', got status $status: $output"
        failures=$((failures + 1))
    fi
done
[ "$failures" -eq 0 ] && echo "check-elf: ${#cases[@]} cases ok"
exit $((failures > 0))
