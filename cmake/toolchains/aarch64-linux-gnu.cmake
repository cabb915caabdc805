# Cross build for aarch64-linux-gnu with Debian's cross compiler (g++-aarch64-linux-gnu), tested under qemu-aarch64:
#   cmake -S . -B build-aarch64 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/aarch64-linux-gnu.cmake
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(q7_triple aarch64-linux-gnu)
set(q7_qemu qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
