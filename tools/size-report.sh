#!/usr/bin/env bash
# Splits the stripped size of libnkw_pal.so by subsystem, from the link map the
# build writes beside it (src/libnkw_pal.link.map). Prints a Markdown table:
# the bytes each subsystem's objects put into the file, what the C runtime
# start-up and libgcc add, the tables the linker makes (dynamic symbols and
# strings, relocations, PLT and GOT), and the rest (headers, padding).
# Usage: tools/size-report.sh [BUILD_DIR]   (default build-aarch64)
set -euo pipefail
build=${1:-build-aarch64}
map="$build/src/libnkw_pal.link.map"
stripped="$build/src/libnkw_pal.stripped.so"
[ -f "$map" ] && [ -f "$stripped" ] || { echo "no link map or stripped library in $build" >&2; exit 1; }
total=$(stat -c %s "$stripped")

awk -v total="$total" '
function group(section, file) {
    if (section ~ /^\.(hash|gnu\.hash|dynsym|dynstr|gnu\.version|rela|plt|got|dynamic|interp|eh_frame_hdr)/ ||
        file == "linker stubs") {
        return "(linker tables: dynamic symbols, relocations, PLT, GOT)"
    }
    if (match(file, /nkw_pal_objects\.dir\/[^\/]+\//)) {
        return substr(file, RSTART + 20, RLENGTH - 21)
    }
    if (file ~ /nkw_pal\.dir\/host\//) return "host"
    return "(C runtime start-up, libgcc)"
}
function kind(section) {
    if (section ~ /^\.text/) return "text"
    if (section ~ /^\.eh_frame/) return "unwind"
    return "data"
}
function add(section, size, file) {
    # Only what occupies the stripped file: no notes, comments, debug or bss.
    if (out ~ /^\.(comment|debug|note|gnu_debug|bss|tbss)/ || out == "/DISCARD/") return
    size = strtonum_(size)
    if (size == 0) return
    g = group(section, file)
    bytes[g, kind(section)] += size
    sum[g] += size
    groups[g] = 1
    counted += size
}
function strtonum_(hex,    i, c, v) {
    v = 0
    hex = tolower(substr(hex, 3))
    for (i = 1; i <= length(hex); i++) {
        c = index("0123456789abcdef", substr(hex, i, 1)) - 1
        v = v * 16 + c
    }
    return v
}
/^Linker script and memory map/ { inmap = 1; next }
!inmap { next }
/^[^ ]/ { out = $1; pending = ""; next }
/^ [^ ]/ {
    if ($1 == "*fill*") next
    if (NF >= 4 && $2 ~ /^0x/ && $3 ~ /^0x/) { add($1, $3, $4); pending = "" }
    else if (NF == 1) pending = $1
    next
}
/^  +0x/ {
    if (pending != "" && NF >= 3 && $2 ~ /^0x/) add(pending, $2, $3)
    pending = ""
}
END {
    printf "| part | code | data | unwind tables | total bytes |\n|---|--:|--:|--:|--:|\n"
    n = 0
    for (g in groups) names[++n] = g
    for (i = 2; i <= n; i++) {  # by size, largest first
        for (j = i; j > 1 && sum[names[j]] > sum[names[j - 1]]; j--) {
            t = names[j]; names[j] = names[j - 1]; names[j - 1] = t
        }
    }
    for (i = 1; i <= n; i++) {
        g = names[i]
        printf "| %s | %d | %d | %d | %d |\n", g, bytes[g, "text"], bytes[g, "data"], bytes[g, "unwind"], sum[g]
    }
    printf "| (ELF headers, section table, padding) | | | | %d |\n", total - counted
    printf "| **stripped libnkw_pal.so** | | | | **%d** (%.1f KiB) |\n", total, total / 1024
}' "$map"
