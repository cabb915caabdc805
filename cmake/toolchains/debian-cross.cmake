# What the toolchain files share: a Debian cross compiler for the target
# triple q7_triple, the target's libraries from /usr/<triple>, and the tests
# run under qemu-user (q7_qemu) with those libraries, since no binfmt_misc
# registration can be relied on.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${q7_triple}-gcc)
set(CMAKE_CXX_COMPILER ${q7_triple}-g++)
set(CMAKE_FIND_ROOT_PATH /usr/${q7_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${q7_qemu} -L /usr/${q7_triple})
