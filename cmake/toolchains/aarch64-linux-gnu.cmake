# Cross build for the module's application processor with Debian's aarch64
# toolchain (g++-aarch64-linux-gnu). Test programs run under qemu-user with
# the cross C library as their root, so no binfmt registration is needed.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(NKW_PAL_CROSS_TRIPLE aarch64-linux-gnu)
set(NKW_PAL_CROSS_SYSROOT /usr/${NKW_PAL_CROSS_TRIPLE})

set(CMAKE_C_COMPILER ${NKW_PAL_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${NKW_PAL_CROSS_TRIPLE}-g++)

find_program(NKW_PAL_QEMU NAMES qemu-aarch64 qemu-aarch64-static)
if(NKW_PAL_QEMU)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${NKW_PAL_QEMU} -L ${NKW_PAL_CROSS_SYSROOT})
endif()

# Libraries and headers of the target only; programs (cmake, ninja) of the host.
set(CMAKE_FIND_ROOT_PATH ${NKW_PAL_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
