#!/usr/bin/env bash
# Installs the library (shared and static flavours, with the simulated modem)
# into a temporary prefix and builds and runs daemons of other teams against
# it from outside the tree: C with pkg-config, C with pkg-config --static, and
# CMake with find_package (shared and static). Then cross-builds the library
# for aarch64 against a staged vendor-SDK-style install and links a consumer
# against that staging tree, as a firmware build would.
# CROSS=0 skips the aarch64 part. CI hands in builds it has made already:
# INSTALL_BUILD_DIR (a Release build with NKW_PAL_BUILD_STATIC=ON) and
# AARCH64_BUILD_DIR (whose simulated modem library stands for the SDK's).
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
packages=("${BUILD_PACKAGES[@]}" libcli11-dev nlohmann-json3-dev)
[ "${CROSS:-1}" = 1 ] && packages+=(g++-aarch64-linux-gnu file)
need_packages "${packages[@]}"

src=$PWD
work=$(mktemp -d "${TMPDIR:-/tmp}/nkw_pal_install.XXXXXX")
trap 'rm -rf "$work"' EXIT
step() { echo "-- $*"; }

build=${INSTALL_BUILD_DIR:-$work/build}
step "build $build and install it into $work/prefix"
if [ -z "${INSTALL_BUILD_DIR:-}" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DNKW_PAL_BUILD_STATIC=ON \
        -DNKW_PAL_BUILD_TESTS=OFF -DNKW_PAL_BUILD_EXAMPLES=OFF >/dev/null
fi
grep -q '^NKW_PAL_BUILD_STATIC:BOOL=ON' "$build/CMakeCache.txt" ||
    { echo "$build lacks the static flavour (NKW_PAL_BUILD_STATIC=ON)"; exit 1; }
cmake --build "$build" >/dev/null
cmake --install "$build" --prefix "$work/prefix" >/dev/null
prefix=$work/prefix
libdir=$(pkg-config --variable=libdir "$prefix/lib/pkgconfig/nkw_pal.pc" 2>/dev/null ||
    echo "$prefix/lib")
export PKG_CONFIG_PATH=$libdir/pkgconfig

step "nkwctl installed beside the library finds it on its own"
[ "$("$prefix/bin/nkwctl" -K codec bcd 21436587f9)" = "codec.text : 123456789" ]

# The consumer must not find anything of the build tree or the sources.
cp tools/consumer/main.c tools/consumer/CMakeLists.txt "$work/"
cd "$work"

cflags=$(pkg-config --cflags nkw_pal)
case "$cflags" in *..*) echo "pkg-config prints an unresolved path: $cflags"; exit 1 ;; esac

step "C with pkg-config"
gcc -Wall -Werror main.c $(pkg-config --cflags --libs nkw_pal) -o consumer_pc
./consumer_pc

step "C with pkg-config --static (the archive, the modem IPC library shared)"
static_libs=$(pkg-config --static --libs nkw_pal | sed 's/-lnkw_pal\b/-l:libnkw_pal.a/')
gcc -Wall -Werror main.c $(pkg-config --cflags nkw_pal) $static_libs -o consumer_pc_static
if readelf -d consumer_pc_static | grep -q 'libnkw_pal\.so'; then
    echo "the static consumer still needs libnkw_pal.so"; exit 1
fi
./consumer_pc_static

for flavour in OFF ON; do
    step "CMake find_package (static archive: $flavour)"
    cmake -S . -B "cmake_$flavour" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCONSUMER_STATIC=$flavour >/dev/null
    cmake --build "cmake_$flavour" >/dev/null
    "./cmake_$flavour/consumer"
done

[ "${CROSS:-1}" = 1 ] || exit 0

cd "$src"
cross=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64
    -DCMAKE_C_COMPILER=aarch64-linux-gnu-gcc -DCMAKE_CXX_COMPILER=aarch64-linux-gnu-g++)
step "aarch64: a vendor-SDK-style modem IPC library (the simulated one, as the SDK ships it)"
sdk_build=${AARCH64_BUILD_DIR:-$work/sdk-build}
if [ -z "${AARCH64_BUILD_DIR:-}" ]; then
    cmake -S . -B "$sdk_build" -G Ninja "${cross[@]}" -DCMAKE_BUILD_TYPE=Release \
        -DNKW_PAL_BUILD_TESTS=OFF -DNKW_PAL_BUILD_EXAMPLES=OFF >/dev/null
fi
cmake --build "$sdk_build" --target mipc_msg >/dev/null
sdk=$work/sdk
mkdir -p "$sdk/include" "$sdk/lib"
cp modem_ipc/include/mipc_msg.h "$sdk/include/"
cp -P "$sdk_build/sim/"libmipc_msg.so* "$sdk/lib/"
file -L "$sdk/lib/libmipc_msg.so" | grep -q 'ARM aarch64'

step "aarch64: the library against the SDK, staged into a root file system"
rootfs=$work/rootfs
cmake -S . -B "$work/target" -G Ninja "${cross[@]}" -DCMAKE_BUILD_TYPE=Release \
    -DNKW_PAL_MIPC_SDK_DIR="$sdk" -DNKW_PAL_BUILD_STATIC=ON -DNKW_PAL_BUILD_TESTS=OFF \
    -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build "$work/target" >/dev/null
DESTDIR=$rootfs cmake --install "$work/target" >/dev/null
# The vendor's library sits in the same root file system, as on the module.
cp -P "$sdk/lib/"libmipc_msg.so* "$rootfs/usr/lib/"

cd "$work"
for flavour in OFF ON; do
    step "aarch64: CMake consumer against the staging tree (static archive: $flavour)"
    cmake -S . -B "cross_cmake_$flavour" -G Ninja "${cross[@]:0:3}" -DCMAKE_FIND_ROOT_PATH="$rootfs" \
        -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY \
        -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCONSUMER_STATIC=$flavour >/dev/null
    cmake --build "cross_cmake_$flavour" >/dev/null
    file "cross_cmake_$flavour/consumer" | grep -q 'ARM aarch64'
done

step "aarch64: pkg-config consumer against the staging tree"
PKG_CONFIG_SYSROOT_DIR=$rootfs PKG_CONFIG_LIBDIR=$rootfs/usr/lib/pkgconfig PKG_CONFIG_PATH= \
    bash -c 'aarch64-linux-gnu-gcc -Wall -Werror main.c $(pkg-config --cflags --libs nkw_pal) -o cross_pc'
file cross_pc | grep -q 'ARM aarch64'
echo "install check: all consumers built and ran"
