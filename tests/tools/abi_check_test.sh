#!/usr/bin/env bash
# tools/abi-check.sh against a baseline written the way tools/abi-baseline.sh
# writes it: additions pass, and every change a linked caller would notice is
# refused, including a member whose standard typedef changes at equal size.
# Usage: abi_check_test.sh <C compiler> <repository root>
set -uo pipefail
cc=$1
repo=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_abi_check.XXXXXX")
trap 'rm -rf "$work"' EXIT

# One small library: a shared record, an exported table and an opaque handle
# whose layout is the library's own.
write_fixture() {  # <folder> <record members> <table size> <extra declarations> <handle members>
    mkdir -p "$1/include" "$1/build/src"
    cat >"$1/include/fixture.h" <<H
#include <stdint.h>
typedef enum { KIND_A, KIND_B $4 } kind;
typedef struct rec { $2 } rec;
typedef struct handle handle;
int decode(const uint8_t *pdu, rec *out, kind k);
int handle_open(handle **out);
extern const int32_t table[$3];
H
    cat >"$1/fixture.c" <<C
#include "include/fixture.h"
#include <stdlib.h>
struct handle { $5 };
int decode(const uint8_t *pdu, rec *out, kind k) { (void)pdu; (void)out; return (int)k; }
int handle_open(handle **out) { *out = calloc(1, sizeof **out); return *out == 0; }
const int32_t table[$3] = {0};
C
}

base_rec='uint32_t type; uint32_t flags; char address[18];'
write_fixture "$work/base" "$base_rec" 4 "" "int fd;"
"$cc" -g -shared -fPIC "$work/base/fixture.c" -o "$work/base/build/src/libnkw_pal.so" || exit 1
(
    cd "$repo" && NKW_PAL_ABI_HEADERS="$work/base/include" source tools/abi-common.sh &&
        abidw "${ABIDW_OPTIONS[@]}" --out-file "$work/baseline.abi" "$work/base/build/src/libnkw_pal.so"
) || exit 1

# name | record members | table size | extra enumerators | handle members | extra source | expected
cases=(
    "unchanged|$base_rec|4||int fd;||pass"
    "new export and enumerator|$base_rec|4|, KIND_C|int fd;|int added(void) { return 1; }|pass"
    "own handle grows|$base_rec|4||int fd; char name[64];||pass"
    "member typedef narrows|uint32_t type; uint16_t flags; uint16_t spare; char address[18];|4||int fd;||fail"
    "record grows|$base_rec char extra[4];|4||int fd;||fail"
    "exported table grows|$base_rec|5||int fd;||fail"
    "export removed|$base_rec|4||int fd;|REMOVE|fail"
)
failures=0
for entry in "${cases[@]}"; do
    IFS='|' read -r name members size enumerators handle extra expected <<<"$entry"
    dir="$work/${name// /_}"
    write_fixture "$dir" "$members" "$size" "$enumerators" "$handle"
    if [ "$extra" = REMOVE ]; then
        sed -i '/^int handle_open/d' "$dir/fixture.c" "$dir/include/fixture.h"
    elif [ -n "$extra" ]; then
        echo "$extra" >>"$dir/fixture.c"
    fi
    "$cc" -g -shared -fPIC "$dir/fixture.c" -o "$dir/build/src/libnkw_pal.so" || exit 1
    output=$(NKW_PAL_ABI_BASELINE="$work/baseline.abi" NKW_PAL_ABI_HEADERS="$dir/include" \
        bash "$repo/tools/abi-check.sh" "$dir/build" 2>&1)
    status=$?
    if { [ "$expected" = pass ] && [ "$status" -ne 0 ]; } ||
        { [ "$expected" = fail ] && { [ "$status" -eq 0 ] || ! grep -q "incompatible change" <<<"$output"; }; }; then
        echo "FAIL [$name]: expected $expected, status $status: $output"
        failures=$((failures + 1))
    fi
done
[ "$failures" -eq 0 ] && echo "abi-check: ${#cases[@]} cases ok"
exit $((failures > 0))
