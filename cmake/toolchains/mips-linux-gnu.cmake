# Cross build for mips-linux-gnu with Debian's cross compiler (g++-mips-linux-gnu); the
# tests run under qemu-user (qemu-mips), with the target's libraries from
# /usr/mips-linux-gnu, since no binfmt_misc registration can be relied on.
#   cmake -S . -B build-mips -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mips-linux-gnu.cmake
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mips)
set(CMAKE_C_COMPILER mips-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mips-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/mips-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mips -L /usr/mips-linux-gnu)
