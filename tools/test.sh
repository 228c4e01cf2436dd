#!/usr/bin/env bash
# Builds the library and its test suites against the simulated modem and runs
# every test (each in its own sandbox; nothing on the host is touched).
# BUILD_DIR, BUILD_TYPE, NKW_PAL_SANITIZE, CMAKE_ARGS and BUILD_TARGETS (only
# these targets) may be set to vary the build, CTEST_ARGS the run.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
need_packages "${BUILD_PACKAGES[@]}" libgtest-dev libgmock-dev libcli11-dev nlohmann-json3-dev

build=${BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Debug}" \
    -DNKW_PAL_SANITIZE="${NKW_PAL_SANITIZE:-}" ${CMAKE_ARGS:-} >/dev/null
cmake --build "$build" ${BUILD_TARGETS:+--target $BUILD_TARGETS}
ctest --test-dir "$build" --output-on-failure -j"$(nproc)" ${CTEST_ARGS:-}
