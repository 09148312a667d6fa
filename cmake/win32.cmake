# 32-bit Windows, the reference delivery.
set(mingw_arch i686)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
