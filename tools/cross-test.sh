#!/usr/bin/env bash
# Cross-builds the library, the simulated modem and every test suite for the
# module's aarch64 processor (Release, as shipped) and runs the whole suite
# under qemu-user. The same build serves tools/check-elf.sh and
# tools/size-report.sh. BUILD_DIR (default build-aarch64) and CTEST_ARGS may be set.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
need_packages "${BUILD_PACKAGES[@]}" g++-aarch64-linux-gnu qemu-user googletest

build=${BUILD_DIR:-build-aarch64}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/aarch64-linux-gnu.cmake" >/dev/null
cmake --build "$build"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" ${CTEST_ARGS:-}
