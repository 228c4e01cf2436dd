#!/bin/sh
# /init of the storage test VM: loads the flash simulators, runs the device
# tests and the throughput comparison, reports on the serial console and
# powers off. Device layout (the tests look the partitions up by name):
#   mtdram  "mtdram test device"         16 MiB, 128 KiB blocks, byte writes
#   nandsim "NAND simulator partition 0"  4 MiB, 2 KiB pages, blocks 3 and 5 bad
#   nandsim "NAND simulator partition 1"  4 MiB, page 2561 (block 8) fails after
#                                         one read; random single bit flips
#   nandsim "NAND simulator partition 2"  8 MiB
#   phram   "mddata_bak"                  4 MiB of reserved RAM, byte writes
export PATH=/bin:/sbin
mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs dev /dev
mount -t tmpfs tmp /tmp
echo "=== vm-storage: kernel $(cat /proc/sys/kernel/osrelease)"

load() { insmod "/modules/$1.ko" "$2" "$3" "$4" "$5" "$6" || echo "=== vm-storage: insmod $1 failed"; }
load mtd
load bch
load mtdram total_size=16384 erase_size=128
load nandcore
load nand
load nandsim id_bytes=0x20,0xa1,0x00,0x15 overridesize=7 parts=32,32 badblocks=3,5 \
    gravepages=2561:1 bitflips=1
load phram phram=mddata_bak,0x18000000,0x400000,0x20000
cat /proc/mtd

if vm_storage_test --gtest_color=no; then result=passed; else result=failed; fi

if [ ! -f /no-bench ]; then
    echo "=== vm-storage: throughput"
    bench_mtd_device $(cat /bench-args) --benchmark_color=false 2>&1
fi

echo "=== vm-storage: tests $result"
sync
poweroff -f
