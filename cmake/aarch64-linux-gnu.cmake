# Builds for 64-bit ARM with Debian's cross compiler, against the libraries that scripts/arm-sysroot
# unpacks, and runs what was built under user-mode emulation:
#   cmake -S . -B build-arm --toolchain cmake/aarch64-linux-gnu.cmake -DARM_SYSROOT=FOLDER
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ARM_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build-arm/sysroot CACHE PATH
  "arm64 libraries, from scripts/arm-sysroot")
get_filename_component(ARM_SYSROOT ${ARM_SYSROOT} ABSOLUTE)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ARM_SYSROOT)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_SYSROOT ${ARM_SYSROOT})
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L ${ARM_SYSROOT})

# Programs of this machine; headers, libraries and packages of the other.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
