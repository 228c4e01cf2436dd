#!/usr/bin/env bash
# Keeps the OpenWrt package in step with the build: its PKG_VERSION is the
# project version of CMakeLists.txt and its ABI_VERSION the number of the
# SONAME the built library carries (libnkw_pal.so.<ABI_VERSION>).
# Usage: tools/check-openwrt.sh [BUILD_DIR]   (default build)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
package=openwrt/nkw-pal/Makefile
lib="$build/src/libnkw_pal.so"
[ -f "$lib" ] || { echo "check-openwrt: no $lib" >&2; exit 1; }

project_version=$(sed -n 's/^project(nkw_pal VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
pkg_version=$(sed -n 's/^PKG_VERSION:=\(.*\)$/\1/p' "$package")
abi_version=$(sed -n 's/^ *ABI_VERSION:=\(.*\)$/\1/p' "$package")
soname=$(readelf -dW "$lib" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')

status=0
if [ -z "$project_version" ] || [ "$pkg_version" != "$project_version" ]; then
    echo "check-openwrt: PKG_VERSION '$pkg_version' differs from the project version '$project_version'" >&2
    status=1
fi
if [ -z "$abi_version" ] || [ "$soname" != "libnkw_pal.so.$abi_version" ]; then
    echo "check-openwrt: ABI_VERSION '$abi_version' does not match the SONAME '$soname'" >&2
    status=1
fi
# The tool's package must pull in the C++ runtime the tool needs.
tool="$build/nkwctl/nkwctl"
if [ -f "$tool" ] && readelf -dW "$tool" | grep -q 'NEEDED.*libstdc++' &&
    ! grep -q '^ *DEPENDS:=.*+libstdcpp' "$package"; then
    echo "check-openwrt: nkwctl needs libstdc++ but its package does not depend on +libstdcpp" >&2
    status=1
fi
[ "$status" -eq 0 ] && echo "check-openwrt: version $pkg_version, SONAME $soname: ok"
exit $status
