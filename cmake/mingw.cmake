# What both Windows toolchains share; each sets mingw_arch, the first part of its compilers' names, and
# its emulator: Wine's wrapper starts the 32-bit loader for both, which not every machine can run.
# The posix flavour: the standard library's threads and clocks need it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${mingw_arch}-w64-mingw32-gcc-posix) # GoogleTest asks for one
set(CMAKE_CXX_COMPILER ${mingw_arch}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${mingw_arch}-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${mingw_arch}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
