# Sourced by tools/abi-baseline.sh and tools/abi-check.sh: where the baseline
# lives, which build of the library it describes, and how it is written.
source tools/deps.sh
need_packages abigail-tools

# Both may be pointed elsewhere (absolute paths), as the gate's own test does.
ABI_BASELINE=${NKW_PAL_ABI_BASELINE:-abi/libnkw_pal.abi}
ABI_HEADERS=${NKW_PAL_ABI_HEADERS:-include}
# The production library of a Debug build (tools/test.sh makes one in build/):
# its debug information carries the layouts of the records callers share.
abi_library() {
    local build=$1 lib="$1/src/libnkw_pal.so"
    # grep reads all of it: with pipefail an early exit would fail readelf.
    if [ ! -f "$lib" ] || ! readelf -S "$lib" | grep -c '\.debug_info' >/dev/null; then
        echo "abi: $lib is missing or has no debug information; build $build with -DCMAKE_BUILD_TYPE=Debug" >&2
        return 1
    fi
    echo "$lib"
}
# Only what the public headers declare; no paths, so any checkout compares.
ABIDW_OPTIONS=(--headers-dir "$ABI_HEADERS" --drop-private-types --no-corpus-path --no-comp-dir-path
    --short-locs --no-elf-needed)
