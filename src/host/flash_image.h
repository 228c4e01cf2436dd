// Image files standing for flash devices in the test build, so a program the
// test starts (a process of its own, without the test's in-memory devices)
// still finds one: "/dev/mtd<N>" under the sandbox root, a regular file,
// opens as device N with the geometry "/proc/mtd" gives it, and what was
// written through it is saved back when it is closed.
#pragma once

namespace nkw::host::flash_image {

// Creates simulated device `device` from its image file; false when there is
// none, or it is larger than its partition (the partition list must have
// been read).
bool load(int device);
// Writes the device's bytes back to its image file, if it came from one.
void save(int device);

}  // namespace nkw::host::flash_image
