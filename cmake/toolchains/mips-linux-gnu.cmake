# Cross build for mips-linux-gnu with Debian's cross compiler (g++-mips-linux-gnu), tested under qemu-mips:
#   cmake -S . -B build-mips -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mips-linux-gnu.cmake
set(CMAKE_SYSTEM_PROCESSOR mips)
set(q7_triple mips-linux-gnu)
set(q7_qemu qemu-mips)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
