#!/usr/bin/env bash
# Checks what the module's firmware relies on in a (cross) build, from the ELF
# files themselves:
#  - the stripped libnkw_pal.so stays within the flash budget;
#  - it needs the C library (libc, libm, the dynamic loader) and the modem IPC
#    library only: nothing of the C++ runtime (libstdc++, libgcc_s);
#  - the library and the programs shipped beside it (nkwctl, and pal_demo
#    while there is no nkwctl) carry the hardening: stack canaries, fortified
#    C library calls, full RELRO with immediate binding, no executable stack;
#    and every source of theirs was compiled with format-security errors.
# Usage: tools/check-elf.sh [BUILD_DIR]   (default build-aarch64, a Release build)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-aarch64}
budget=${NKW_PAL_SIZE_BUDGET:-256000}  # 250 KiB
lib="$build/src/libnkw_pal.so"
stripped="$build/src/libnkw_pal.stripped.so"
failures=0
fail() { echo "check-elf: FAIL: $*" >&2; failures=$((failures + 1)); }

[ -f "$lib" ] && [ -f "$stripped" ] || { echo "check-elf: no library in $build" >&2; exit 1; }

size=$(stat -c %s "$stripped")
machine=$(readelf -h "$lib" | sed -n 's/^ *Machine: *//p')
echo "check-elf: stripped libnkw_pal.so: $size bytes ($((size / 1024)) KiB) for $machine; budget $budget bytes"
[ "$size" -le "$budget" ] || fail "stripped libnkw_pal.so is $size bytes, over the budget of $budget"

allowed_needed='^(libc\.so\.[0-9]+|libm\.so\.[0-9]+|ld-linux[-a-z0-9_.]*\.so\.[0-9]+|libmipc_msg\.so(\.[0-9]+)*)$'
needed=$(readelf -dW "$lib" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
echo "check-elf: NEEDED: $(echo $needed)"
for entry in $needed; do
    [[ $entry =~ $allowed_needed ]] || fail "libnkw_pal.so needs $entry (only the C library and libmipc_msg)"
done

# Whether a source under one of the folders was compiled without
# -Werror=format-security, from the compilation database.
compile_commands="$build/compile_commands.json"
format_security_missing() {  # <source folder>...
    local dir
    for dir in "$@"; do
        awk -v prefix="\"$PWD/$dir/" '
            /"command":/ { command = $0 }
            /"file":/ && index($0, prefix) && index(command, "-Werror=format-security") == 0 { bad = 1 }
            END { exit bad ? 0 : 1 }' "$compile_commands" && return 0
    done
    return 1
}

check_hardening() {  # <ELF file> <source folder>...
    local file=$1 name before=$failures
    name=${file##*/}
    shift
    local headers dynamic symbols
    headers=$(readelf -lW "$file")
    dynamic=$(readelf -dW "$file")
    symbols=$(readelf --dyn-syms -W "$file")
    grep -q 'GNU_RELRO' <<<"$headers" || fail "$name: no RELRO segment"
    grep -Eq '\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW' <<<"$dynamic" || fail "$name: lazy binding (no BIND_NOW)"
    local stack
    stack=$(grep 'GNU_STACK' <<<"$headers" || true)
    [ -n "$stack" ] || fail "$name: no GNU_STACK header (stack executable by default)"
    grep -q 'RWE' <<<"$stack" && fail "$name: executable stack"
    grep -q ' __stack_chk_fail' <<<"$symbols" || fail "$name: no stack protector (__stack_chk_fail unused)"
    grep -Eq ' __[a-z_]+_chk(@| |$)' <<<"$(grep -v __stack_chk <<<"$symbols")" ||
        fail "$name: no fortified C library call (_FORTIFY_SOURCE missing)"
    if format_security_missing "$@"; then
        fail "$name: a source in $* was compiled without -Werror=format-security"
    fi
    [ "$failures" -eq "$before" ] || return 0
    echo "check-elf: $name: canary, fortify, RELRO, BIND_NOW, no exec stack, format-security: ok"
}

[ -f "$compile_commands" ] || { echo "check-elf: no $compile_commands" >&2; exit 1; }
check_hardening "$lib" src
programs=$(find "$build" -type f \( -name nkwctl -o -name pal_demo \) -perm -u+x | sort)
[ -n "$programs" ] || fail "no nkwctl or pal_demo in $build to check"
for program in $programs; do
    case ${program##*/} in
    nkwctl) check_hardening "$program" tools/nkwctl src/nkwctl nkwctl ;;
    *) check_hardening "$program" examples ;;
    esac
done
[ "$failures" -eq 0 ] || { echo "check-elf: $failures failure(s)" >&2; exit 1; }
echo "check-elf: ok"
