#!/usr/bin/env bash
# Runs the raw-flash tests and the flash throughput comparison on a real
# kernel: Debian's kernel boots under qemu on a small initramfs (static
# busybox, the test programs, their shared libraries, the MTD modules), loads
# mtdram, nandsim (with bad blocks and bit flips) and phram (the
# "mddata_bak" partition), and reports over the serial console.
# Skips, saying why, when qemu or the kernel package cannot be had.
# VM_TIMEOUT (seconds) bounds the boot; VM_BENCH=0 leaves the throughput
# comparison out, VM_BENCH_ARGS replaces its options.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh

skip() {
    echo "vm-storage: SKIPPED: $*"
    exit 0
}

build=$(realpath -m "${BUILD_DIR:-build-vm}")
cache=${VM_CACHE:-/var/cache/nkw-pal-vm}
timeout=${VM_TIMEOUT:-150}

need_packages "${BUILD_PACKAGES[@]}" libgtest-dev libbenchmark-dev ||
    skip "the build packages could not be installed"
need_packages qemu-system-x86 mtd-utils || true
command -v qemu-system-x86_64 >/dev/null || skip "no qemu-system-x86_64 (package qemu-system-x86)"
[ -x /usr/sbin/flashcp ] && [ -x /usr/sbin/nanddump ] || skip "no flashcp/nanddump (package mtd-utils)"

# The kernel and static busybox are unpacked into the cache, not installed:
# the host's /boot and its busybox stay as they are.
mkdir -p "$cache"
kernel_pkg=$(apt-cache depends linux-image-amd64 2>/dev/null | awk '/Depends: linux-image-/ {print $2; exit}')
[ -n "$kernel_pkg" ] || skip "no kernel package (linux-image-amd64) known to apt"
release=${kernel_pkg#linux-image-}
if [ ! -f "$cache/$release/boot/vmlinuz-$release" ]; then
    (cd "$cache" && apt-get download -qq "$kernel_pkg" 2>/dev/null) ||
        skip "the kernel package $kernel_pkg could not be downloaded"
    mkdir -p "$cache/$release"
    dpkg-deb --fsys-tarfile "$cache/${kernel_pkg}"_*.deb |
        tar -x -C "$cache/$release" --wildcards "./boot/vmlinuz-*" \
            "./lib/modules/*/kernel/drivers/mtd/*" "./lib/modules/*/kernel/lib/bch.ko"
    rm -f "$cache/${kernel_pkg}"_*.deb
fi
if [ ! -x "$cache/busybox" ]; then
    (cd "$cache" && apt-get download -qq busybox-static 2>/dev/null) ||
        skip "busybox-static could not be downloaded"
    dpkg-deb --fsys-tarfile "$cache"/busybox-static_*.deb | tar -x -O ./bin/busybox >"$cache/busybox"
    chmod +x "$cache/busybox"
    rm -f "$cache"/busybox-static_*.deb
fi

# The production library, the device tests and the throughput benchmark.
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DNKW_PAL_BUILD_TESTS=OFF \
    -DNKW_PAL_BUILD_EXAMPLES=OFF -DNKW_PAL_BUILD_BENCH=ON >/dev/null
cmake --build "$build" --target nkw_pal bench_mtd_device >"$build/build.log" ||
    { cat "$build/build.log"; exit 1; }
g++ -std=c++17 -O2 -Wall -Wextra -Wshadow -Werror -Iinclude -o "$build/vm_storage_test" \
    tests/vm/*.cpp -L"$build/src" -lnkw_pal -lgtest_main -lgtest -pthread

# The initramfs.
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root"/{bin,sbin,lib,lib64,proc,sys,dev,tmp,modules}
cp "$cache/busybox" "$root/bin/busybox"
for tool in sh mount insmod poweroff cat echo dd sync; do
    ln -s busybox "$root/bin/$tool"
done
programs=("$build/vm_storage_test" "$build/bench/bench_mtd_device" /usr/sbin/flashcp
    /usr/sbin/nanddump /usr/sbin/flash_erase)
cp "${programs[@]}" "$root/bin/"
for lib in $(LD_LIBRARY_PATH="$build/src:$build/sim" ldd "${programs[@]}" 2>/dev/null |
    awk '/=> \// {print $3}' | sort -u); do
    cp -L "$lib" "$root/lib/"
done
cp -L /lib64/ld-linux-x86-64.so.2 "$root/lib64/"
find "$cache/$release/lib/modules" -name '*.ko' -exec cp {} "$root/modules/" \;
cp tests/vm/init.sh "$root/init"
chmod +x "$root/init"
[ "${VM_BENCH:-1}" = 1 ] || touch "$root/no-bench"
echo "${VM_BENCH_ARGS:---benchmark_min_time=0.2}" >"$root/bench-args"
(cd "$root" && find . | "$cache/busybox" cpio -o -H newc 2>/dev/null) | gzip -1 >"$build/initramfs.gz"

# KVM where it works (nested virtualisation may offer /dev/kvm and then
# hang the boot), else plain emulation: same results, a few seconds slower.
log="$build/vm-storage.log"
boot() {
    exec timeout "$1" qemu-system-x86_64 "${@:2}" -m 512 -smp 1 -nographic -no-reboot \
        -kernel "$cache/$release/boot/vmlinuz-$release" -initrd "$build/initramfs.gz" \
        -append 'console=ttyS0 quiet panic=-1 memmap=16M$0x18000000' >"$log" 2>&1 </dev/null
}
# phram takes reserved memory: the 16 MiB at 384 MiB are kept from the kernel.
set +e
status=1
if [ -r /dev/kvm ] && [ -w /dev/kvm ]; then
    echo "vm-storage: booting $release with KVM"
    boot "$timeout" -enable-kvm &
    qemu=$!
    for _ in $(seq 20); do
        grep -q '=== vm-storage: kernel' "$log" 2>/dev/null && break
        kill -0 $qemu 2>/dev/null || break
        sleep 0.5
    done
    if grep -q '=== vm-storage: kernel' "$log"; then
        wait $qemu
        status=$?
    else
        kill $qemu 2>/dev/null
        wait $qemu
        echo "vm-storage: KVM did not boot the kernel; using emulation"
    fi
fi
if ! grep -q '=== vm-storage: kernel' "$log" 2>/dev/null; then
    echo "vm-storage: booting $release without KVM"
    (boot "$timeout" -accel tcg)
    status=$?
fi
set -e
tr -d '\r' <"$log" | sed -n 's/.*=== vm-storage: kernel/=== vm-storage: kernel/; /=== vm-storage: kernel/,$p' | grep -av '^\[ *[0-9]*\.[0-9]*\]' || true
[ $status -eq 124 ] && { echo "vm-storage: FAILED: no report within ${timeout}s"; exit 1; }
grep -q '^=== vm-storage: tests passed' "$log" || { echo "vm-storage: FAILED"; exit 1; }
echo "vm-storage: passed"
