# WebAssembly, by Clang alone. Its C library asks for a system, which JavaScript stands in for.
set(WASM TRUE)
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_CXX_COMPILER clang++-22)
# Debian's libraries lie under the target's older name.
set(CMAKE_CXX_COMPILER_TARGET wasm32-wasi)
set(CMAKE_CXX_FLAGS_INIT -Wno-deprecated)
set(CMAKE_AR llvm-ar-22)
set(CMAKE_RANLIB llvm-ranlib-22)
