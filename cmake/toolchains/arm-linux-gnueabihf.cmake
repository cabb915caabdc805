# Cross build for arm-linux-gnueabihf with Debian's cross compiler (g++-arm-linux-gnueabihf), tested under qemu-arm:
#   cmake -S . -B build-armhf -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake
set(CMAKE_SYSTEM_PROCESSOR arm)
set(q7_triple arm-linux-gnueabihf)
set(q7_qemu qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
