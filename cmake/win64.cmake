# 64-bit Windows.
set(mingw_arch x86_64)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
